// The mean over wavelengths with which the BW model reads a polarized spectral colour: a weighted
// mean of each element of the colour's components. With wavelengths l[0..m-1] of the source model,
// component values a[0..m-1] and intervals d(i) = l[i+1] - l[i]:
//
//   w[0] = d(0),   w[i] = (d(i-1) + d(i)) / 2 for 0 < i < m-1,   w[m-1] = d(m-2)
//   mean = sum w[i] a[i] / ((l[m-1] - l[0]) + (d(0) + d(m-2)) / 2)
//
// The end samples deliberately get a full interval rather than the half of a trapezoid rule, and
// the divisor is the range widened by half an end interval on each side, so that the weights sum
// to the divisor and a constant spectrum keeps its value. One wavelength gives a[0] itself.
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "plugin/spectral/ExtSpctrlColourDistr.h"
#include "plugin/spectral/SpctrlColourDistr.h"

namespace Korvane::BWWaveMean {

// Component i as the mean reads it: a light colour reads zero outside its band, any other
// distribution reads its stored components; beyond the stored count everything reads zero.
template <class Comp>
const Comp& At(const ExtSpctrlColourDistr<Comp>& d, int i) {
    return d.Get(i);
}
template <class Comp>
const Comp& At(const SpctrlColourDistr<Comp>& d, int i) {
    static constexpr Comp kZero{};
    return i >= 0 && i < d.Count() ? d[i] : kZero;
}

// Writes the means of elements 0..K-1 of the components of `d` into mean[0..K-1]. Returns 0 in
// every case: a distribution without storage, or a grid without wavelengths, leaves `mean` as it
// was and is not a failure. Callers still hand a non-zero status to their failure report.
template <int K, class D>
int Mean(const TArray<double>& waves, const D& d, double* mean) {
    static_assert(K >= 1 && K <= D::Component::kSize, "a mean over elements the components have");
    const int m = waves.Count();
    if (d.Values() == nullptr || m == 0)
        return 0;
    if (m == 1) {
        for (int e = 0; e < K; ++e)
            mean[e] = At(d, 0)[e];
        return 0;
    }
    const double first = waves[1] - waves[0];
    const double last = waves[m - 1] - waves[m - 2];
    double sum[K] = {};
    for (int i = 0; i < m; ++i) {
        double w = first;
        if (i == m - 1)
            w = last;
        else if (i > 0)
            w = ((waves[i] - waves[i - 1]) + (waves[i + 1] - waves[i])) / 2.0;
        const auto& a = At(d, i);
        for (int e = 0; e < K; ++e)
            sum[e] += w * a[e];
    }
    const double divisor = (waves[m - 1] - waves[0]) + (first + last) / 2.0;
    for (int e = 0; e < K; ++e)
        mean[e] = sum[e] / divisor;
    return 0;
}

} // namespace Korvane::BWWaveMean
