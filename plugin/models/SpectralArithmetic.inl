// SpectralModel<Pol>: energy, density, luminance, arithmetic, clamping and validity of spectral
// colours. Included by SpectralModel.cpp.
//
// A light value is read as the energy of its wavelength's band. The two per-wavelength factor
// tables are the grid's trapezoid weights w[k] (BSpectralModel::GetWeights, in nm) and their
// reciprocals 1/w[k] (GetWeightsInv):
//
//   DensityToEnergy   v[k] *= w[k]      (per-nm density -> band energy, also the ray weights)
//   EnergyToDensity   v[k] *= 1/w[k]    (band energy -> per-nm density)
//   LgtLuminance      sum_k v[k] Ybar[k] / w[k]   (Ybar[k]: the Y of a unit spike at k)
//   LgtEnergy         trapezoid area under the curve over the grid
//
// so the two conversions undo each other up to one rounding per value, and luminance of an
// energy spectrum is the CIE Y of the density it stands for.
//
// Light and ray colours are banded: a read outside [first, last] gives 0 and a write there is
// lost, so the loops below visit only the stored part of the band. With Stokes polarization a
// value is the vector (I, Q, U, V): factors scale all four, sums and tests read I.
#pragma once

namespace Korvane {
namespace SpectralArithmetic {

// Inclusive index range; empty when lo > hi.
struct IndexRange {
    int lo;
    int hi;
};

// The indexes below n that are inside the band and have storage.
template <class D>
IndexRange StoredBand(const D& d, int n) {
    int hi = d.Last();
    if (hi > d.Count() - 1)
        hi = d.Count() - 1;
    if (hi > n - 1)
        hi = n - 1;
    return {d.First() > 0 ? d.First() : 0, hi};
}

// Every double of the component times f.
template <class Comp>
void Scale(Comp& c, double f) {
    for (int j = 0; j < Comp::kSize; ++j)
        c[j] *= f;
}

// Component k times factors[k] over the band, for k < min(n, factors.Count()).
template <class D>
void ScaleByTable(D& d, const MArray<double>& factors, int n) {
    const IndexRange r = StoredBand(d, n < factors.Count() ? n : factors.Count());
    if (r.lo <= r.hi)
        Kernels::Scale(d.Values() + r.lo * D::Component::kSize, D::Component::kSize,
                       factors.Data() + r.lo, r.hi - r.lo + 1);
}

// Every band value of the distribution times f.
template <class D>
void ScaleBand(D& d, double f) {
    const IndexRange r = StoredBand(d, d.Count());
    for (int k = r.lo; k <= r.hi; ++k)
        Scale(d[k], f);
}

// Sum of the intensities of every stored component, index 0 to Count() - 1, band or not.
template <class D>
double SumStored(const D& d) {
    double s = 0.0;
    for (int k = 0; k < d.Count(); ++k)
        s += d[k][0];
    return s;
}

// The wavelength count of the shared spectrogram (the implicit spectral model), over which the
// host's per-wavelength factor arrays run. Before any spectral model has been made implicit the
// model's own count stands in, so that the operations never read a missing model.
inline int SpectrogramCount(int ownCount) {
    return BSpectralModel::GetKLBMSpectralModel() ? BSpectralModel::NColours() : ownCount;
}

// Normalizes a light distribution to intensity sum 1: a zero sum first makes the band flat
// (1 inside, 0 outside); a sum of exactly 1 changes nothing.
template <class D>
void Normalize(D& d) {
    double s = SumStored(d);
    if (s == 0.0) {
        typename D::Component one{};
        one[0] = 1.0;
        d.Fill(one);
        s = SumStored(d);
        if (s == 0.0) // no storage, or a band outside it: nothing to scale
            return;
    } else if (s == 1.0) {
        return;
    }
    ScaleBand(d, 1.0 / s);
}

} // namespace SpectralArithmetic

// Validity of a surface: every stored reflectance (with Stokes polarization element (0,0), the
// unpolarized reflectance of the Mueller matrix) in [0, 1]; a NaN is not valid.
template <class Pol>
bool SpectralModel<Pol>::IsValidSurfColor(const ISurfColor& c) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    for (int k = 0; k < d.Count() && k < NWaves(); ++k)
        if (!(d[k][0] >= 0.0 && d[k][0] <= 1.0))
            return false;
    return true;
}

// Validity of a light: every intensity inside the band at least 0 (the values ClampLgtColor
// leaves alone); a NaN is not valid.
template <class Pol>
bool SpectralModel<Pol>::IsValidLgtColor(const ILgtColor& c) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const SpectralArithmetic::IndexRange r = SpectralArithmetic::StoredBand(d, NWaves());
    for (int k = r.lo; k <= r.hi; ++k)
        if (!(d[k][0] >= 0.0))
            return false;
    return true;
}

