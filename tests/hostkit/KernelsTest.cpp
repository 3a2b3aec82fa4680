// The conversion kernels against the plain loops they stand for, bit for bit, on every body this
// processor can run (the baseline and, where there is one, the dispatched AVX2 body), at every
// length around the vector widths and with the values that tell orders and selects apart:
// -0.0, NaN, infinities, negatives, values of very different magnitudes.
#include "hostkit/base/Kernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

using namespace Korvane;
using Values = std::vector<double>;

namespace {

// Equal bits, where a NaN equals any NaN: when both terms of a sum are NaN, which of them the
// processor returns follows the operand order the compiler picked for a commutative addition, so
// the sign of a NaN (x86 makes 0 * inf and inf - inf a negative NaN) is no property of a kernel.
bool SameBits(const double* a, const double* b, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        if (std::memcmp(&a[i], &b[i], sizeof(double)) != 0 &&
            !(std::isnan(a[i]) && std::isnan(b[i])))
            return false;
    return true;
}

Values Awkward(std::mt19937& rng, std::size_t n) {
    Values v(n);
    for (double& x : v) {
        switch (std::uniform_int_distribution<int>(0, 11)(rng)) {
        case 0:
            x = -0.0;
            break;
        case 1:
            x = std::numeric_limits<double>::quiet_NaN();
            break;
        case 2:
            x = -std::numeric_limits<double>::infinity();
            break;
        case 3:
            x = std::uniform_real_distribution<double>(-1e300, 1e300)(rng);
            break;
        case 4:
            x = std::uniform_real_distribution<double>(-1e-300, 1e-300)(rng);
            break;
        default:
            x = std::uniform_real_distribution<double>(-2.0, 3.0)(rng);
        }
    }
    return v;
}

// The bodies to run: every one available here, the baseline first.
std::vector<Kernels::Isa> Bodies() {
    std::vector<Kernels::Isa> isas{Kernels::Isa::Baseline};
    if (Kernels::Available(Kernels::Isa::Avx2))
        isas.push_back(Kernels::Isa::Avx2);
    return isas;
}

// Runs `check` once per body, then goes back to the body the library picked.
template <class Check>
void OnEveryBody(Check check) {
    const Kernels::Isa picked = Kernels::Active();
    for (const Kernels::Isa isa : Bodies()) {
        ASSERT_TRUE(Kernels::Select(isa));
        SCOPED_TRACE(isa == Kernels::Isa::Baseline ? "baseline body" : "AVX2 body");
        check();
    }
    Kernels::Select(picked);
}

constexpr int kMaxLength = 37; // past eight vectors of four, and every tail length

double Clamped(double x, bool clamp) {
    return clamp && x < 0.0 ? 0.0 : x;
}

} // namespace

TEST(Kernels, TheLibraryRunsTheWidestBodyTheProcessorOffers) {
    EXPECT_TRUE(Kernels::Available(Kernels::Isa::Baseline));
    EXPECT_EQ(Kernels::Active(), Bodies().back());
}

TEST(Kernels, ElementWiseKernelsGiveThePlainLoopsBits) {
    std::mt19937 rng(11);
    OnEveryBody([&rng] {
        for (int n = 0; n <= kMaxLength; ++n) {
            const auto un = static_cast<std::size_t>(n);
            const Values a = Awkward(rng, un), b = Awkward(rng, un), c = Awkward(rng, un);
            const Values k = Awkward(rng, 3);
            Values got(un + 1, 7.0), want(un + 1, 7.0); // one past the end: never written
            Kernels::Combine3(a.data(), b.data(), c.data(), k[0], k[1], k[2], got.data(), n);
            for (std::size_t i = 0; i < un; ++i)
                want[i] = a[i] * k[0] + b[i] * k[1] + c[i] * k[2];
            EXPECT_TRUE(SameBits(got.data(), want.data(), un + 1)) << "Combine3, n = " << n;

            got = a;
            want = a;
            Kernels::ClampNegatives(got.data(), n);
            for (double& x : want)
                x = x < 0.0 ? 0.0 : x;
            EXPECT_TRUE(SameBits(got.data(), want.data(), un)) << "ClampNegatives, n = " << n;

            for (const int stride : {1, 3, 4}) {
                Values v = Awkward(rng, un * static_cast<std::size_t>(stride));
                Values expected = v;
                Kernels::Scale(v.data(), stride, a.data(), n);
                for (int i = 0; i < n; ++i)
                    for (int ch = 0; ch < stride; ++ch)
                        expected[static_cast<std::size_t>(i * stride + ch)] *=
                            a[static_cast<std::size_t>(i)];
                EXPECT_TRUE(SameBits(v.data(), expected.data(), v.size()))
                    << "Scale, stride " << stride << ", n = " << n;
            }
        }
    });
}

