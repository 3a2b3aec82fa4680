// SpectralModel<Pol>: conversions of colours of any model into spectral colours, and of RGB
// triples and spectra into ray and surface colours. Included by SpectralModel.cpp.
//
// A source model is asked IsBW, IsRGB, IsXYZ, IsXYY and IsSpectral in this order; the first yes
// decides. A BW value is spread over the grid; RGB, XYZ and xyY values are reconstructed over the
// grid by the host's CIEConvAll (a light spectrum, or a reflectance for surfaces); spectral
// values are resampled from the source grid (Resample.h). Every light conversion ends with
// ClampLgtColor. A polarized model takes light and surface colours from BW sources only.
//
// Values are written for every stored component of the target colour (its user sizes it,
// normally to the grid; a holder's colours start empty). A reconstruction gives one value per
// wavelength; a Stokes light keeps it as I with Q = U = V = 0 and a Mueller surface as element
// (0,0) with the other fifteen 0 (a depolarizer).
// Failures are reported through User() and their code returned; messages are translated under
// the context "SpectralModel<class Korvane::Unpolarized>::ConvertColor" (Stokes:
// "...StokesPolarization>..."). A failed conversion may leave partial values in the target.
#pragma once

#include "hostkit/base/GlobTr.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/ColourMath.h"
#include "plugin/models/SourceKind.h"
#include "plugin/spectral/Resample.h"

#include <typeinfo>