// Unpolarized: every negative reflectance becomes 0; returns NWaves(). Stokes: a Mueller matrix
// has legitimately negative elements, so nothing is clamped and 0 is returned.
template <class Pol>
int SpectralModel<Pol>::ClampSurfColor(ISurfColor& c) const {
    if constexpr (Pol::kIsPolarized) {
        (void)c;
        return 0;
    } else {
        auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
        for (int k = 0; k < d.Count() && k < NWaves(); ++k)
            if (d[k][0] < 0.0)
                d[k][0] = 0.0;
        return NWaves();
    }
}

// Unpolarized: every negative value in the band becomes 0. Stokes: a vector whose I is negative
// becomes (0, 0, 0, 0); negative Q, U and V are left as they are.
template <class Pol>
void SpectralModel<Pol>::ClampLgtColor(ILgtColor& c) const {
    auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const SpectralArithmetic::IndexRange r = SpectralArithmetic::StoredBand(d, NWaves());
    if constexpr (Pol::kIsPolarized) {
        for (int k = r.lo; k <= r.hi; ++k)
            if (d[k][0] < 0.0)
                d[k] = typename Pol::LightComp{};
    } else if (r.lo <= r.hi) {
        // v < 0.0 ? 0.0 : v over the band, a NaN and -0.0 kept (Kernels.h).
        Kernels::ClampNegatives(d.Values() + r.lo, r.hi - r.lo + 1);
    }
}

// Every stored double onto `out` (Stokes: four per wavelength), band or not, as SumLgtColor
// reads them.
template <class Pol>
void SpectralModel<Pol>::AddLgtToArray(const ILgtColor& c, double* out) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const double* values = d.Values();
    const int n = d.Count() * Pol::LightComp::kSize;
    for (int i = 0; i < n; ++i)
        out[i] += values[i];
}

// The intensity of every stored wavelength onto `out`, one double each; outside the band the
// ray contributes 0.
template <class Pol>
void SpectralModel<Pol>::AddRayToArray(const IRayColor& c, double* out) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Light().Distr();
    const SpectralArithmetic::IndexRange r = SpectralArithmetic::StoredBand(d, d.Count());
    for (int k = r.lo; k <= r.hi; ++k)
        out[k] += d[k][0];
}

// Trapezoid area under the intensities over the grid l[0..n-1], 0 outside the band:
//   E = v0 (l1 - l0)/2 + sum_{0<k<n-1} vk (l[k+1] - l[k-1])/2 + v[n-1] (l[n-1] - l[n-2])/2,
// v0 alone on a one-point grid, 0 on an empty one.
template <class Pol>
double SpectralModel<Pol>::LgtEnergy(const ILgtColor& c) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const MArray<double>& l = GetWaveLengths();
    const int n = NWaves();
    if (n == 0)
        return 0.0;
    if (n == 1)
        return d.Get(0)[0];
    if (!Pol::kIsPolarized && d.First() <= 0 && d.Last() >= n - 1 && d.Count() >= n) {
        // Every value inside the band: read in place, the same sum in the same order.
        return Kernels::TrapezoidArea(d.Values(), l.Data(), n);
    }
    double e = d.Get(0)[0] * (l[1] - l[0]) / 2.0;
    for (int k = 1; k < n - 1; ++k)
        e += d.Get(k)[0] * (l[k + 1] - l[k - 1]) / 2.0;
    e += d.Get(n - 1)[0] * (l[n - 1] - l[n - 2]) / 2.0;
    return e;
}

template <class Pol>
double SpectralModel<Pol>::RayEnergy(const ILgtColor& c) const {
    return LgtEnergy(c);
}

// sum_k v[k] Ybar[k] / w[k] over the band. A model whose spike table is not built (a copy before
// its grid is set again or loaded) has no rows to weigh with and answers 0.
template <class Pol>
double SpectralModel<Pol>::LgtLuminance(const ILgtColor& c) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const TArray<TVect3<double>>& xyz = GetSpectral2XYZWeights();
    const MArray<double>& inv = GetWeightsInv();
    int n = NWaves();
    if (xyz.Count() < n)
        n = xyz.Count();
    if (inv.Count() < n)
        n = inv.Count();
    const SpectralArithmetic::IndexRange r = SpectralArithmetic::StoredBand(d, n);
    double luminance = 0.0;
    for (int k = r.lo; k <= r.hi; ++k)
        luminance += d[k][0] * xyz[k].y * inv[k];
    return luminance;
}

