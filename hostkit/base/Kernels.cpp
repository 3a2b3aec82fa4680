#include "hostkit/base/Kernels.h"

#include <atomic>
#include <cstring>
#include <limits>

// The AVX2 body exists where the compiler can build it beside the baseline and the process can
// ask the processor for it: GCC or clang on x86-64, outside Windows (mingw-w64 does not keep the
// stack aligned for spilled AVX registers).
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__)) && !defined(_WIN32)
#define KOR_KERNELS_AVX2 1
#else
#define KOR_KERNELS_AVX2 0
#endif

namespace Korvane::Kernels {
namespace {

// The bodies are written once, on vectors of four doubles (GCC's vector extension, which both
// GCC and clang lower to whatever the enclosing function's target offers: two SSE2 operations
// on the baseline, one AVX operation in the AVX2 body), and inlined into each body's entry.
// Vector operations are element-wise, so every element sees the same operations in the same
// order as the scalar loop; the scalar tails finish what does not fill a vector.
using V4 = double __attribute__((vector_size(32)));

#define KOR_KERNEL_BODY inline __attribute__((always_inline))

// Vectors pass by reference only: a vector of four doubles by value would change the calling
// convention between the bodies.
KOR_KERNEL_BODY void Load(V4& v, const double* p) {
    std::memcpy(&v, p, sizeof v);
}

KOR_KERNEL_BODY void Store(double* p, const V4& v) {
    std::memcpy(p, &v, sizeof v);
}

KOR_KERNEL_BODY void Splat(V4& v, double x) {
    v = V4{x, x, x, x};
}

// x < 0.0 ? 0.0 : x per element: the bits of x cleared where it is negative.
KOR_KERNEL_BODY void Clamp(V4& x) {
    auto bits = x < V4{}; // all ones where negative
    const auto negative = bits;
    std::memcpy(&bits, &x, sizeof x);
    bits &= ~negative;
    std::memcpy(&x, &bits, sizeof x);
}

KOR_KERNEL_BODY void Combine3Body(const double* a, const double* b, const double* c, double x,
                                  double y, double z, double* out, int n) {
    V4 vx{}, vy{}, vz{}, va{}, vb{}, vc{};
    Splat(vx, x);
    Splat(vy, y);
    Splat(vz, z);
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        Load(va, a + i);
        Load(vb, b + i);
        Load(vc, c + i);
        Store(out + i, va * vx + vb * vy + vc * vz);
    }
    for (; i < n; ++i)
        out[i] = a[i] * x + b[i] * y + c[i] * z;
}

KOR_KERNEL_BODY void ClampBody(double* v, int n) {
    V4 x{};
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        Load(x, v + i);
        Clamp(x);
        Store(v + i, x);
    }
    for (; i < n; ++i)
        v[i] = v[i] < 0.0 ? 0.0 : v[i];
}

KOR_KERNEL_BODY void SumRows4Body(const double* s, int stride, const double* rows, int n,
                                  double* out) {
    V4 acc{}, sv{}, row{};
    for (int i = 0; i < n; ++i) {
        Splat(sv, s[i * stride]);
        Load(row, rows + 4 * i);
        acc += sv * row;
    }
    for (int c = 0; c < 4; ++c)
        out[c] = acc[c];
}

// Rows of three are read four doubles at a time (the fourth is the next row's first, whose
// lane is thrown away), all but the last row, which is read alone so that nothing past the
// table is touched.
KOR_KERNEL_BODY void SumRows3Body(const double* s, int stride, const double* rows, int n,
                                  double* out) {
    V4 acc{}, sv{}, row{};
    int i = 0;
    for (; i + 1 < n; ++i) {
        Splat(sv, s[i * stride]);
        Load(row, rows + 3 * i);
        acc += sv * row;
    }
    double sum[3] = {acc[0], acc[1], acc[2]};
    for (; i < n; ++i)
        for (int c = 0; c < 3; ++c)
            sum[c] += s[i * stride] * rows[3 * i + c];
    for (int c = 0; c < 3; ++c)
        out[c] = sum[c];
}

KOR_KERNEL_BODY void ScaleBody(double* v, int stride, const double* w, int n) {
    V4 x{}, f{};
    if (stride == 1) {
        int i = 0;
        for (; i + 4 <= n; i += 4) {
            Load(x, v + i);
            Load(f, w + i);
            Store(v + i, x * f);
        }
        for (; i < n; ++i)
            v[i] *= w[i];
    } else if (stride == 4) {
        for (int i = 0; i < n; ++i) {
            Load(x, v + 4 * i);
            Splat(f, w[i]);
            Store(v + 4 * i, x * f);
        }
    } else {
        for (int i = 0; i < n; ++i)
            for (int c = 0; c < stride; ++c)
                v[i * stride + c] *= w[i];
    }
}