namespace Korvane {
namespace SpectralConversion {

// The texts of the conversion reports. Hosts and their translation tables look them up by these
// exact strings (under the model's ConvertColor context), abbreviations included, so they are
// kept byte for byte and never reworded.
inline constexpr const char* kGreyFailed = "Error converting grayscale to spectrum";
inline constexpr const char* kRGBFailed = "Error converting RGB to spectrum";
inline constexpr const char* kXYZFailed = "Error converting XYZ to spectrum";
inline constexpr const char* kLightRefused = "Not supported spectral light color conversion";
inline constexpr const char* kSurfaceRefused = "Not supported spectral surface color conversion";
inline constexpr const char* kLightResampleFailed = "SPEC light color conversion failure";
inline constexpr const char* kSurfaceResampleFailed = "SPEC surface color conversion failure";
inline constexpr const char* kScalarResampleFailed = "SPEC scalar color conversion failure";

using Source = SourceKind;

// The kind of a source model, asked in the fixed order (SourceKind.h); a null model is of no
// kind.
inline Source Classify(const ColorModel* src) {
    return KindOf(src);
}

// Reports `text`, translated under the model's conversion context, as an error message; returns
// the report's code.
template <class Pol>
int Fail(const char* text) {
    const char* context = Pol::kIsPolarized
                              ? "SpectralModel<class Korvane::StokesPolarization>::ConvertColor"
                              : "SpectralModel<class Korvane::Unpolarized>::ConvertColor";
    const char* translated = GlobTr(context, text, nullptr);
    return User()->ErrorMessageEx(translated, translated);
}

// The three values of an RGB, XYZ or xyY colour of any kind, in memory order.
template <class I>
TVect3<double> Triple(const I& c) {
    const auto& v = ColourAccess::Value<RGBModel<Unpolarized>>(c);
    return {v[0], v[1], v[2]};
}

// Component `from` as a component of type To: every double when the sizes agree, otherwise the
// first (the intensity) with the other doubles 0.
template <class To, class From>
To Carried(const From& from) {
    To to{};
    if constexpr (To::kSize == From::kSize) {
        for (int c = 0; c < To::kSize; ++c)
            to[c] = from[c];
    } else {
        to[0] = from[0];
    }
    return to;
}

// Lays out n values, one per wavelength at the start of `values`, as components of `size`
// doubles: the value first, the other doubles 0. Backwards, so the array is its own source.
inline void SpreadIntensities(double* values, int n, int size) {
    if (size == 1)
        return;
    for (int k = n - 1; k >= 0; --k) {
        const double v = values[k];
        for (int c = size - 1; c > 0; --c)
            values[k * size + c] = 0.0;
        values[k * size] = v;
    }
}

// Every double of every stored component becomes 0.
template <class D>
void ZeroStored(D& d) {
    if (double* v = d.Values())
        for (int k = 0; k < d.Count() * D::Component::kSize; ++k)
            v[k] = 0.0;
}

// The band of a light distribution; [0, count - 1] for one without a band.
struct Band {
    int first;
    int last;
};
template <class Comp>
Band BandOf(const ExtSpctrlColourDistr<Comp>& d) {
    return {d.First(), d.Last()};
}
template <class Comp>
Band BandOf(const SpctrlColourDistr<Comp>& d) {
    return {0, d.Count() - 1};
}

// Resamples distribution `from` over grid `s` onto distribution `to` over grid `t`, component
// layouts as SpectrumLayout carries them, negatives written as 0 with kClamp. 0 or -1.
template <bool kClamp, class From, class To>
int ResampleDistr(const MArray<double>& s, const From& from, const MArray<double>& t, To& to) {
    const Band band = BandOf(from);
    SpectrumLayout<From::Component::kSize, To::Component::kSize, true, kClamp> layout(
        from.Values(), from.Count(), band.first, band.last, to.Values(), to.Count());
    return ResampleSpectrum(s, t, layout);
}

// The same for colour `from` (light or surface) of the spectral model `src`, of either
// polarization, over that model's grid.
template <bool kClamp = false, class I, class To>
int ResampleFrom(const ColorModel& src, const I& from, const MArray<double>& t, To& to) {
    const SpectralSource source = SourceOf(src);
    if (source.polarized)
        return ResampleDistr<kClamp>(
            *source.waves, ColourAccess::Value<SpectralModel<StokesPolarization>>(from).Distr(), t,
            to);
    return ResampleDistr<kClamp>(
        *source.waves, ColourAccess::Value<SpectralModel<Unpolarized>>(from).Distr(), t, to);
}

// What the host's converter reconstructs over a grid.
enum class Reconstruction { RGBLight, RGBReflectance, XYZLight, XYZReflectance };

// The scratch array of one reconstruction (growth step 10, plain heap), released with it. It is
// sized for the colour the result goes into: the larger of the grid's n and the colour's count
// components of `size` doubles, so that a store of every stored component reads defined values.
class Scratch {
public:
    // 0, or the code of the no-memory report.
    int Reserve(int n, int count, int size) {
        doubles_ = (n > count ? n : count) * size;
        if (a_.Alloc(doubles_) != 0)
            return User()->ErrorNoMemory(-1);
        return 0;
    }
    TArray<double>& Array() { return a_; }
    // One value per wavelength over `waves` (whose converter tables are `grid`) into the array by
    // the current CIEConvAll: 0, or non-zero when it refuses or none is set. The array holds at
    // least the grid's length already (Reserve), so nothing is allocated here; an XYZ is
    // reconstructed as M xyz, which is what the converter's XYZ reconstruction does.
    int Reconstruct(Reconstruction r, TVect3<double> v, const CIEGrid& grid,
                    const MArray<double>& waves) {
        const CIEConvAll* conv = ColorModel::GetCIEConvAll();
        if (!conv)
            return -1;
        if (a_.Alloc(waves.Count()) != 0)
            return User()->ErrorNoMemory(-1);
        if (r == Reconstruction::XYZLight || r == Reconstruction::XYZReflectance)
            v = conv->XYZ2RGB() * v;
        if (r == Reconstruction::RGBLight || r == Reconstruction::XYZLight)
            return conv->RGB2Spectrum(v, grid, waves, a_.Data(), a_.Count());
        return conv->RGB2SpectrumAttr(v, grid, waves, a_.Data(), a_.Count());
    }
    // The first n values as components of `size` doubles (SpreadIntensities); components past n
    // are 0. Stays within the reserved storage.
    const double* Spread(int n, int size) {
        a_.Alloc(doubles_);
        double* v = a_.Data();
        SpreadIntensities(v, n, size);
        for (int k = n * size; k < doubles_; ++k)
            v[k] = 0.0;
        return v;
    }

private:
    TArray<double> a_{10};
    int doubles_ = 0;
};

// Reconstructs `v` for a colour of `count` components of `size` doubles over the grid of
// `model` into `scratch`, multiplied by `scale` when one is given. 0; the code of the no-memory
// report; or the code of the report of `failure` when the converter refused.
template <class Pol>
int ReconstructFor(const SpectralModel<Pol>& model, Scratch& scratch, Reconstruction r,
                   const TVect3<double>& v, int count, int size, const char* failure,
                   const double* scale = nullptr) {
    const int n = model.NWaves();
    if (const int status = scratch.Reserve(n, count, size))
        return status;
    if (scratch.Reconstruct(r, v, model.GridTables(), model.GetWaveLengths()) != 0)
        return Fail<Pol>(failure);
    if (scale)
        for (int k = 0; k < n; ++k)
            scratch.Array()[k] *= *scale;
    scratch.Spread(n, size);
    return 0;
}

// The usual light conversion: an unpolarized light colour of the model's length takes the
// reconstruction of `rgb` straight into its storage, with no scratch array and no copy (an XYZ
// is reconstructed as M xyz, which is what the converter's XYZ reconstruction does). 0, or the
// code of the report of `failure` when the converter refused (the colour then holds zeros).
template <class Pol, class D>
int ReconstructLightInPlace(const SpectralModel<Pol>& model, TVect3<double> v, bool xyz, D& target,
                            const char* failure) {
    const CIEConvAll* conv = ColorModel::GetCIEConvAll();
    if (!conv)
        return Fail<Pol>(failure);
    if (xyz)
        v = conv->XYZ2RGB() * v;
    if (conv->RGB2Spectrum(v, model.GridTables(), model.GetWaveLengths(), target.Values(),
                           target.Count()) != 0)
        return Fail<Pol>(failure);
    return 0;
}

// Density to energy, written out: every component inside the band is multiplied by its
// wavelength's ray weight (Stokes: all four doubles).
template <class Pol, class D>
void ApplyRayWeights(const SpectralModel<Pol>& model, D& d) {
    SpectralArithmetic::ScaleByTable(d, model.GetWeights(), model.NWaves());
}

} // namespace SpectralConversion

template <class Pol>
int SpectralModel<Pol>::ConvertColor(const ColorModel* src, const ILgtColor& from,
                                     ILgtColor& to) const {
    using namespace SpectralConversion;
    auto& target = ColourAccess::Value<SpectralModel>(to).Distr();
    if constexpr (!Pol::kIsPolarized) {
        // A light of this library's unpolarized RGB model onto a target of the grid's length, the
        // per-ray case: what the general path below does for it, without its questions and its
        // scratch array.
        if (src && &typeid(*src) == &typeid(RGBModel<Unpolarized>) && target.Count() == NWaves()) {
            target.SetBand(0, target.Count() - 1);
            if (const int r =
                    ReconstructLightInPlace(*this, Triple(from), false, target, kRGBFailed))
                return r;
            ClampLgtColor(to);
            return 0;
        }
    }
    return ConvertLight(src, from, to);
}

template <class Pol>
int SpectralModel<Pol>::ConvertLight(const ColorModel* src, const ILgtColor& from,
                                     ILgtColor& to) const {
    using namespace SpectralConversion;
    using Comp = typename Pol::LightComp;
    auto& target = ColourAccess::Value<SpectralModel>(to).Distr();
    target.SetBand(0, target.Count() - 1);
    const Source kind = Classify(src);
    if constexpr (!Pol::kIsPolarized) {
        // A spectral source into this very class (unpolarized, its own ClampLgtColor, not a
        // derived class's): that clamps v < 0.0 ? 0.0 : v over the band [0, count - 1] just set,
        // and a resampling that succeeds writes exactly that, the grid's every wavelength, so the
        // clamp goes into its writes.
        if (kind == Source::Spectral && &typeid(*this) == &typeid(SpectralModel<Unpolarized>)) {
            if (ResampleFrom<true>(*src, from, BSpectralModel::GetWaveLengths(), target) != 0)
                return Fail<Pol>(kLightResampleFailed);
            return 0;
        }
    }
    Scratch scratch;
    int status = 0;
    if (kind == Source::BW) {
        if (src->HasPolarization()) {
            const Comp c =
                Carried<Comp>(ColourAccess::Value<BWModel<StokesPolarization>>(from).Channel(0));
            for (int k = 0; k < target.Count(); ++k)
                target.At(k) = c;
            ClampLgtColor(to);
            return 0;
        }
        const double g = ColourAccess::Value<BWModel<Unpolarized>>(from).Channel(0)[0];
        if constexpr (!Pol::kIsPolarized) {
            if (target.Count() == NWaves()) {
                if (const int r =
                        ReconstructLightInPlace(*this, {g, g, g}, false, target, kGreyFailed))
                    return r;
                ClampLgtColor(to);
                return 0;
            }
        }
        status = ReconstructFor(*this, scratch, Reconstruction::RGBLight, {g, g, g}, target.Count(),
                                Comp::kSize, kGreyFailed);
    } else if (HasPolarization()) {
        return Fail<Pol>(kLightRefused);
    } else if (kind == Source::RGB || kind == Source::XYZ || kind == Source::XYY) {
        if (src->HasPolarization())
            return Fail<Pol>(kLightRefused);
        const TVect3<double> v = Triple(from);
        if (target.Count() == NWaves()) { // the model is unpolarized here
            const bool isRGB = kind == Source::RGB;
            if (const int r = ReconstructLightInPlace(
                    *this, kind == Source::XYY ? ColourMath::XYYToXYZ(v) : v, !isRGB, target,
                    isRGB ? kRGBFailed : kXYZFailed))
                return r;
            ClampLgtColor(to);
            return 0;
        }
        if (kind == Source::RGB)
            status = ReconstructFor(*this, scratch, Reconstruction::RGBLight, v, target.Count(),
                                    Comp::kSize, kRGBFailed);
        else
            status = ReconstructFor(*this, scratch, Reconstruction::XYZLight,
                                    kind == Source::XYY ? ColourMath::XYYToXYZ(v) : v,
                                    target.Count(), Comp::kSize, kXYZFailed);
    } else if (kind == Source::Spectral) {
        if (ResampleFrom(*src, from, GetWaveLengths(), target) != 0)
            return Fail<Pol>(kLightResampleFailed);
        ClampLgtColor(to);
        return 0;
    } else {
        return User()->InternalError("Not supported light color conversion");
    }
    if (status != 0)
        return status;
    SetLgtColor(to, scratch.Array().Data());
    ClampLgtColor(to);
    return 0;
}

template <class Pol>
int SpectralModel<Pol>::ConvertColor(const ColorModel* src, const ISurfColor& from,
                                     ISurfColor& to) const {
    using namespace SpectralConversion;
    using Comp = typename Pol::SurfComp;
    auto& target = ColourAccess::Value<SpectralModel>(to).Distr();
    const Source kind = Classify(src);
    if (kind == Source::BW) {
        const Comp c =
            src->HasPolarization()
                ? Carried<Comp>(ColourAccess::Value<BWModel<StokesPolarization>>(from).Channel(0))
                : Carried<Comp>(ColourAccess::Value<BWModel<Unpolarized>>(from).Channel(0));
        for (int k = 0; k < target.Count(); ++k)
            target[k] = c;
        return 0;
    }
    if (HasPolarization())
        return Fail<Pol>(kSurfaceRefused);
    Scratch scratch;
    int status = 0;
    if (kind == Source::RGB || kind == Source::XYZ || kind == Source::XYY) {
        if (src->HasPolarization())
            return Fail<Pol>(kSurfaceRefused);
        TVect3<double> v = Triple(from);
        if (kind == Source::RGB) {
            // Reconstructed at unit magnitude and scaled back, so black is a zero reflectance.
            const double a = ColourMath::NormalizeMaxMagnitude(v);
            status = ReconstructFor(*this, scratch, Reconstruction::RGBReflectance, v,
                                    target.Count(), Comp::kSize, kRGBFailed, &a);
        } else {
            status = ReconstructFor(*this, scratch, Reconstruction::XYZReflectance,
                                    kind == Source::XYY ? ColourMath::XYYToXYZ(v) : v,
                                    target.Count(), Comp::kSize, kXYZFailed);
        }
    } else if (kind == Source::Spectral) {
        if (ResampleFrom(*src, from, GetWaveLengths(), target) != 0)
            return Fail<Pol>(kSurfaceResampleFailed);
        return 0;
    } else {
        return User()->InternalError("Not supported surface color conversion");
    }
    if (status != 0)
        return status;
    SetSurfColor(to, scratch.Array().Data());
    return 0;
}

template <class Pol>
int SpectralModel<Pol>::ConvertColor(const ColorModel* src, const IScalarColor& from,
                                     IScalarColor& to) const {
    using namespace SpectralConversion;
    auto& target = ColourAccess::Value<SpectralModel>(to).Distr();
    const Source kind = Classify(src);
    if (kind == Source::BW) {
        const double g = ColourAccess::Value<BWModel<Unpolarized>>(from).Channel(0)[0];
        for (int k = 0; k < target.Count(); ++k)
            target[k][0] = g;
        return 0;
    }
    if (kind == Source::Spectral && src->HasPolarization()) {
        const auto& source = ColourAccess::Value<SpectralModel<StokesPolarization>>(from).Distr();
        if (ResampleValues(src->GetWaveLengths(), source.Values(), source.Count(), GetWaveLengths(),
                           target.Values(), target.Count()) != 0)
            return Fail<Pol>(kScalarResampleFailed);
        return 0;
    }
    if (kind == Source::Spectral) {
        // Through plain arrays, zero past a colour's count. A failed resampling leaves the zeros
        // of the second array, which are stored all the same: this path reports nothing.
        const int m = src->NWaves();
        const int sourceCount = ColourAccess::Value<SpectralModel<Unpolarized>>(from).Count();
        TArray<double> values(10);
        if (values.Alloc(m > sourceCount ? m : sourceCount) != 0)
            return User()->ErrorNoMemory(-1);
        values.Fill(0.0);
        src->ScalarToArray(from, values.Data());
        const int n = NWaves();
        TArray<double> resampled(10);
        if (resampled.Alloc(n > target.Count() ? n : target.Count()) != 0)
            return User()->ErrorNoMemory(-1);
        resampled.Fill(0.0);
        ResampleValues(src->GetWaveLengths(), values.Data(), m, GetWaveLengths(), resampled.Data(),
                       n);
        SetScalarColor(to, resampled.Data());
        return 0;
    }
    if (kind == Source::Other)
        return User()->InternalError("Not supported scalar color conversion");

    // RGB, XYZ or xyY of either polarization. The RGB branch reports the XYZ text on purpose:
    // the two branches share one message.
    const TVect3<double> v = Triple(from);
    Scratch scratch;
    const Reconstruction r =
        kind == Source::RGB ? Reconstruction::RGBLight : Reconstruction::XYZLight;
    if (const int status =
            ReconstructFor(*this, scratch, r, kind == Source::XYY ? ColourMath::XYYToXYZ(v) : v,
                           target.Count(), 1, kXYZFailed))
        return status;
    SetScalarColor(to, scratch.Array().Data());
    return 0;
}

template <class Pol>
int SpectralModel<Pol>::ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                                          IRayColor& to) const {
    auto& light = ColourAccess::Value<SpectralModel>(to).Light();
    if (ConvertColor(src, from, light) != 0)
        return -1;
    SpectralConversion::ApplyRayWeights(*this, light.Distr());
    return 0;
}

