// BWModel<Pol>: energy, luminance, arithmetic, clamping and validity of BW colours. Included by
// BWModel.cpp.
//
// A BW value is one intensity v; with Stokes polarization a light colour is (I, Q, U, V), where I
// plays the part of v, and a surface the Mueller matrix whose element (0,0) does. Sums, scalings
// and products act on every stored element; energies, luminance and validity read v alone.
#pragma once

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/SpectralModel.h"

namespace Korvane {
namespace BWArithmetic {

// to[k] += f * from[k] for every element of a light colour.
template <class L>
void AddScaled(const L& from, double f, L& to) {
    for (int k = 0; k < L::kDoubles; ++k)
        to[k] += f * from[k];
}

// Every element times f.
template <class L>
void Scale(L& c, double f) {
    for (int k = 0; k < L::kDoubles; ++k)
        c[k] *= f;
}

// Unit intensity: 0 becomes 1 (a polarized colour (1, 0, 0, 0)), 1 stays as it is, anything else
// is multiplied element by element by 1/v.
template <class L>
void Normalize(L& c) {
    const double v = c[0];
    if (v == 0.0)
        ColourAccess::FillIntensities(c, 1.0);
    else if (v != 1.0)
        Scale(c, 1.0 / v);
}

} // namespace BWArithmetic

template <class Pol>
bool BWModel<Pol>::IsValidSurfColor(const ISurfColor& c) const {
    double v[SurfColor<BWModel>::kDoubles];
    this->SurfToArray(c, v);
    return v[0] >= 0.0 && v[0] <= 1.0;
}

template <class Pol>
bool BWModel<Pol>::IsValidLgtColor(const ILgtColor& c) const {
    return ColourAccess::Value<BWModel>(c)[0] >= 0.0;
}

// The reflectance (element (0,0) of a Mueller matrix) is brought into [0, 1] and written back only
// when it lay outside; the other Mueller elements are written back as they were read. Returns the
// number of values examined, one, as the spectral model answers with its count.
template <class Pol>
int BWModel<Pol>::ClampSurfColor(ISurfColor& c) const {
    double v[SurfColor<BWModel>::kDoubles];
    this->SurfToArray(c, v);
    if (!(v[0] >= 0.0 && v[0] <= 1.0)) {
        if (v[0] < 0.0)
            v[0] = 0.0;
        else if (v[0] > 1.0)
            v[0] = 1.0;
        this->SetSurfColor(c, v);
    }
    return 1;
}

// A value that is not >= 0 (negative or NaN) becomes 0. A Stokes vector is left as it is.
template <class Pol>
void BWModel<Pol>::ClampLgtColor(ILgtColor& c) const {
    if constexpr (!Pol::kIsPolarized) {
        double& v = ColourAccess::Value<BWModel>(c)[0];
        if (!(v >= 0.0))
            v = 0.0;
    } else {
        (void)c;
    }
}

template <class Pol>
void BWModel<Pol>::AddLgtToArray(const ILgtColor& c, double* out) const {
    const auto& value = ColourAccess::Value<BWModel>(c);
    for (int k = 0; k < LgtColor<BWModel>::kDoubles; ++k)
        out[k] += value[k];
}

// The intensity only, also of a Stokes vector.
template <class Pol>
void BWModel<Pol>::AddRayToArray(const IRayColor& c, double* out) const {
    out[0] += ColourAccess::Value<BWModel>(c).Light()[0];
}

// The energy that the light carries when measured on the shared 380..780 nm spectral model: the
// colour converted into a light colour of that model, then that model's LgtEnergy. The holder
// that the model makes starts empty, so its colour is sized here to one value per wavelength of
// the model's grid, as any user of a spectral holder sizes it. 0.0 when the model cannot be had,
// when the holder or its colour cannot be made (reported as no memory) or when the conversion
// fails (reported by it). The holder goes with the call.
template <class Pol>
double BWModel<Pol>::RayEnergy(const ILgtColor& c) const {
    using Spectral = SpectralModel<Unpolarized>;
    Spectral* model = Spectral::GetModel_380_780();
    if (model == nullptr)
        return 0.0;
    TPlugRef<Holder<ILgtColor>> holder = model->NewLgtColorHold();
    if (holder.Get() == nullptr ||
        ColourAccess::Value<Spectral>(holder->Color()).Distr().SetLength(model->NWaves()) != 0) {
        User()->ErrorNoMemory(-1);
        return 0.0;
    }
    if (model->ConvertColor(this, c, holder->Color()) != 0)
        return 0.0;
    return model->LgtEnergy(holder->Color());
}

// v (c0 + c1 + c2) with the converter's luminance coefficients.
template <class Pol>
double BWModel<Pol>::LgtLuminance(const ILgtColor& c) const {
    const CIEConvAll* conv = ColorModel::GetCIEConvAll();
    if (conv == nullptr)
        return 0.0;
    const TVect3<double>& k = conv->LuminanceCoefs();
    return ColourAccess::Value<BWModel>(c)[0] * (k.x + k.y + k.z);
}

// The radiant power of the grey light (v, v, v).
template <class Pol>
double BWModel<Pol>::SumLgtValues(const ILgtColor& c) const {
    const CIEConvAll* conv = ColorModel::GetCIEConvAll();
    if (conv == nullptr)
        return 0.0;
    const double v = ColourAccess::Value<BWModel>(c)[0];
    return conv->RGB2Watts(TVect3<double>(v, v, v));
}

template <class Pol>
double BWModel<Pol>::RayEnergy(const IRayColor& c) const {
    return ColourAccess::Value<BWModel>(c).Light()[0];
}

template <class Pol>
void BWModel<Pol>::AddLgtColor(const ILgtColor& from, ILgtColor& to) const {
    auto& target = ColourAccess::Value<BWModel>(to);
    const auto& source = ColourAccess::Value<BWModel>(from);
    for (int k = 0; k < LgtColor<BWModel>::kDoubles; ++k)
        target[k] += source[k];
}

// One channel, one factor: the first.
template <class Pol>
void BWModel<Pol>::MulLgtColorByArray(ILgtColor& c, const double* factors) const {
    BWArithmetic::Scale(ColourAccess::Value<BWModel>(c), factors[0]);
}

template <class Pol>
void BWModel<Pol>::ScaleLgtColor(ILgtColor& c, double factor) const {
    BWArithmetic::Scale(ColourAccess::Value<BWModel>(c), factor);
}

template <class Pol>
void BWModel<Pol>::MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const {
    BWArithmetic::Scale(ColourAccess::Value<BWModel>(c), b[0] > 0.0 ? a[0] / b[0] : 1.0);
}

template <class Pol>
void BWModel<Pol>::NormalizeLgtColor(ILgtColor& c) const {
    BWArithmetic::Normalize(ColourAccess::Value<BWModel>(c));
}

template <class Pol>
void BWModel<Pol>::NormalizeLgtColor(IRayColor& c) const {
    BWArithmetic::Normalize(ColourAccess::Value<BWModel>(c).Light());
}

template <class Pol>
void BWModel<Pol>::AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const {
    BWArithmetic::AddScaled(ColourAccess::Value<BWModel>(from), f,
                            ColourAccess::Value<BWModel>(to));
}

template <class Pol>
void BWModel<Pol>::AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const {
    BWArithmetic::AddScaled(ColourAccess::Value<BWModel>(from).Light(), f,
                            ColourAccess::Value<BWModel>(to).Light());
}

template <class Pol>
void BWModel<Pol>::AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const {
    BWArithmetic::AddScaled(ColourAccess::Value<BWModel>(from).Light(), f,
                            ColourAccess::Value<BWModel>(to));
}

template <class Pol>
double BWModel<Pol>::SumLgtColor(const ILgtColor& c) const {
    return ColourAccess::Value<BWModel>(c)[0];
}

} // namespace Korvane