KOR_KERNEL_BODY double TrapezoidAreaBody(const double* v, const double* l, int n) {
    double e = v[0] * (l[1] - l[0]) / 2.0;
    for (int k = 1; k < n - 1; ++k)
        e += v[k] * (l[k + 1] - l[k - 1]) / 2.0;
    return e + v[n - 1] * (l[n - 1] - l[n - 2]) / 2.0;
}

// Samples p[s i'], i' = i .. i+3, and their successors, for a step s of 1 or 2 (the strides the
// vector loops take; others run the scalar loops): two loads, and for a step of 2 the even and odd
// lanes of eight samples.
KOR_KERNEL_BODY void SamplesAt(const double* p, int step, int i, V4& at, V4& next) {
    if (step == 1) {
        Load(at, p + i);
        Load(next, p + i + 1);
    } else {
        V4 x{}, y{};
        Load(x, p + 2 * i);
        Load(y, p + 2 * i + 4);
        at = V4{x[0], x[2], y[0], y[2]};
        next = V4{x[1], x[3], y[1], y[3]};
    }
}

// Lanes of a comparison: all ones where it holds.
using Mask = decltype(V4{} < V4{});

KOR_KERNEL_BODY bool AllSet(const Mask& m) {
    return (m[0] & m[1] & m[2] & m[3]) != 0;
}

// x, or x < 0.0 ? 0.0 : x with kClamp.
template <bool kClamp>
KOR_KERNEL_BODY double Put(double x) {
    if constexpr (kClamp)
        return x < 0.0 ? 0.0 : x;
    return x;
}

template <bool kClamp>
KOR_KERNEL_BODY void PutFour(double* p, V4& x) {
    if constexpr (kClamp)
        Clamp(x);
    Store(p, x);
}

// Four targets from i on, a step kStep (1 or 2) apart on the samples: checked into `hits` (no
// branch per vector) and written.
template <int kStep, bool kClamp>
KOR_KERNEL_BODY void PickFour(const double* s, const double* t, const double* v, double* out, int i,
                              const V4& floor, Mask& hits) {
    V4 at{}, next{}, target{}, x{}, y{};
    SamplesAt(s, kStep, i, at, next);
    Load(target, t + i);
    hits &= (at == target) & (next - at >= floor);
    SamplesAt(v, kStep, i, x, y);
    x = x + V4{} * y;
    PutFour<kClamp>(out + i, x);
}

// kStep 1 or 2: four targets a vector, the last vector ending at target n-1 (its lanes before i
// are checked and written again, to the same bits); fewer than four targets, and kStep 0 (any
// step), one target at a time.
template <int kStep, bool kClamp>
KOR_KERNEL_BODY bool PickOnSamplesBody(const double* s, const double* t, const double* v, int step,
                                       double* out, int n) {
    const double floor = std::numeric_limits<double>::min();
    bool on = true;
    int i = 0;
    if constexpr (kStep != 0) {
        if (n >= 4) {
            const V4 vfloor{floor, floor, floor, floor};
            Mask hits{};
            hits = ~hits; // all ones
            for (; i + 4 <= n; i += 4)
                PickFour<kStep, kClamp>(s, t, v, out, i, vfloor, hits);
            if (i < n)
                PickFour<kStep, kClamp>(s, t, v, out, n - 4, vfloor, hits);
            return AllSet(hits);
        }
    }
    for (; i < n; ++i) {
        const int j = step * i;
        on = on && t[i] == s[j] && s[j + 1] - s[j] >= floor;
        out[i] = Put<kClamp>(v[j] + 0.0 * v[j + 1]);
    }
    return on;
}

template <bool kClamp>
KOR_KERNEL_BODY bool PickOnSamplesStep(const double* s, const double* t, const double* v, int step,
                                       double* out, int n) {
    if (step == 2)
        return PickOnSamplesBody<2, kClamp>(s, t, v, 2, out, n);
    if (step == 1)
        return PickOnSamplesBody<1, kClamp>(s, t, v, 1, out, n);
    return PickOnSamplesBody<0, kClamp>(s, t, v, step, out, n);
}

// The weights of four targets in pairs, from an even target on (`left` on v[p], `right` on
// v[p + 1]), and from an odd one on.
struct PairWeights {
    V4 width, left, right, oddLeft, oddRight;
};