TEST(Kernels, SumsAddTheirTermsInIndexOrder) {
    // Terms of very different magnitudes: any other order of addition changes the bits.
    std::mt19937 rng(12);
    OnEveryBody([&rng] {
        for (int n = 0; n <= kMaxLength; ++n) {
            for (const int stride : {1, 4}) {
                const auto un = static_cast<std::size_t>(n);
                const Values s = Awkward(rng, un * static_cast<std::size_t>(stride));
                const Values rows4 = Awkward(rng, 4 * un), rows3 = Awkward(rng, 3 * un);
                double got4[4], want4[4] = {0.0, 0.0, 0.0, 0.0};
                Kernels::SumRows4(s.data(), stride, rows4.data(), n, got4);
                double got3[3], want3[3] = {0.0, 0.0, 0.0};
                Kernels::SumRows3(s.data(), stride, rows3.data(), n, got3);
                for (std::size_t i = 0; i < un; ++i) {
                    const double v = s[i * static_cast<std::size_t>(stride)];
                    for (std::size_t c = 0; c < 4; ++c)
                        want4[c] += v * rows4[4 * i + c];
                    for (std::size_t c = 0; c < 3; ++c)
                        want3[c] += v * rows3[3 * i + c];
                }
                EXPECT_TRUE(SameBits(got4, want4, 4)) << "SumRows4, n = " << n;
                EXPECT_TRUE(SameBits(got3, want3, 3)) << "SumRows3, n = " << n;
            }
            if (n >= 2) { // the trapezoid area: the end terms first and last
                const auto un = static_cast<std::size_t>(n);
                const Values v = Awkward(rng, un), l = Awkward(rng, un);
                double want = v[0] * (l[1] - l[0]) / 2.0;
                for (std::size_t k = 1; k + 1 < un; ++k)
                    want += v[k] * (l[k + 1] - l[k - 1]) / 2.0;
                want += v[un - 1] * (l[un - 1] - l[un - 2]) / 2.0;
                const double got = Kernels::TrapezoidArea(v.data(), l.data(), n);
                EXPECT_TRUE(SameBits(&got, &want, 1)) << "TrapezoidArea, n = " << n;
            }
        }
    });
}

