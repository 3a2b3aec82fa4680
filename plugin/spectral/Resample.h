// Resampling of spectral values from one wavelength grid s[0..m-1] onto another t[0..n-1]: each
// target wavelength takes the straight line between the two source samples around it, and values
// outside the source range are held at the nearest end value (no extrapolation, no zero fill):
//
//   target(t) = (1 - u) v[j] + u v[j+1],  u = (t - s[j]) / (s[j+1] - s[j]),  s[j] < t < s[j+1]
//   target(t) = v[0] for t <= s[0],  v[m-1] for t >= s[m-1]
//
// Two forms. ResampleSpectrum walks the target grid once, keeps the current source interval and
// its reciprocal width, and finds a new interval (a guess that grids which line up confirm, else a
// few steps, else bisection) only when a target wavelength passes the interval's right end; equal
// grids are copied bit for bit; targets that all fall on source samples a fixed number of steps
// apart (grids that line up) skip the walk and take the samples, confirming each as it is taken
// (WalkOnSamples; the walk runs after all, writing every target anew, when one is off its sample).
// Whatever way an interval is found, it is the one bisection finds, so every value is
// (1 - u) v[j] + u v[j+1] with u = (t - s[j]) * (1 / (s[j+1] - s[j])). It
// reads and writes colour components through a layout (SpectrumLayout), so the one walk serves
// plain values, Stokes vectors and Mueller matrices. ResampleValues is the plain-array form: one
// bisection per target wavelength and a division per value; it gives the same values up to the
// rounding of u (a multiplication by the reciprocal width against a division).
#pragma once

#include "hostkit/base/Kernels.h"
#include "hostkit/base/containers/TArray.h"
#include "plugin/PluginExport.h"

#include <limits>

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
// directly, index 0 to its count - 1. kBanded = false is the same layout for a band that covers
// the whole source (ResampleSpectrum picks it by itself): no band test per read. kClamp (plain
// values only) writes every value v as v < 0.0 ? 0.0 : v (a NaN and -0.0 kept): the resampling
// followed by the clamp of a light's negatives, in one pass.
template <int kSource, int kTarget, bool kBanded = true, bool kClamp = false>
class SpectrumLayout {
    static_assert(!kClamp || kTarget == 1, "only plain target values are clamped");

public:
    SpectrumLayout(const double* source, int sourceCount, int first, int last, double* target,
                   int targetCount)
        : source_(source), sourceCount_(sourceCount), first_(first), last_(last), target_(target),
          targetCount_(targetCount) {}

    int SourceCount() const { return sourceCount_; }
    int TargetCount() const { return targetCount_; }
    // Whether every source component lies inside the band.
    bool CoversSource() const { return first_ <= 0 && last_ >= sourceCount_ - 1; }
    SpectrumLayout<kSource, kTarget, false, kClamp> Unbanded() const {
        return {source_, sourceCount_, 0, sourceCount_ - 1, target_, targetCount_};
    }

    // Target component i = source component j.
    void Copy(int i, int j) {
        double* to = target_ + i * kTarget;
        const double* from = Source(j);
        for (int c = 0; c < kCarried; ++c)
            to[c] = Put(from ? from[c] : 0.0);
        for (int c = kCarried; c < kTarget; ++c)
            to[c] = 0.0;
    }
    // Targets lo .. lo+count-1 = source component j (Copy, once, then its doubles again).
    void Hold(int lo, int count, int j) {
        if (count <= 0)
            return;
        Copy(lo, j);
        double held[kTarget];
        double* to = target_ + lo * kTarget;
        for (int c = 0; c < kTarget; ++c)
            held[c] = to[c];
        for (int i = 1; i < count; ++i)
            for (int c = 0; c < kTarget; ++c)
                to[i * kTarget + c] = held[c];
    }
    // Targets lo .. lo+count-1 on source wavelengths s[first], s[first+step], ..., confirmed as
    // they are taken: whether each target equals its sample and the interval from that sample is
    // at least DBL_MIN wide; if so each takes Lerp with u = 0, which is what the walk computes for
    // a target found anew on its interval's left end. When not, the targets hold no particular
    // values (nothing else is written).
    bool PickOnSamples(const double* s, const double* t, int lo, int count, int first, int step) {
        if constexpr (kSource == 1 && kTarget == 1 && !kBanded) {
            return Kernels::PickOnSamples(s + first, t + lo, source_ + first, step, target_ + lo,
                                          count, kClamp);
        } else {
            bool on = true;
            for (int i = 0; i < count && on; ++i) {
                const int j = first + step * i;
                on = t[lo + i] == s[j] && s[j + 1] - s[j] >= std::numeric_limits<double>::min();
                Lerp(lo + i, j, 0.0);
            }
            return on;
        }
    }
    // The same for targets lo .. lo+count-1 on consecutive samples from `first` on, each also
    // confirmed to start an interval of the first one's width w: taken in pairs over the
    // intervals from `first` on, the first of a pair at its interval's left end (u = 0), the
    // second at its right end (u = w (1 / w)).
    bool PairsOnSamples(const double* s, const double* t, int lo, int count, int first) {
        if constexpr (kSource == 1 && kTarget == 1 && !kBanded) {
            return Kernels::PairsOnSamples(s + first, t + lo, source_ + first, target_ + lo, count,
                                           kClamp);
        } else {
            const double w = s[first + 1] - s[first];
            const double u = w * (1.0 / w);
            bool on = w >= std::numeric_limits<double>::min();
            for (int i = 0; i < count && on; ++i) {
                const int j = first + i;
                on = t[lo + i] == s[j] && s[j + 1] - s[j] == w;
                Lerp(lo + i, first + (i & ~1), (i & 1) ? u : 0.0);
            }
            return on;
        }
    }
    // Target component i = (1 - u) source j + u source j+1.
    void Lerp(int i, int j, double u) {
        double* to = target_ + i * kTarget;
        const double* a = Source(j);
        const double* b = Source(j + 1);
        const double w = 1.0 - u;
        if constexpr (kBanded) {
            for (int c = 0; c < kCarried; ++c)
                to[c] = Put(w * (a ? a[c] : 0.0) + u * (b ? b[c] : 0.0));
        } else {
            for (int c = 0; c < kCarried; ++c)
                to[c] = Put(w * a[c] + u * b[c]);
        }
        for (int c = kCarried; c < kTarget; ++c)
            to[c] = 0.0;
    }

private:
    static constexpr int kCarried = kSource == kTarget ? kTarget : 1;