// Four targets from i on, in pairs: checked into `hits` and written. From an even i the pairs
// are (i, i+1) and (i+2, i+3), over v[i .. i+3]; from an odd i target i ends the pair of i-1,
// and i+3 starts one, over v[i-1 .. i+4].
template <bool kClamp>
KOR_KERNEL_BODY void PairsFour(const double* s, const double* t, const double* v, double* out,
                               int i, const PairWeights& k, Mask& hits) {
    V4 at{}, next{}, target{}, x{}, y{}, a{}, b{};
    Load(at, s + i);
    Load(next, s + i + 1);
    Load(target, t + i);
    hits &= (at == target) & (next - at == k.width);
    if (i % 2 == 0) {
        Load(x, v + i);
        a = V4{x[0], x[0], x[2], x[2]};
        b = V4{x[1], x[1], x[3], x[3]};
        a = a * k.left + b * k.right;
    } else {
        Load(x, v + i - 1);
        Load(y, v + i + 1);
        a = V4{x[0], x[2], y[0], y[2]};
        b = V4{x[1], x[3], y[1], y[3]};
        a = a * k.oddLeft + b * k.oddRight;
    }
    PutFour<kClamp>(out + i, a);
}

// Four targets a vector, the last vector ending at target n-1 as in PickOnSamplesBody (from an
// odd target when n is odd, and then v[n] is read, as the last target reads it); fewer than four,
// one target at a time.
template <bool kClamp>
KOR_KERNEL_BODY bool PairsOnSamplesBody(const double* s, const double* t, const double* v,
                                        double* out, int n) {
    if (n <= 0)
        return true;
    const double w = s[1] - s[0];
    const double u = w * (1.0 / w);
    const double keep = 1.0 - u;
    const bool wide = w >= std::numeric_limits<double>::min();
    if (n >= 4) {
        const PairWeights k{V4{w, w, w, w}, V4{1.0, keep, 1.0, keep}, V4{0.0, u, 0.0, u},
                            V4{keep, 1.0, keep, 1.0}, V4{u, 0.0, u, 0.0}};
        Mask hits{};
        hits = ~hits; // all ones
        int i = 0;
        for (; i + 4 <= n; i += 4)
            PairsFour<kClamp>(s, t, v, out, i, k, hits);
        if (i < n)
            PairsFour<kClamp>(s, t, v, out, n - 4, k, hits);
        return wide && AllSet(hits);
    }
    bool on = wide;
    for (int i = 0; i < n; ++i) {
        const int p = i & ~1;
        on = on && t[i] == s[i] && s[i + 1] - s[i] == w;
        out[i] = Put<kClamp>((i & 1) ? keep * v[p] + u * v[p + 1] : 1.0 * v[p] + 0.0 * v[p + 1]);
    }
    return on;
}

// The kernels of one body.
struct Table {
    void (*combine3)(const double*, const double*, const double*, double, double, double, double*,
                     int);
    void (*clamp)(double*, int);
    void (*sumRows4)(const double*, int, const double*, int, double*);
    void (*sumRows3)(const double*, int, const double*, int, double*);
    void (*scale)(double*, int, const double*, int);
    double (*trapezoidArea)(const double*, const double*, int);
    bool (*pickOnSamples)(const double*, const double*, const double*, int, double*, int, bool);
    bool (*pairsOnSamples)(const double*, const double*, const double*, double*, int, bool);
};

namespace baseline {
void Combine3(const double* a, const double* b, const double* c, double x, double y, double z,
              double* out, int n) {
    Combine3Body(a, b, c, x, y, z, out, n);
}
void Clamp(double* v, int n) {
    ClampBody(v, n);
}
void SumRows4(const double* s, int stride, const double* rows, int n, double* out) {
    SumRows4Body(s, stride, rows, n, out);
}
void SumRows3(const double* s, int stride, const double* rows, int n, double* out) {
    SumRows3Body(s, stride, rows, n, out);
}
void Scale(double* v, int stride, const double* w, int n) {
    ScaleBody(v, stride, w, n);
}
double TrapezoidArea(const double* v, const double* l, int n) {
    return TrapezoidAreaBody(v, l, n);
}
bool PickOnSamples(const double* s, const double* t, const double* v, int step, double* out, int n,
                   bool clamp) {
    return clamp ? PickOnSamplesStep<true>(s, t, v, step, out, n)
                 : PickOnSamplesStep<false>(s, t, v, step, out, n);
}
bool PairsOnSamples(const double* s, const double* t, const double* v, double* out, int n,
                    bool clamp) {
    return clamp ? PairsOnSamplesBody<true>(s, t, v, out, n)
                 : PairsOnSamplesBody<false>(s, t, v, out, n);
}
constexpr Table kTable{Combine3, Clamp,         SumRows4,      SumRows3,
                       Scale,    TrapezoidArea, PickOnSamples, PairsOnSamples};
} // namespace baseline

