// SpectralModel<Pol>: the slots that move values in and out of spectral colours, which decide
// nothing but layout. A colour holds one component per stored wavelength (Comp::kSize doubles:
// 1, a Stokes vector of 4 or a Mueller matrix of 16), light and ray colours with a band outside
// which they read as zero. Included by SpectralModel.cpp.
#pragma once

namespace Korvane {
namespace SpectralAccess {

// Every stored double of a distribution from `values` (doubles, or floats widened), index 0 to
// count - 1, whatever the band.
template <class D, class T>
void SetStored(D& d, const T* values) {
    double* to = d.Values();
    const int n = d.Count() * D::Component::kSize;
    for (int k = 0; k < n; ++k)
        to[k] = static_cast<double>(values[k]);
}

// Every stored double of a distribution into `out`.
template <class D>
void GetStored(const D& d, double* out) {
    const double* from = d.Values();
    const int n = d.Count() * D::Component::kSize;
    for (int k = 0; k < n; ++k)
        out[k] = from[k];
}

// Every stored component of a banded distribution into `out`: zero outside the band.
template <class D>
void GetBanded(const D& d, double* out) {
    constexpr int size = D::Component::kSize;
    for (int i = 0; i < d.Count(); ++i)
        for (int j = 0; j < size; ++j)
            out[i * size + j] = d.Get(i)[j];
}

// Every stored component gets intensity `value`; Q, U and V of a Stokes vector become 0.
template <class D>
void FillStored(D& d, double value) {
    for (int i = 0; i < d.Count(); ++i) {
        d[i] = typename D::Component{};
        d[i][0] = value;
    }
}

// A light colour copied with its band.
template <class L>
void CopyRanged(const L& from, L& to) {
    to.Distr().CopyValues(from.Distr());
    to.Distr().SetBand(from.Distr().First(), from.Distr().Last());
}

} // namespace SpectralAccess

template <class Pol>
bool SpectralModel<Pol>::IsEqualSurfColor(const ISurfColor& a, const ISurfColor& b) const {
    return ColourAccess::Value<SpectralModel>(a) == ColourAccess::Value<SpectralModel>(b);
}

template <class Pol>
bool SpectralModel<Pol>::IsEqualScalarColor(const IScalarColor& a, const IScalarColor& b) const {
    return ColourAccess::Value<SpectralModel>(a) == ColourAccess::Value<SpectralModel>(b);
}

template <class Pol>
bool SpectralModel<Pol>::IsEqualRayColor(const IRayColor& a, const IRayColor& b) const {
    return ColourAccess::Value<SpectralModel>(a) == ColourAccess::Value<SpectralModel>(b);
}

template <class Pol>
bool SpectralModel<Pol>::IsEqualLgtColor(const ILgtColor& a, const ILgtColor& b) const {
    return ColourAccess::Value<SpectralModel>(a) == ColourAccess::Value<SpectralModel>(b);
}

template <class Pol>
void SpectralModel<Pol>::CopyColor(const ISurfColor& from, ISurfColor& to) const {
    ColourAccess::Value<SpectralModel>(to).Distr().CopyValues(
        ColourAccess::Value<SpectralModel>(from).Distr());
}

template <class Pol>
void SpectralModel<Pol>::CopyColor(const IScalarColor& from, IScalarColor& to) const {
    ColourAccess::Value<SpectralModel>(to).Distr().CopyValues(
        ColourAccess::Value<SpectralModel>(from).Distr());
}

template <class Pol>
void SpectralModel<Pol>::CopyRangedColor(const IRayColor& from, IRayColor& to) const {
    const auto& source = ColourAccess::Value<SpectralModel>(from);
    auto& target = ColourAccess::Value<SpectralModel>(to);
    SpectralAccess::CopyRanged(source.Light(), target.Light());
    TVect3<double> xort;
    if (ColourAccess::GetXOrt(source, xort))
        ColourAccess::SetXOrt(target, xort);
}

template <class Pol>
void SpectralModel<Pol>::CopyRangedColor(const ILgtColor& from, ILgtColor& to) const {
    SpectralAccess::CopyRanged(ColourAccess::Value<SpectralModel>(from),
                               ColourAccess::Value<SpectralModel>(to));
}

template <class Pol>
void SpectralModel<Pol>::SetSurfColor(ISurfColor& c, const double* values) const {
    SpectralAccess::SetStored(ColourAccess::Value<SpectralModel>(c).Distr(), values);
}

template <class Pol>
void SpectralModel<Pol>::SetScalarColor(IScalarColor& c, const double* values) const {
    SpectralAccess::SetStored(ColourAccess::Value<SpectralModel>(c).Distr(), values);
}

template <class Pol>
void SpectralModel<Pol>::SetFromFloats(ILgtColor& c, const float* values) const {
    SpectralAccess::SetStored(ColourAccess::Value<SpectralModel>(c).Distr(), values);
}

template <class Pol>
void SpectralModel<Pol>::SetLgtColor(ILgtColor& c, const double* values) const {
    SpectralAccess::SetStored(ColourAccess::Value<SpectralModel>(c).Distr(), values);
}

template <class Pol>
void SpectralModel<Pol>::SetRangedColor(ILgtColor& c, const double* values) const {
    auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    for (int k = 0; k < NWaves(); ++k) {
        auto& component = d.At(k);
        if constexpr (Pol::kIsPolarized)
            component = typename Pol::LightComp{};
        component[0] = values[k];
    }
}

template <class Pol>
void SpectralModel<Pol>::SurfToArray(const ISurfColor& c, double* out) const {
    SpectralAccess::GetStored(ColourAccess::Value<SpectralModel>(c).Distr(), out);
}

template <class Pol>
void SpectralModel<Pol>::ScalarToArray(const IScalarColor& c, double* out) const {
    SpectralAccess::GetStored(ColourAccess::Value<SpectralModel>(c).Distr(), out);
}

template <class Pol>
void SpectralModel<Pol>::LgtToArray(const ILgtColor& c, double* out) const {
    SpectralAccess::GetBanded(ColourAccess::Value<SpectralModel>(c).Distr(), out);
}

template <class Pol>
void SpectralModel<Pol>::RayToArray(const IRayColor& c, double* out) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Light().Distr();
    for (int k = 0; k < d.Count(); ++k)
        out[k] = d.Get(k)[0];
}

template <class Pol>
void SpectralModel<Pol>::FillColor(ILgtColor& c, double value) const {
    SpectralAccess::FillStored(ColourAccess::Value<SpectralModel>(c).Distr(), value);
}

template <class Pol>
void SpectralModel<Pol>::FillColor(IRayColor& c, double value) const {
    SpectralAccess::FillStored(ColourAccess::Value<SpectralModel>(c).Light().Distr(), value);
}

template <class Pol>
bool SpectralModel<Pol>::GetXOrt(const IRayColor& c, TVect3<double>& xort) const {
    return ColourAccess::GetXOrt(ColourAccess::Value<SpectralModel>(c), xort);
}

template <class Pol>
void SpectralModel<Pol>::SetXOrt(IRayColor& c, const TVect3<double>& xort) const {
    ColourAccess::SetXOrt(ColourAccess::Value<SpectralModel>(c), xort);
}

} // namespace Korvane
