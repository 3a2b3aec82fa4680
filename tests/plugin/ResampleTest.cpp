// Resampling between wavelength grids: both forms reproduce straight lines, hold the end values,
// copy equal grids exactly, refuse what does not fit, and carry the component layouts.
#include "ModelTestSupport.h"
#include "tests/support/Tolerances.h"

#include "plugin/spectral/Resample.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;
using Values = std::vector<double>;

namespace {

// The banded form on one double per wavelength, and the plain form.
int Banded(const MArray<double>& s, const Values& v, const MArray<double>& t, Values& out) {
    const int m = static_cast<int>(v.size());
    SpectrumLayout<1, 1> layout(v.data(), m, 0, m - 1, out.data(), static_cast<int>(out.size()));
    return ResampleSpectrum(s, t, layout);
}
int Plain(const MArray<double>& s, const Values& v, const MArray<double>& t, Values& out) {
    return ResampleValues(s, v.data(), static_cast<int>(v.size()), t, out.data(),
                          static_cast<int>(out.size()));
}

} // namespace

TEST(Resample, BothFormsReproduceStraightLinesEitherWayBetweenIrregularGrids) {
    // A line sampled on one grid is the same line on any grid inside its range: a wrong interval
    // or weight shows at once. Several targets share an interval, and a step is jumped.
    const MArray<double> a = Grid({380, 395, 430, 431, 520, 610, 700, 780});
    const MArray<double> b = Grid({380, 381, 400, 431, 432.5, 555, 556, 699.9, 780});
    for (auto* form : {&Banded, &Plain})
        for (const auto& [s, t] : {std::pair(&a, &b), std::pair(&b, &a)}) {
            Values v, out(static_cast<std::size_t>(t->Count()));
            for (double w : *s)
                v.push_back(2.0 - 0.0025 * w);
            ASSERT_EQ(form(*s, v, *t, out), 0);
            for (int i = 0; i < t->Count(); ++i)
                EXPECT_NEAR(out[static_cast<std::size_t>(i)], 2.0 - 0.0025 * (*t)[i],
                            Tol::kResampleRounding);
        }
}

TEST(Resample, EndValuesHoldEqualGridsCopyAndOnePointIsFlat) {
    const MArray<double> s = Grid({400, 500, 600});
    const MArray<double> t = Grid({350, 400, 450, 600, 700});
    for (auto* form : {&Banded, &Plain}) {
        Values out(5), flat(5);
        ASSERT_EQ(form(s, {1.0, 3.0, 0.7}, t, out), 0);
        EXPECT_EQ(out, (Values{1.0, 1.0, 2.0, 0.7, 0.7})); // 600 takes exactly the last value
        ASSERT_EQ(form(Grid({555}), {0.25}, t, flat), 0);
        EXPECT_EQ(flat, Values(5, 0.25));
        // Counts that do not fit the grids, and an empty source, are refused.
        EXPECT_EQ(form(s, {1.0, 2.0}, t, out), -1);
        EXPECT_EQ(form(s, {1.0, 2.0, 3.0}, s, out), -1);
        EXPECT_EQ(form(Grid({}), {}, t, out), -1);
    }
    // Equal grids are copied: interpolating 1 * v + 0 * inf would give NaN.
    const Values v{0.1, 0.3, std::numeric_limits<double>::infinity()};
    Values out(3);
    ASSERT_EQ(Banded(s, v, s, out), 0);
    EXPECT_EQ(out, v);
    // A target that runs backwards has a wavelength that no source interval holds.
    EXPECT_EQ(Banded(s, {1, 2, 3}, Grid({450, 700, 420}), out), -1);
}

TEST(Resample, LayoutsCarryStokesVectorsIntensitiesAndTheBand) {
    const MArray<double> s = Grid({400, 500});
    const MArray<double> t = Grid({400, 475, 500}); // u = 0.75 in the middle
    const Values stokes{4.0, 1.0, -2.0, 0.5, 8.0, -1.0, 2.0, 0.0};
    const Values plain{1.0, 2.0};
    Values full(12), banded(3), spread(12, 9.0);
    SpectrumLayout<4, 4> all(stokes.data(), 2, 0, 1, full.data(), 3);
    SpectrumLayout<4, 1> band(stokes.data(), 2, 1, 1, banded.data(), 3); // I; index 0 reads 0
    SpectrumLayout<1, 4> widen(plain.data(), 2, 0, 1, spread.data(), 3);
    EXPECT_EQ(ResampleSpectrum(s, t, all) + ResampleSpectrum(s, t, band) +
                  ResampleSpectrum(s, t, widen),
              0);
    EXPECT_EQ(full, (Values{4, 1, -2, 0.5, 7, -0.5, 1, 0.125, 8, -1, 2, 0}));
    EXPECT_EQ(banded, (Values{0, 6, 8}));
    EXPECT_EQ(spread, (Values{1, 0, 0, 0, 1.75, 0, 0, 0, 2, 0, 0, 0}));
}

// A curved spectrum tells intervals apart (a straight line is the same from any interval): every
// target value must come from the interval that bisection names, for target grids sparser and
// denser than the source, so both the short walk to the next interval and the fall-back search
// are taken.
TEST(Resample, EachTargetIsInterpolatedInTheIntervalThatHoldsIt) {
    MArray<double> s(10);
    ASSERT_EQ(s.Alloc(61), 0);
    for (int k = 0; k < 61; ++k)
        s[k] = 380.0 + 6.5 * k + 0.7 * (k % 3); // uneven steps
    Values v(61);
    for (int k = 0; k < 61; ++k)
        v[static_cast<std::size_t>(k)] = (s[k] - 500.0) * (s[k] - 500.0);
    for (double step : {0.9, 3.0, 13.0, 29.0, 61.0}) {
        MArray<double> t(10);
        ASSERT_EQ(t.Alloc(static_cast<int>((420.0 - 0.5) / step) + 1), 0);
        for (int i = 0; i < t.Count(); ++i)
            t[i] = 381.0 + step * i;
        Values out(static_cast<std::size_t>(t.Count()));
        ASSERT_EQ(Banded(s, v, t, out), 0);
        for (int i = 0; i < t.Count(); ++i) {
            if (t[i] >= s[60])
                continue;
            const int j = CountNotAbove(s, t[i]) - 1;
            const std::size_t uj = static_cast<std::size_t>(j);
            const double u = (t[i] - s[j]) * (1.0 / (s[j + 1] - s[j]));
            EXPECT_EQ(out[static_cast<std::size_t>(i)], (1.0 - u) * v[uj] + u * v[uj + 1])
                << "step " << step << ", target " << t[i];
        }
    }
}