#if KOR_KERNELS_AVX2
namespace avx2 {
#define KOR_AVX2 __attribute__((target("avx2")))
KOR_AVX2 void Combine3(const double* a, const double* b, const double* c, double x, double y,
                       double z, double* out, int n) {
    Combine3Body(a, b, c, x, y, z, out, n);
}
KOR_AVX2 void Clamp(double* v, int n) {
    ClampBody(v, n);
}
KOR_AVX2 void SumRows4(const double* s, int stride, const double* rows, int n, double* out) {
    SumRows4Body(s, stride, rows, n, out);
}
KOR_AVX2 void SumRows3(const double* s, int stride, const double* rows, int n, double* out) {
    SumRows3Body(s, stride, rows, n, out);
}
KOR_AVX2 void Scale(double* v, int stride, const double* w, int n) {
    ScaleBody(v, stride, w, n);
}
KOR_AVX2 double TrapezoidArea(const double* v, const double* l, int n) {
    return TrapezoidAreaBody(v, l, n);
}
KOR_AVX2 bool PickOnSamples(const double* s, const double* t, const double* v, int step,
                            double* out, int n, bool clamp) {
    return clamp ? PickOnSamplesStep<true>(s, t, v, step, out, n)
                 : PickOnSamplesStep<false>(s, t, v, step, out, n);
}
KOR_AVX2 bool PairsOnSamples(const double* s, const double* t, const double* v, double* out, int n,
                             bool clamp) {
    return clamp ? PairsOnSamplesBody<true>(s, t, v, out, n)
                 : PairsOnSamplesBody<false>(s, t, v, out, n);
}
#undef KOR_AVX2
constexpr Table kTable{Combine3, Clamp,         SumRows4,      SumRows3,
                       Scale,    TrapezoidArea, PickOnSamples, PairsOnSamples};
} // namespace avx2
#endif

bool ProcessorHas(Isa isa) {
    if (isa == Isa::Baseline)
        return true;
#if KOR_KERNELS_AVX2
    __builtin_cpu_init(); // may run before the runtime's own constructors
    return __builtin_cpu_supports("avx2");
#else
    return false;
#endif
}

const Table* TableOf(Isa isa) {
#if KOR_KERNELS_AVX2
    if (isa == Isa::Avx2)
        return &avx2::kTable;
#endif
    (void)isa;
    return &baseline::kTable;
}

// The baseline until the library's initialisation picks the best body (a kernel called by an
// earlier initialiser gets the same bits from the baseline), never null.
std::atomic<const Table*> gTable{&baseline::kTable};

const Table& Body() {
    return *gTable.load(std::memory_order_relaxed);
}

const bool gPicked = Select(ProcessorHas(Isa::Avx2) ? Isa::Avx2 : Isa::Baseline);

} // namespace

void Combine3(const double* a, const double* b, const double* c, double x, double y, double z,
              double* out, int n) {
    Body().combine3(a, b, c, x, y, z, out, n);
}

void ClampNegatives(double* v, int n) {
    Body().clamp(v, n);
}

void SumRows4(const double* s, int stride, const double* rows, int n, double out[4]) {
    Body().sumRows4(s, stride, rows, n, out);
}

void SumRows3(const double* s, int stride, const double* rows, int n, double out[3]) {
    Body().sumRows3(s, stride, rows, n, out);
}

void Scale(double* v, int stride, const double* w, int n) {
    Body().scale(v, stride, w, n);
}

double TrapezoidArea(const double* v, const double* l, int n) {
    return Body().trapezoidArea(v, l, n);
}

bool PickOnSamples(const double* s, const double* t, const double* v, int step, double* out, int n,
                   bool clamp) {
    return Body().pickOnSamples(s, t, v, step, out, n, clamp);
}

bool PairsOnSamples(const double* s, const double* t, const double* v, double* out, int n,
                    bool clamp) {
    return Body().pairsOnSamples(s, t, v, out, n, clamp);
}

Isa Active() {
    return gTable.load(std::memory_order_relaxed) == TableOf(Isa::Baseline) ? Isa::Baseline
                                                                            : Isa::Avx2;
}

bool Available(Isa isa) {
    return isa == Isa::Baseline || (TableOf(isa) != TableOf(Isa::Baseline) && ProcessorHas(isa));
}

bool Select(Isa isa) {
    if (!Available(isa))
        return false;
    gTable.store(TableOf(isa), std::memory_order_relaxed);
    return true;
}

} // namespace Korvane::Kernels
