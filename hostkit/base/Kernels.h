// Kernels: the loops that every per-ray conversion ends in, over plain arrays of doubles.
//
// Each kernel computes exactly what the plain loop beside it says, in the same order: every
// element's arithmetic is the written expression (no contraction into fused multiply-adds, no
// reassociation), and every sum adds its terms in index order. So the results are the same bits
// on every body and every processor; only the speed differs.
//
// Bodies: a baseline body for any x86-64 (or other) processor, and on x86-64 Linux an AVX2 body
// of the same source. The body is chosen once, when the host library is loaded, from what the
// processor offers; tests may run every available body (Select) and compare their bits.
//
// No kernel allocates, locks or writes anything but its output.
#pragma once

#include "hostkit/HostExport.h"

namespace Korvane::Kernels {

// out[i] = a[i] * x + b[i] * y + c[i] * z, i = 0 .. n-1 (left to right). `out` may not overlap
// the inputs.
KOR_HOST_API void Combine3(const double* a, const double* b, const double* c, double x, double y,
                           double z, double* out, int n);

// v[i] = v[i] < 0.0 ? 0.0 : v[i]: negatives become +0.0, a NaN and -0.0 stay as they are.
KOR_HOST_API void ClampNegatives(double* v, int n);

// out[c] = sum over i of s[i * stride] * rows[4 * i + c], c = 0..3, each channel summed from 0.0
// in index order: the weighted sum over rows of four channels.
KOR_HOST_API void SumRows4(const double* s, int stride, const double* rows, int n, double out[4]);

// The same over rows of three channels (rows[3 * i + c], c = 0..2).
KOR_HOST_API void SumRows3(const double* s, int stride, const double* rows, int n, double out[3]);

// v[i * stride + c] *= w[i], c = 0 .. stride-1: a weight per wavelength applied to every double
// of its component (stride 1: plain values, 4: Stokes vectors).
KOR_HOST_API void Scale(double* v, int stride, const double* w, int n);

// out[i] = v[j] + 0.0 * v[j + 1] with j = first + step * i: linear interpolation at targets that
// fall exactly on source sample j, where the weights are 1 and 0 (written without the 1.0 *,
// which changes no bit). `out` may not overlap `v`.
KOR_HOST_API void PickExact(const double* v, int first, int step, double* out, int n);

// Whether t[i] == s[j] and s[j + 1] - s[j] >= DBL_MIN for every i < n, j = first + step * i:
// targets that lie on source samples `step` apart, each sample starting an interval whose
// reciprocal width is finite. When they do, `width` is the width of the first such interval if
// every one has that width bit for bit, else NaN.
KOR_HOST_API bool SamplesMatch(const double* s, const double* t, int first, int step, int n,
                               double& width);

// Linear interpolation in pairs of targets over one interval each, target 2p at the left end of
// interval [v[2p], v[2p+1]] (weights 1 and 0) and target 2p+1 at its right end with weight u on
// the right: out[i] = (1 - U) v[2p] + U v[2p+1], U = 0 for even i and u for odd i, p = i / 2.
// `out` may not overlap `v`; v is read up to index n (n odd) or n - 1.
KOR_HOST_API void LerpPairs(const double* v, double u, double* out, int n);

// The bodies a processor can run.
enum class Isa { Baseline, Avx2 };

// The body in use.
KOR_HOST_API Isa Active();
// Whether this build and processor can run `isa`.
KOR_HOST_API bool Available(Isa isa);
// Runs the bodies of `isa` from now on; false (and no change) when it is not available.
// Configuration time only: for tests that compare the bodies.
KOR_HOST_API bool Select(Isa isa);

} // namespace Korvane::Kernels