// Sum of the intensities in the band over the spectrogram's wavelength count.
template <class Pol>
double SpectralModel<Pol>::SumLgtValues(const ILgtColor& c) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const SpectralArithmetic::IndexRange r =
        SpectralArithmetic::StoredBand(d, SpectralArithmetic::SpectrogramCount(NWaves()));
    double s = 0.0;
    for (int k = r.lo; k <= r.hi; ++k)
        s += d[k][0];
    return s;
}

template <class Pol>
double SpectralModel<Pol>::RayEnergy(const IRayColor& c) const {
    return LgtEnergy(ColourAccess::Value<SpectralModel>(c).Light());
}

// Adds `from` into `to` over the indexes from to's first to min(to's last, from's count - 1):
// the scaled addition with factor 1, which adds every value unchanged.
template <class Pol>
void SpectralModel<Pol>::AddLgtColor(const ILgtColor& from, ILgtColor& to) const {
    ColourAccess::Value<SpectralModel>(to).Distr().AddScaled(
        ColourAccess::Value<SpectralModel>(from).Distr(), 1.0);
}

// Component k times factors[k] over the spectrogram's wavelength count.
template <class Pol>
void SpectralModel<Pol>::MulLgtColorByArray(ILgtColor& c, const double* factors) const {
    auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const SpectralArithmetic::IndexRange r =
        SpectralArithmetic::StoredBand(d, SpectralArithmetic::SpectrogramCount(NWaves()));
    for (int k = r.lo; k <= r.hi; ++k)
        SpectralArithmetic::Scale(d[k], factors[k]);
}

template <class Pol>
void SpectralModel<Pol>::ScaleLgtColor(ILgtColor& c, double factor) const {
    SpectralArithmetic::ScaleBand(ColourAccess::Value<SpectralModel>(c).Distr(), factor);
}

// Component k times a[k] / b[k] where b[k] > 0 (else unchanged), over the spectrogram's count.
template <class Pol>
void SpectralModel<Pol>::MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const {
    auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    const SpectralArithmetic::IndexRange r =
        SpectralArithmetic::StoredBand(d, SpectralArithmetic::SpectrogramCount(NWaves()));
    for (int k = r.lo; k <= r.hi; ++k) {
        const double ratio = b[k] > 0.0 ? a[k] / b[k] : 1.0;
        SpectralArithmetic::Scale(d[k], ratio);
    }
}

template <class Pol>
void SpectralModel<Pol>::EnergyToDensity(ILgtColor& c) const {
    SpectralArithmetic::ScaleByTable(ColourAccess::Value<SpectralModel>(c).Distr(), GetWeightsInv(),
                                     NWaves());
}

template <class Pol>
void SpectralModel<Pol>::DensityToEnergy(ILgtColor& c) const {
    SpectralArithmetic::ScaleByTable(ColourAccess::Value<SpectralModel>(c).Distr(), GetWeights(),
                                     NWaves());
}

// Intensity sum 1: a zero sum gives 1/(band width) in the band; with Stokes polarization the
// flat value is (1, 0, 0, 0) and scaling keeps the degree of polarization.
template <class Pol>
void SpectralModel<Pol>::NormalizeLgtColor(ILgtColor& c) const {
    SpectralArithmetic::Normalize(ColourAccess::Value<SpectralModel>(c).Distr());
}

template <class Pol>
void SpectralModel<Pol>::NormalizeLgtColor(IRayColor& c) const {
    SpectralArithmetic::Normalize(ColourAccess::Value<SpectralModel>(c).Light().Distr());
}

// to += f * from, every double of a component, over to's band (ExtSpctrlColourDistr::AddScaled).
template <class Pol>
void SpectralModel<Pol>::AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const {
    ColourAccess::Value<SpectralModel>(to).Distr().AddScaled(
        ColourAccess::Value<SpectralModel>(from).Distr(), f);
}

template <class Pol>
void SpectralModel<Pol>::AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const {
    ColourAccess::Value<SpectralModel>(to).Light().Distr().AddScaled(
        ColourAccess::Value<SpectralModel>(from).Light().Distr(), f);
}

template <class Pol>
void SpectralModel<Pol>::AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const {
    ColourAccess::Value<SpectralModel>(to).Distr().AddScaled(
        ColourAccess::Value<SpectralModel>(from).Light().Distr(), f);
}

// Sum of every stored intensity, band or not.
template <class Pol>
double SpectralModel<Pol>::SumLgtColor(const ILgtColor& c) const {
    return SpectralArithmetic::SumStored(ColourAccess::Value<SpectralModel>(c).Distr());
}

} // namespace Korvane
