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

// The trapezoid area of n >= 2 values v over the grid l: e = v[0] (l[1] - l[0]) / 2, then
// e += v[k] (l[k + 1] - l[k - 1]) / 2 for k = 1 .. n-2, then e + v[n-1] (l[n-1] - l[n-2]) / 2.
// A chain of dependent additions, which the AVX2 body's encoding runs faster.
KOR_HOST_API double TrapezoidArea(const double* v, const double* l, int n);

// Targets on source samples `step` apart, confirmed while they are taken: whether t[i] == s[j]
// and s[j + 1] - s[j] >= DBL_MIN (an interval whose reciprocal width is finite) for every i < n,
// j = step * i, writing out[i] = v[j] + 0.0 * v[j + 1] (linear interpolation at u = 0, without
// the 1.0 *, which changes no bit) and, when `clamp`, that value as ClampNegatives leaves it.
// s and v start at the first target's sample. When false, out[0 .. n-1] holds no particular
// values; nothing past it is written. `out` may not overlap the inputs.
KOR_HOST_API bool PickOnSamples(const double* s, const double* t, const double* v, int step,
                                double* out, int n, bool clamp);

// The same for targets on consecutive samples, taken in pairs over one interval each: whether
// t[i] == s[i] and s[i + 1] - s[i] == w for every i < n, w = s[1] - s[0] >= DBL_MIN, writing
// out[i] = (1 - U) v[p] + U v[p + 1], p = i & ~1, U = 0 for even i (the left end of interval p)
// and u = w * (1 / w) for odd i (its right end), clamped as above when `clamp`. s is read up to
// index n, v up to n (n odd) or n - 1; when false, out[0 .. n-1] holds no particular values.
KOR_HOST_API bool PairsOnSamples(const double* s, const double* t, const double* v, double* out,
                                 int n, bool clamp);

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