    static double Put(double v) {
        if constexpr (kClamp)
            return v < 0.0 ? 0.0 : v;
        return v;
    }

    const double* Source(int j) const {
        if constexpr (kBanded)
            return j >= first_ && j <= last_ ? source_ + j * kSource : nullptr;
        else
            return source_ + j * kSource;
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

namespace ResampleDetail {

// The number of source wavelengths not above w, less one, found by a few steps up from `from`
// (the usual case: w lies close past it), bisection past them; the same index either way on an
// ascending grid.
inline int IntervalNear(const TArray<double>& grid, double w, int from) {
    const double* s = grid.Data();
    const int m = grid.Count();
    int j = from;
    const int stop = from + 8;
    const int last = stop < m - 1 ? stop : m - 1; // j + 1 < m and j < stop
    while (j < last && s[j + 1] <= w)
        ++j;
    if (j == stop && j + 1 < m && s[j + 1] <= w)
        j = CountNotAbove(grid, w) - 1;
    return j;
}

// The walk of ResampleSpectrum over the target indexes lo..hi, which lie strictly inside the
// source range (m >= 2). j is the current interval [s[j], s[j+1]]; it is found anew only when a
// target passes its right end, and then first guessed: the previous find moved j by some
// `advance`, and on grids that line up (the same step, or one a whole multiple of the other) the
// next find moves it by the same amount, which two comparisons confirm (s[k] <= w < s[k+1] is
// the bisection's answer on an ascending grid). Only a failed guess walks or bisects. The
// reciprocal width is computed once per interval, and not even that when the width is the
// previous interval's bit for bit (the same division gives the same bits): on an equidistant
// source one division serves the whole walk.
template <class Layout>
int Walk(const double* s, int m, const double* t, int lo, int hi, const TArray<double>& grid,
         Layout& layout) {
    // The number of source wavelengths not above t[0], less one: a few steps from the start (the
    // usual case: both grids start close together), bisection past them; the same index either
    // way on an ascending grid.
    int j = IntervalNear(grid, t[0], -1);
    int advance = 1;
    double width = std::numeric_limits<double>::quiet_NaN(); // equal to no width
    double reciprocalWidth = 0.0;
    if (j >= 0 && j < m - 1) {
        width = s[j + 1] - s[j];
        reciprocalWidth = 1.0 / width;
    }
    for (int i = lo; i <= hi; ++i) {
        const double w = t[i];
        if (j < 0 || j >= m - 1 || w > s[j + 1]) {
            int k = j + advance;
            if (!(j >= 0 && k >= 0 && k < m - 1 && s[k] <= w && w < s[k + 1]))
                k = w == s[m - 1] ? m - 2 : NextInterval(grid, w, j);
            if (k < 0 || k >= m - 1)
                return -1;
            if (j >= 0)
                advance = k - j;
            j = k;
            const double next = s[j + 1] - s[j];
            if (!(next == width)) {
                width = next;
                reciprocalWidth = 1.0 / width;
            }
        }
        layout.Lerp(i, j, (w - s[j]) * reciprocalWidth);
    }
    return 0;
}

// Where the targets lo..hi (strictly inside the source range) would lie if they lay on source
// samples a fixed number of steps apart, as the first two targets' intervals tell: target lo on
// sample `first`, the others `step` samples apart (0 for a single target). False when that is off
// the source, or possible only on a grid that does not ascend; whether the targets really lie
// there is left to WalkOnSamples, which confirms it as it takes them.
inline bool LinedUp(const TArray<double>& grid, const double* t, int lo, int hi, int& first,
                    int& step) {
    const int m = grid.Count();
    first = IntervalNear(grid, t[lo], -1);
    step = hi > lo ? IntervalNear(grid, t[lo + 1], first) - first : 0;
    return first >= 0 && (hi == lo || step >= 1) && first + step * (hi - lo) <= m - 2;
}

// The walk over targets that lie on source samples, without its searches, or false when they do
// not. A target found anew sits at the left end of its interval: u = 0, the value
// (1 - 0) v[k] + 0 v[k+1]. But the walk keeps an interval while a target does not pass its right
// end, so a target equal to that right end stays, with u = w (1 / w) (1, or just below): the
// first target when the walk's starting interval `j0` (the one of t[0]) ends on it, and on grids
// of one step every target after one found anew. Each target is confirmed to lie on its sample,
// with an interval from it at least DBL_MIN wide (so that its reciprocal is finite and 0 times it
// is 0, as in the walk), as it is written; on grids of one step every such interval must also have
// the first one's width (one u serves them all). Like the walk's guesses, this gives the
// bisection's intervals on a source grid that ascends, as every model's grid does. When false,
// the targets lo..hi hold no particular values, and nothing else has been written.
template <class Layout>
bool WalkOnSamples(const double* s, const double* t, int j0, int lo, int hi, int first, int step,
                   Layout& layout) {
    int i = lo;
    if (j0 >= 0 && j0 + 1 == first) {
        if (!(t[lo] == s[first] && s[first + 1] - s[first] >= std::numeric_limits<double>::min()))
            return false;
        layout.Lerp(i++, j0, (t[lo] - s[j0]) * (1.0 / (s[first] - s[j0])));
    }
    if (i > hi)
        return true;
    const int from = first + step * (i - lo);
    if (step > 1)
        return layout.PickOnSamples(s, t, i, hi - i + 1, from, step);
    return layout.PairsOnSamples(s, t, i, hi - i + 1, from);
}

template <class Layout>
int Resample(const TArray<double>& s, const TArray<double>& t, Layout& layout) {
    const int m = s.Count();
    const int n = t.Count();
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
    const double* sv = s.Data();
    const double* tv = t.Data();
    int lo = 0;
    while (lo < n && tv[lo] <= sv[0])
        ++lo;
    layout.Hold(0, lo, 0);
    if (lo == n)
        return 0;
    int hi = n - 1;
    while (hi >= lo && tv[hi] >= sv[m - 1])
        --hi;
    layout.Hold(hi + 1, n - 1 - hi, m - 1);
    int first = 0, step = 0;
    if (hi >= lo && LinedUp(s, tv, lo, hi, first, step)) {
        // The interval of t[0], as the walk starts from: the one just found when t[0] is inside
        // the source, none (-1) below it; at s[0], as many samples as equal it, less one.
        const int j0 = lo == 0 ? first : tv[0] < sv[0] ? -1 : IntervalNear(s, tv[0], -1);
        if (WalkOnSamples(sv, tv, j0, lo, hi, first, step, layout))
            return 0;
    }
    return Walk(sv, m, tv, lo, hi, s, layout); // writes every target lo..hi anew
}

} // namespace ResampleDetail

// Resamples the layout's source over grid s onto its target over grid t. Returns 0, or -1 when
// the target's count is not t's or the source's is not s's, when s is empty (and t is not), or
// when no source interval holds a target wavelength (grids that are not ascending). Nothing is
// allocated and nothing but the target is written.
template <class Layout>
int ResampleSpectrum(const TArray<double>& s, const TArray<double>& t, Layout& layout) {
    if (layout.TargetCount() != t.Count() || layout.SourceCount() != s.Count())
        return -1;
    if (layout.CoversSource()) {
        auto whole = layout.Unbanded();
        return ResampleDetail::Resample(s, t, whole);
    }
    return ResampleDetail::Resample(s, t, layout);
}

// The plain-array form: `count` values v over grid s into `outCount` values over grid t.
// Returns 0, or -1 when outCount is not t's count or count is not s's, or when s is empty and t
// is not (there is no end value to hold).
KOR_PLUGIN_API int ResampleValues(const TArray<double>& s, const double* v, int count,
                                  const TArray<double>& t, double* out, int outCount);

} // namespace Korvane
