// Resampling of spectral values from one wavelength grid s[0..m-1] onto another t[0..n-1]: each
// target wavelength takes the straight line between the two source samples around it, and values
// outside the source range are held at the nearest end value (no extrapolation, no zero fill):
//
//   target(t) = (1 - u) v[j] + u v[j+1],  u = (t - s[j]) / (s[j+1] - s[j]),  s[j] < t < s[j+1]
//   target(t) = v[0] for t <= s[0],  v[m-1] for t >= s[m-1]
//
// Two forms. ResampleSpectrum walks the target grid once, keeps the current source interval and
// its reciprocal width, and searches (by bisection) only when a target wavelength passes the
// interval's right end; equal grids are copied bit for bit. It reads and writes colour
// components through a layout (SpectrumLayout), so the one walk serves plain values, Stokes
// vectors and Mueller matrices. ResampleValues is the plain-array form: one bisection per target
// wavelength and a division per value; it gives the same values up to the rounding of
// u (a multiplication by the reciprocal width against a division).
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "plugin/PluginExport.h"

namespace Korvane {

// Number of wavelengths of the ascending grid s that are not above w, by bisection.
inline int CountNotAbove(const TArray<double>& s, double w) {
    int lo = 0;
    int hi = s.Count() - 1;
    while (lo <= hi) {
        const int mid = (lo + hi) / 2;
        if (s[mid] > w)
            hi = mid - 1;
        else
            lo = mid + 1;
    }
    return lo;
}

// Components of kSource doubles per source wavelength resampled into components of kTarget
// doubles per target wavelength. Equal sizes: every double of a component is interpolated with
// the same u. Different sizes: only the first double is carried (the intensity, I of a Stokes
// vector, element (0,0) of a Mueller matrix) and the other doubles of a target component become
// 0. Source components outside the band [first, last] read as zero, as a banded light
// distribution does; pass [0, count - 1] for a source without a band. The target is written
// directly, index 0 to its count - 1.
template <int kSource, int kTarget>
class SpectrumLayout {
public:
    SpectrumLayout(const double* source, int sourceCount, int first, int last, double* target,
                   int targetCount)
        : source_(source), sourceCount_(sourceCount), first_(first), last_(last), target_(target),
          targetCount_(targetCount) {}

    int SourceCount() const { return sourceCount_; }
    int TargetCount() const { return targetCount_; }

    // Target component i = source component j.
    void Copy(int i, int j) {
        double* to = target_ + i * kTarget;
        const double* from = Source(j);
        for (int c = 0; c < kCarried; ++c)
            to[c] = from ? from[c] : 0.0;
        for (int c = kCarried; c < kTarget; ++c)
            to[c] = 0.0;
    }
    // Target component i = (1 - u) source j + u source j+1.
    void Lerp(int i, int j, double u) {
        double* to = target_ + i * kTarget;
        const double* a = Source(j);
        const double* b = Source(j + 1);
        for (int c = 0; c < kCarried; ++c)
            to[c] = (1.0 - u) * (a ? a[c] : 0.0) + u * (b ? b[c] : 0.0);
        for (int c = kCarried; c < kTarget; ++c)
            to[c] = 0.0;
    }

private:
    static constexpr int kCarried = kSource == kTarget ? kTarget : 1;

    const double* Source(int j) const {
        return j >= first_ && j <= last_ ? source_ + j * kSource : nullptr;
    }

    const double* source_;
    int sourceCount_;
    int first_;
    int last_;
    double* target_;
    int targetCount_;
};

// The interval of target wavelength w, the largest j with s[j] <= w, as bisection finds it
// (CountNotAbove - 1). Targets ascend, so the next interval is usually a step or two past the
// current one `from`: a few steps are walked first, and bisection runs only when they fall short.
inline int NextInterval(const TArray<double>& s, double w, int from) {
    constexpr int kSteps = 4;
    const int m = s.Count();
    int j = from < 0 ? 0 : from;
    if (s[j] > w)
        return CountNotAbove(s, w) - 1;
    for (int k = 0; k < kSteps && j + 1 < m && s[j + 1] <= w; ++k)
        ++j;
    if (j + 1 < m && s[j + 1] <= w)
        return CountNotAbove(s, w) - 1;
    return j;
}

// Resamples the layout's source over grid s onto its target over grid t. Returns 0, or -1 when
// the target's count is not t's or the source's is not s's, when s is empty (and t is not), or
// when no source interval holds a target wavelength (grids that are not ascending).
template <class Layout>
int ResampleSpectrum(const TArray<double>& s, const TArray<double>& t, Layout& layout) {
    const int m = s.Count();
    const int n = t.Count();
    if (layout.TargetCount() != n || layout.SourceCount() != m)
        return -1;
    if (s.IsEqual(t)) {
        for (int i = 0; i < m; ++i)
            layout.Copy(i, i);
        return 0;
    }
    if (m == 1) {
        for (int i = 0; i < n; ++i)
            layout.Copy(i, 0);
        return 0;
    }
    if (m == 0)
        return -1;

    // Target wavelengths at or beyond either end of the source take the end value.
    int lo = 0;
    for (; lo < n && t[lo] <= s[0]; ++lo)
        layout.Copy(lo, 0);
    if (lo == n)
        return 0;
    int hi = n - 1;
    for (; hi >= lo && t[hi] >= s[m - 1]; --hi)
        layout.Copy(hi, m - 1);

    // The rest lie strictly inside: interval j is [s[j], s[j+1]].
    int j = CountNotAbove(s, t[0]) - 1;
    double reciprocalWidth = j >= 0 && j < m - 1 ? 1.0 / (s[j + 1] - s[j]) : 0.0;
    for (int i = lo; i <= hi; ++i) {
        if (j < 0 || j >= m - 1 || t[i] > s[j + 1]) {
            j = t[i] == s[m - 1] ? m - 2 : NextInterval(s, t[i], j);
            if (j < 0 || j >= m - 1)
                return -1;
            reciprocalWidth = 1.0 / (s[j + 1] - s[j]);
        }
        layout.Lerp(i, j, (t[i] - s[j]) * reciprocalWidth);
    }
    return 0;
}

// The plain-array form: `count` values v over grid s into `outCount` values over grid t.
// Returns 0, or -1 when outCount is not t's count or count is not s's, or when s is empty and t
// is not (there is no end value to hold).
KOR_PLUGIN_API int ResampleValues(const TArray<double>& s, const double* v, int count,
                                  const TArray<double>& t, double* out, int outCount);

} // namespace Korvane