template <class Pol>
void SpectralModel<Pol>::RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const {
    using namespace SpectralConversion;
    constexpr int size = Pol::LightComp::kSize;
    auto& d = ColourAccess::Value<SpectralModel>(to).Light().Distr();
    const int count = d.Count();
    d.SetBand(0, count - 1);

    // Reconstructed straight into the colour's storage (its first count doubles), then laid out
    // as components; a refusal leaves zeros.
    const CIEConvAll* conv = GetCIEConvAll();
    if (conv && conv->RGB2Spectrum(rgb, cieGrid_, GetWaveLengths(), d.Values(), count) == 0)
        SpreadIntensities(d.Values(), count, size);
    else
        ZeroStored(d);

    // Scaled to the luminance of the RGB: S is the spectrum's Y by the converter's plain light
    // XYZ table, Y = kR R + kG G + kB B. The factor 537 / 683 is part of the host's scaling.
    const TVect3<double>& k = GetCIEConv()->LuminanceCoefs();
    const double luminance = k.x * rgb.x + k.y * rgb.y + k.z * rgb.z;
    double sum = 0.0;
    MassColConv* mc = GetMassColConv();
    // The XYZ table's own row count is asked too: a half-failed preparation leaves it short.
    if (mc && count == mc->Wavelengths().Count() && mc->PrepareForLight() == 0 &&
        mc->LightXYZ().Count() == count) {
        const TArray<RGBColourDistr<double>>& xyz = mc->LightXYZ();
        for (int i = 0; i < count; ++i)
            sum += d[i][0] * xyz[i].g;
    }
    if (sum > 0.0) {
        const double factor = 537.0 * luminance / (683.0 * sum);
        for (int i = 0; i < count; ++i)
            for (int c = 0; c < size; ++c)
                d[i][c] *= factor;
    }
    ApplyRayWeights(*this, d);
}

