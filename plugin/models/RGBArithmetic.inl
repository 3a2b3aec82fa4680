// RGBModel<Pol>: energy, luminance, arithmetic, clamping and validity of RGB colours. Included by
// RGBModel.cpp.
//
// Numbers read from a colour (energies, sums, validity) use the channel intensities; arithmetic
// that changes a light acts on the whole component of each channel, so a polarized channel stays
// a Stokes vector (RGBOps).
#pragma once

namespace Korvane {

template <class Pol>
bool RGBModel<Pol>::IsValidSurfColor(const ISurfColor& c) const {
    constexpr int size = SurfColor<RGBModel>::Component::kSize;
    double v[SurfColor<RGBModel>::kDoubles];
    this->SurfToArray(c, v);
    for (int ch = 0; ch < 3; ++ch)
        if (!(v[ch * size] >= 0.0 && v[ch * size] <= 1.0))
            return false;
    return true;
}

template <class Pol>
bool RGBModel<Pol>::IsValidLgtColor(const ILgtColor& c) const {
    const TVect3<double> v = RGBOps::Intensities(ColourAccess::Value<RGBModel>(c));
    return v.x >= 0.0 && v.y >= 0.0 && v.z >= 0.0;
}

template <class Pol>
int RGBModel<Pol>::ClampSurfColor(ISurfColor& c) const {
    constexpr int size = SurfColor<RGBModel>::Component::kSize;
    double v[SurfColor<RGBModel>::kDoubles];
    this->SurfToArray(c, v);
    bool inside = true;
    for (int ch = 0; ch < 3; ++ch)
        inside = inside && v[ch * size] >= 0.0 && v[ch * size] <= 1.0;
    if (inside)
        return 0;
    for (int ch = 0; ch < 3; ++ch) {
        double& x = v[ch * size];
        if (x < 0.0)
            x = 0.0;
        else if (x > 1.0)
            x = 1.0;
    }
    this->SetSurfColor(c, v);
    return 0;
}

template <class Pol>
void RGBModel<Pol>::ClampLgtColor(ILgtColor& c) const {
    if constexpr (!Pol::kIsPolarized) {
        auto& v = ColourAccess::Value<RGBModel>(c);
        for (int ch = 0; ch < 3; ++ch)
            if (v[ch] < 0.0)
                v[ch] = 0.0;
    } else {
        (void)c;
    }
}

template <class Pol>
void RGBModel<Pol>::AddLgtToArray(const ILgtColor& c, double* out) const {
    const auto& v = ColourAccess::Value<RGBModel>(c);
    for (int k = 0; k < v.kDoubles; ++k)
        out[k] += v[k];
}

template <class Pol>
void RGBModel<Pol>::AddRayToArray(const IRayColor& c, double* out) const {
    const TVect3<double> v = RGBOps::Intensities(ColourAccess::Value<RGBModel>(c).Light());
    for (int ch = 0; ch < 3; ++ch)
        out[ch] += v[ch];
}

template <class Pol>
double RGBModel<Pol>::RayEnergy(const ILgtColor& c) const {
    return RGBOps::SumIntensities(ColourAccess::Value<RGBModel>(c));
}

template <class Pol>
double RGBModel<Pol>::LgtLuminance(const ILgtColor& c) const {
    const CIEConvAll* conv = this->GetCIEConvAll();
    if (!conv)
        return 0.0;
    const TVect3<double>& w = conv->LuminanceCoefs();
    const TVect3<double> v = RGBOps::Intensities(ColourAccess::Value<RGBModel>(c));
    return w.x * v.x + w.y * v.y + w.z * v.z;
}

template <class Pol>
double RGBModel<Pol>::SumLgtValues(const ILgtColor& c) const {
    const CIEConvAll* conv = this->GetCIEConvAll();
    if (!conv)
        return 0.0;
    return conv->RGB2Watts(RGBOps::Intensities(ColourAccess::Value<RGBModel>(c)));
}

template <class Pol>
double RGBModel<Pol>::RayEnergy(const IRayColor& c) const {
    return RGBOps::SumIntensities(ColourAccess::Value<RGBModel>(c).Light());
}

template <class Pol>
void RGBModel<Pol>::AddLgtColor(const ILgtColor& from, ILgtColor& to) const {
    RGBOps::AddScaled(ColourAccess::Value<RGBModel>(from), 1.0, ColourAccess::Value<RGBModel>(to));
}

template <class Pol>
void RGBModel<Pol>::MulLgtColorByArray(ILgtColor& c, const double* factors) const {
    RGBOps::MulChannels(ColourAccess::Value<RGBModel>(c), factors);
}

template <class Pol>
void RGBModel<Pol>::ScaleLgtColor(ILgtColor& c, double factor) const {
    RGBOps::Scale(ColourAccess::Value<RGBModel>(c), factor);
}

template <class Pol>
void RGBModel<Pol>::MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const {
    RGBOps::MulChannelsByRatio(ColourAccess::Value<RGBModel>(c), a, b);
}

template <class Pol>
void RGBModel<Pol>::NormalizeLgtColor(ILgtColor& c) const {
    RGBOps::NormalizeToUnitSum(ColourAccess::Value<RGBModel>(c));
}

template <class Pol>
void RGBModel<Pol>::NormalizeLgtColor(IRayColor& c) const {
    RGBOps::NormalizeToUnitSum(ColourAccess::Value<RGBModel>(c).Light());
}

template <class Pol>
void RGBModel<Pol>::AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const {
    RGBOps::AddScaled(ColourAccess::Value<RGBModel>(from), f, ColourAccess::Value<RGBModel>(to));
}

template <class Pol>
void RGBModel<Pol>::AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const {
    RGBOps::AddScaled(ColourAccess::Value<RGBModel>(from).Light(), f,
                      ColourAccess::Value<RGBModel>(to).Light());
}

template <class Pol>
void RGBModel<Pol>::AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const {
    RGBOps::AddScaled(ColourAccess::Value<RGBModel>(from).Light(), f,
                      ColourAccess::Value<RGBModel>(to));
}

template <class Pol>
double RGBModel<Pol>::SumLgtColor(const ILgtColor& c) const {
    return RGBOps::SumIntensities(ColourAccess::Value<RGBModel>(c));
}

} // namespace Korvane