TEST(Kernels, PickOnSamplesTakesTheSamplesAndRefusesATargetOffItsSample) {
    // v + 0.0 * next is not v when next is infinite or NaN, or when v is -0.0.
    std::mt19937 rng(13);
    Values s;
    for (int k = 0; k < 3 * kMaxLength + 2; ++k)
        s.push_back(380.0 + 5.0 * k);
    OnEveryBody([&] {
        for (int n = 0; n <= kMaxLength; ++n) {
            for (const int step : {1, 2, 3}) {
                const bool clamp = (n + step) % 2 == 0;
                const auto un = static_cast<std::size_t>(n);
                const Values v = Awkward(rng, static_cast<std::size_t>(step * n + 1));
                Values t, got(un + 1, 7.0), want(un + 1, 7.0); // one past the end: never written
                for (int i = 0; i < n; ++i) {
                    const auto j = static_cast<std::size_t>(step * i);
                    t.push_back(s[j]);
                    want[static_cast<std::size_t>(i)] = Clamped(1.0 * v[j] + 0.0 * v[j + 1], clamp);
                }
                EXPECT_TRUE(Kernels::PickOnSamples(s.data(), t.data(), v.data(), step, got.data(),
                                                   n, clamp));
                EXPECT_TRUE(SameBits(got.data(), want.data(), un + 1))
                    << "step " << step << ", n = " << n;
                for (std::size_t off = 0; off < un; ++off) { // every lane and tail position
                    Values moved = t, narrow = s;
                    moved[off] = std::nextafter(moved[off], 1e9);
                    narrow[static_cast<std::size_t>(step) * off + 1] = t[off]; // width 0
                    EXPECT_FALSE(Kernels::PickOnSamples(s.data(), moved.data(), v.data(), step,
                                                        got.data(), n, clamp))
                        << "step " << step << ", n = " << n << ", off at " << off;
                    EXPECT_FALSE(Kernels::PickOnSamples(narrow.data(), t.data(), v.data(), step,
                                                        got.data(), n, clamp))
                        << "step " << step << ", n = " << n << ", narrow at " << off;
                    EXPECT_EQ(got[un], 7.0);
                }
            }
        }
    });
}

TEST(Kernels, PairsOnSamplesWeighsEachPairOverItsIntervalAndRefusesAnotherWidth) {
    // A width of 49 nm: 49 (1 / 49) is just below 1, so both weights of a right end count.
    std::mt19937 rng(14);
    Values s;
    for (int k = 0; k <= kMaxLength; ++k)
        s.push_back(380.0 + 49.0 * k);
    const double u = 49.0 * (1.0 / 49.0);
    ASSERT_LT(u, 1.0);
    OnEveryBody([&] {
        for (int n = 0; n <= kMaxLength; ++n) {
            const bool clamp = n % 2 == 0;
            const auto un = static_cast<std::size_t>(n);
            const Values v = Awkward(rng, un + 1);
            const Values t(s.begin(), s.begin() + n);
            Values got(un + 1, 7.0), want(un + 1, 7.0);
            for (int i = 0; i < n; ++i) {
                const double w = (i & 1) ? u : 0.0;
                const auto p = static_cast<std::size_t>(i & ~1);
                want[static_cast<std::size_t>(i)] = Clamped((1.0 - w) * v[p] + w * v[p + 1], clamp);
            }
            EXPECT_TRUE(
                Kernels::PairsOnSamples(s.data(), t.data(), v.data(), got.data(), n, clamp));
            EXPECT_TRUE(SameBits(got.data(), want.data(), un + 1)) << "n = " << n;
            for (std::size_t off = 0; off < un; ++off) {
                // The targets on samples, interval `off` wider and the next narrower (a single
                // target has only the first, whose width is then the one width).
                Values moved = t, uneven = s;
                moved[off] = std::nextafter(moved[off], 1e9);
                uneven[off + 1] += 0.5;
                const Values onUneven(uneven.begin(), uneven.begin() + n);
                EXPECT_FALSE(
                    Kernels::PairsOnSamples(s.data(), moved.data(), v.data(), got.data(), n, clamp))
                    << "n = " << n << ", off at " << off;
                EXPECT_EQ(Kernels::PairsOnSamples(uneven.data(), onUneven.data(), v.data(),
                                                  got.data(), n, clamp),
                          n == 1)
                    << "n = " << n << ", wider at " << off;
                EXPECT_EQ(got[un], 7.0);
            }
        }
        // An interval narrower than DBL_MIN has no finite reciprocal width.
        const double tiny[3] = {0.0, 0x1p-1070, 0x1p-1069}, v[3] = {1.0, 2.0, 3.0};
        double out[2];
        EXPECT_FALSE(Kernels::PairsOnSamples(tiny, tiny, v, out, 2, false));
    });
}