template <class Pol>
void SpectralModel<Pol>::RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const {
    using namespace SpectralConversion;
    // No scaling by the largest magnitude here, unlike the surface ConvertColor.
    auto& d = ColourAccess::Value<SpectralModel>(to).Distr();
    const CIEConvAll* conv = GetCIEConvAll();
    if (conv && conv->RGB2SpectrumAttr(rgb, cieGrid_, GetWaveLengths(), d.Values(), d.Count()) == 0)
        SpreadIntensities(d.Values(), d.Count(), Pol::SurfComp::kSize);
    else
        ZeroStored(d);
}

template <class Pol>
int SpectralModel<Pol>::SpectralConvertToRayColor(const ColorModel* src,
                                                  const MArray<double>& spectrum,
                                                  IRayColor& to) const {
    using namespace SpectralConversion;
    constexpr int size = Pol::LightComp::kSize;
    auto& light = ColourAccess::Value<SpectralModel>(to).Light();
    const int n = NWaves();
    Scratch scratch;
    if (const int status = scratch.Reserve(n, light.Count(), size))
        return status;
    // The resampling's result is not a status of this operation: a spectrum that does not fit
    // the source grid (or no source) gives a zero spectrum.
    double* values = scratch.Array().Data();
    if (!src || ResampleValues(src->GetWaveLengths(), spectrum.Data(), spectrum.Count(),
                               GetWaveLengths(), values, n) != 0)
        for (int k = 0; k < n; ++k)
            values[k] = 0.0;
    SetLgtColor(light, scratch.Spread(n, size));
    DensityToEnergy(light);
    return 0;
}

} // namespace Korvane
