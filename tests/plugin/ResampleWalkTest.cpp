// The resampling walk, bit for bit: ResampleSpectrum against the plain walk written out below
// (bisection for every interval, one division per interval) on random grid pairs of every shape
// (grids that line up with a shift, one step a multiple of the other, irregular, equal, one
// point), in every component layout and band, with awkward values (-0.0, infinities).
#include "ModelTestSupport.h"

#include "plugin/spectral/Resample.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <random>
#include <vector>

using namespace Korvane;
using Values = std::vector<double>;

namespace {

bool SameBits(const Values& a, const Values& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

// The walk as the model's documentation tells it, with no shortcut: equal grids copied, a one-point
// source held, both ends held, then for each inside target j found anew by bisection whenever the
// target passes s[j+1] (the last source point taking j = m-2), the reciprocal width recomputed at
// every find. Reads component j of `v` as zero outside [first, last].
template <int kSource, int kTarget>
int ReferenceWalk(const Values& s, const Values& v, int first, int last, const Values& t,
                  Values& out) {
    constexpr int kCarried = kSource == kTarget ? kTarget : 1;
    const int m = static_cast<int>(s.size()), n = static_cast<int>(t.size());
    const auto at = [&](int j, int c) {
        return j >= first && j <= last ? v[static_cast<std::size_t>(j * kSource + c)] : 0.0;
    };
    const auto put = [&](int i, int c, double x) {
        out[static_cast<std::size_t>(i * kTarget + c)] = x;
    };
    const auto copy = [&](int i, int j) {
        for (int c = 0; c < kTarget; ++c)
            put(i, c, c < kCarried ? at(j, c) : 0.0);
    };
    if (s == t) {
        for (int i = 0; i < m; ++i)
            copy(i, i);
        return 0;
    }
    if (m == 1) {
        for (int i = 0; i < n; ++i)
            copy(i, 0);
        return 0;
    }
    if (m == 0)
        return -1;
    int lo = 0;
    for (; lo < n && t[lo] <= s[0]; ++lo)
        copy(lo, 0);
    if (lo == n)
        return 0;
    int hi = n - 1;
    for (; hi >= lo && t[hi] >= s[m - 1]; --hi)
        copy(hi, m - 1);
    const auto bisect = [&](double w) {
        int a = 0, b = m - 1;
        while (a <= b) {
            const int mid = (a + b) / 2;
            if (s[mid] > w)
                b = mid - 1;
            else
                a = mid + 1;
        }
        return a - 1;
    };
    int j = bisect(t[0]);
    double r = j >= 0 && j < m - 1 ? 1.0 / (s[j + 1] - s[j]) : 0.0;
    for (int i = lo; i <= hi; ++i) {
        if (j < 0 || j >= m - 1 || t[i] > s[j + 1]) {
            j = t[i] == s[m - 1] ? m - 2 : bisect(t[i]);
            if (j < 0 || j >= m - 1)
                return -1;
            r = 1.0 / (s[j + 1] - s[j]);
        }
        const double u = (t[i] - s[j]) * r;
        for (int c = 0; c < kTarget; ++c)
            put(i, c, c < kCarried ? (1.0 - u) * at(j, c) + u * at(j + 1, c) : 0.0);
    }
    return 0;
}

MArray<double> ToGrid(const Values& v) {
    MArray<double> g(10);
    g.Alloc(static_cast<int>(v.size()));
    for (std::size_t k = 0; k < v.size(); ++k)
        g[static_cast<int>(k)] = v[k];
    return g;
}

// n ascending wavelengths from `start`, steps drawn from [0.1, maxStep) nm.
Values Ascending(std::mt19937& rng, int n, double start, double maxStep) {
    Values g;
    for (int k = 0; k < n; ++k, start += std::uniform_real_distribution<double>(0.1, maxStep)(rng))
        g.push_back(start);
    return g;
}

// n points start + k step, computed as the model's default grids are (integers made double) when
// the step is whole, else by multiplication (steps that are not exact in binary).
Values Regular(int n, double start, double step) {
    Values g;
    for (int k = 0; k < n; ++k)
        g.push_back(start + k * step);
    return g;
}

// A source grid and a target grid of one of the shapes that take different paths.
std::pair<Values, Values> Grids(std::mt19937& rng, int shape) {
    const int m = std::uniform_int_distribution<int>(2, 60)(rng);
    const int shift = std::uniform_int_distribution<int>(-8, 8)(rng);
    const double step = shape % 2 ? 10.0 : 2.5 + 0.1; // 2.6 is not exact in binary
    const Values s = Regular(m, 380.0, step);
    switch (shape) {
    case 0:
    case 1: // the same step, lined up with a shift, wider or narrower at either end
        return {s, Regular(m + std::uniform_int_distribution<int>(-4, 4)(rng) + 2,
                           380.0 + shift * step, step)};
    case 2:
    case 3: // one step a whole multiple of the other, either way
        return {s, Regular(m / 2 + 2, 380.0 + shift * step, 2 * step)};
    case 4:
    case 5:
        return {Regular(m / 2 + 2, 380.0 + shift * step, 2 * step), s};
    case 6: // irregular, denser and sparser
        return {Ascending(rng, m, 380.0, 20.0), Ascending(rng, m * 3, 385.0, 4.0)};
    case 7:
        return {Ascending(rng, m, 380.0, 20.0), Ascending(rng, m / 4 + 2, 370.0, 80.0)};
    case 8: // equal
        return {s, s};
    case 9: // a one-point source
        return {Values{555.0}, s};
    default: // all below or all above
        return {s, Regular(m, shift < 0 ? 100.0 : 2000.0, step)};
    }
}

// kClamp: the layout that writes negatives as 0, against the reference walk clamped after.
template <int kSource, int kTarget, bool kClamp = false>
void ExpectWalkBits(std::mt19937& rng, const Values& s, const Values& t) {
    const int m = static_cast<int>(s.size()), n = static_cast<int>(t.size());
    Values v(static_cast<std::size_t>(m * kSource));
    for (double& x : v) {
        const int pick = std::uniform_int_distribution<int>(0, 40)(rng);
        x = pick == 0   ? -0.0
            : pick == 1 ? std::numeric_limits<double>::infinity()
                        : std::uniform_real_distribution<double>(-2.0, 3.0)(rng);
    }
    const bool whole = std::uniform_int_distribution<int>(0, 1)(rng) == 0;
    const int first = whole ? 0 : std::uniform_int_distribution<int>(0, m - 1)(rng);
    const int last = whole ? m - 1 : std::uniform_int_distribution<int>(first, m - 1)(rng);
    // The targets start at a value no path writes, so a skipped index shows, and one more double
    // past them must stay so.
    Values expected(static_cast<std::size_t>(n * kTarget + 1), 99.0), got = expected;
    const int status = ReferenceWalk<kSource, kTarget>(s, v, first, last, t, expected);
    if (kClamp && status == 0)
        for (int i = 0; i < n; ++i)
            expected[i] = expected[i] < 0.0 ? 0.0 : expected[i];
    const MArray<double> sg = ToGrid(s), tg = ToGrid(t);
    SpectrumLayout<kSource, kTarget, true, kClamp> layout(v.data(), m, first, last, got.data(), n);
    EXPECT_EQ(ResampleSpectrum(sg, tg, layout), status);
    EXPECT_TRUE(SameBits(got, expected)) << kSource << "/" << kTarget << ", " << m << " to " << n
                                         << (whole ? ", whole band" : ", banded");
}

} // namespace

TEST(ResampleWalk, GivesThePlainWalksBitsOnEveryShapeOfGridsInEveryLayout) {
    std::mt19937 rng(20261125);
    for (int round = 0; round < 1100; ++round) {
        const auto [s, t] = Grids(rng, round % 11);
        ExpectWalkBits<1, 1>(rng, s, t);
        ExpectWalkBits<4, 4>(rng, s, t);
        ExpectWalkBits<4, 1>(rng, s, t);
        ExpectWalkBits<16, 1>(rng, s, t);
        ExpectWalkBits<16, 16>(rng, s, t);
        ExpectWalkBits<1, 1, true>(rng, s, t);
        ExpectWalkBits<4, 1, true>(rng, s, t);
    }
}

TEST(ResampleWalk, TheModelsGridsLineUpAndTakeTheLastSourceValueExactly) {
    // 380..780 by 5 onto the default 390..710 by 10 and the default onto 380..780 by 10: the two
    // pairs a renderer meets most. At points that coincide the walk gives (1 - 0) v + 0 v' or
    // (1 - u) v + u v' with u = w (1 / w): the reference decides which, bit for bit.
    std::mt19937 rng(7);
    const Values by5 = Regular(81, 380.0, 5.0), def = Regular(33, 390.0, 10.0),
                 by10 = Regular(41, 380.0, 10.0);
    for (int k = 0; k < 20; ++k) {
        ExpectWalkBits<1, 1>(rng, by5, def);
        ExpectWalkBits<1, 1>(rng, def, by10);
        ExpectWalkBits<4, 4>(rng, def, by10);
    }
}

TEST(ResampleWalk, RefusesGridsThatDoNotAscendAsThePlainWalkDoes) {
    std::mt19937 rng(3);
    ExpectWalkBits<1, 1>(rng, Values{400, 500, 600}, Values{450, 700, 420});
    ExpectWalkBits<1, 1>(rng, Values{400, 500, 600}, Values{650, 450, 420});
    ExpectWalkBits<1, 1>(rng, Values{400, 400, 600}, Values{380, 400, 500}); // a zero width
}

TEST(ResampleWalk, TargetsThatLineUpButForOneTakeTheWalksBits) {
    // The lined-up pass writes the targets as it confirms them; a target off its sample, wherever
    // it is (every vector lane, the tail, the last), sends the resampling to the walk, which must
    // give every target anew and write nothing past them. Pairs of one step: also a sample moved
    // so that one interval is wider than the rest.
    std::mt19937 rng(11);
    const Values by5 = Regular(81, 380.0, 5.0), def = Regular(33, 390.0, 10.0),
                 by10 = Regular(41, 380.0, 10.0);
    for (std::size_t k = 0; k < def.size(); ++k) {
        Values off = def;
        off[k] = std::nextafter(off[k], 0.0);
        ExpectWalkBits<1, 1>(rng, by5, off);
        ExpectWalkBits<1, 1, true>(rng, by5, off);
        ExpectWalkBits<4, 1, true>(rng, by5, off);
        ExpectWalkBits<1, 1, true>(rng, off, by10);
        Values shifted = def; // a sample moved half a step: two intervals of other widths
        shifted[k] += 5.0;
        ExpectWalkBits<1, 1, true>(rng, shifted, by10);
        ExpectWalkBits<1, 1>(rng, shifted, by10);
    }
}
