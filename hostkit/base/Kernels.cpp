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

KOR_KERNEL_BODY void PickExactBody(const double* v, int first, int step, double* out, int n) {
    const double* p = v + first;
    const V4 zero{};
    V4 at{}, next{};
    int i = 0;
    if (step == 1 || step == 2)
        for (; i + 4 <= n; i += 4) {
            SamplesAt(p, step, i, at, next);
            Store(out + i, at + zero * next);
        }
    for (; i < n; ++i)
        out[i] = p[i * step] + 0.0 * p[i * step + 1];
}

// One vector of four targets against its samples and their intervals: `hits` keeps all ones in
// the lanes where every target so far lay on its sample (an interval wide enough), `same` where
// every interval had the first one's width. No branch per vector.
template <class Mask>
KOR_KERNEL_BODY void MatchFour(const V4& at, const V4& next, const double* t, const V4& w0,
                               const V4& floor, Mask& hits, Mask& same) {
    V4 target{}, w{};
    Load(target, t);
    w = next - at;
    hits &= (at == target) & (w >= floor);
    same &= w == w0;
}

KOR_KERNEL_BODY bool SamplesMatchBody(const double* s, const double* t, int first, int step, int n,
                                      double& width) {
    const double* p = s + first;
    const double w0 = n > 0 ? p[1] - p[0] : 0.0;
    const double floor = std::numeric_limits<double>::min();
    const V4 vw0{w0, w0, w0, w0}, vfloor{floor, floor, floor, floor};
    auto hits = vw0 == vw0; // all ones (w0 is finite: a difference of samples)
    hits = hits | ~hits;
    auto same = hits;
    V4 at{}, next{};
    int i = 0;
    if (step == 1 || step == 2)
        for (; i + 4 <= n; i += 4) {
            SamplesAt(p, step, i, at, next);
            MatchFour(at, next, t + i, vw0, vfloor, hits, same);
        }
    bool on = hits[0] && hits[1] && hits[2] && hits[3];
    bool one = same[0] && same[1] && same[2] && same[3];
    for (; i < n && on; ++i) {
        const double* q = p + step * i;
        const double wi = q[1] - q[0];
        on = q[0] == t[i] && wi >= floor;
        one = one && wi == w0;
    }
    width = one ? w0 : std::numeric_limits<double>::quiet_NaN();
    return on;
}

KOR_KERNEL_BODY void LerpPairsBody(const double* v, double u, double* out, int n) {
    const double keep = 1.0 - u;
    const V4 left = V4{1.0, keep, 1.0, keep}, right = V4{0.0, u, 0.0, u};
    V4 x{}, a{}, b{};
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        Load(x, v + i);
        a = V4{x[0], x[0], x[2], x[2]};
        b = V4{x[1], x[1], x[3], x[3]};
        Store(out + i, a * left + b * right);
    }
    for (; i < n; ++i) {
        const int p = i & ~1;
        out[i] = (i & 1) ? keep * v[p] + u * v[p + 1] : 1.0 * v[p] + 0.0 * v[p + 1];
    }
}

// The kernels of one body.
struct Table {
    void (*combine3)(const double*, const double*, const double*, double, double, double, double*,
                     int);
    void (*clamp)(double*, int);
    void (*sumRows4)(const double*, int, const double*, int, double*);
    void (*sumRows3)(const double*, int, const double*, int, double*);
    void (*scale)(double*, int, const double*, int);
    void (*pickExact)(const double*, int, int, double*, int);
    bool (*samplesMatch)(const double*, const double*, int, int, int, double&);
    void (*lerpPairs)(const double*, double, double*, int);
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
void PickExact(const double* v, int first, int step, double* out, int n) {
    PickExactBody(v, first, step, out, n);
}
bool SamplesMatch(const double* s, const double* t, int first, int step, int n, double& width) {
    return SamplesMatchBody(s, t, first, step, n, width);
}
void LerpPairs(const double* v, double u, double* out, int n) {
    LerpPairsBody(v, u, out, n);
}
constexpr Table kTable{Combine3, Clamp,     SumRows4,     SumRows3,
                       Scale,    PickExact, SamplesMatch, LerpPairs};
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
KOR_AVX2 void PickExact(const double* v, int first, int step, double* out, int n) {
    PickExactBody(v, first, step, out, n);
}
KOR_AVX2 bool SamplesMatch(const double* s, const double* t, int first, int step, int n,
                           double& width) {
    return SamplesMatchBody(s, t, first, step, n, width);
}
KOR_AVX2 void LerpPairs(const double* v, double u, double* out, int n) {
    LerpPairsBody(v, u, out, n);
}
#undef KOR_AVX2
constexpr Table kTable{Combine3, Clamp,     SumRows4,     SumRows3,
                       Scale,    PickExact, SamplesMatch, LerpPairs};
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

void PickExact(const double* v, int first, int step, double* out, int n) {
    Body().pickExact(v, first, step, out, n);
}

bool SamplesMatch(const double* s, const double* t, int first, int step, int n, double& width) {
    return Body().samplesMatch(s, t, first, step, n, width);
}

void LerpPairs(const double* v, double u, double* out, int n) {
    Body().lerpPairs(v, u, out, n);
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
