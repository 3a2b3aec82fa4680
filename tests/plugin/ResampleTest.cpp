// Resampling between wavelength grids: both forms reproduce straight lines, hold the end values,
// copy equal grids exactly, refuse what does not fit, and carry the component layouts.
#include "ModelTestSupport.h"
#include "tests/support/Tolerances.h"

#include "plugin/spectral/Resample.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;

namespace {

// The banded form on plain values (one double per wavelength, no band).
int Banded(const MArray<double>& s, const std::vector<double>& v, const MArray<double>& t,
           std::vector<double>& out) {
    SpectrumLayout<1, 1> layout(v.data(), static_cast<int>(v.size()), 0,
                                static_cast<int>(v.size()) - 1, out.data(),
                                static_cast<int>(out.size()));
    return ResampleSpectrum(s, t, layout);
}

int Plain(const MArray<double>& s, const std::vector<double>& v, const MArray<double>& t,
          std::vector<double>& out) {
    return ResampleValues(s, v.data(), static_cast<int>(v.size()), t, out.data(),
                          static_cast<int>(out.size()));
}

// An ascending grid of n wavelengths in [low, high] with random steps, ends included.
MArray<double> RandomGrid(std::mt19937& rng, int n, double low, double high) {
    std::uniform_real_distribution<double> step(0.2, 1.0);
    std::vector<double> w(static_cast<std::size_t>(n), low);
    for (int i = 1; i < n; ++i)
        w[static_cast<std::size_t>(i)] = w[static_cast<std::size_t>(i - 1)] + step(rng);
    const double scale = (high - low) / (w.back() - low);
    MArray<double> grid(10);
    grid.Alloc(n);
    for (int i = 0; i < n; ++i)
        grid[i] = low + (w[static_cast<std::size_t>(i)] - low) * scale;
    grid[n - 1] = high;
    return grid;
}

std::vector<double> Line(const MArray<double>& grid, double a, double b) {
    std::vector<double> v;
    for (double w : grid)
        v.push_back(a + b * w);
    return v;
}

} // namespace

TEST(Resample, BothFormsReproduceStraightLinesBetweenAnyGrids) {
    // A straight line sampled on one grid is the same line on every grid inside its range, so
    // a wrong interval or a wrong weight u shows at once.
    std::mt19937 rng(7);
    double worst = 0.0;
    for (int round = 0; round < 50; ++round) {
        const MArray<double> s = RandomGrid(rng, 5 + round % 30, 380.0, 780.0);
        const MArray<double> t = RandomGrid(rng, 3 + round % 41, 380.0, 780.0);
        const std::vector<double> v = Line(s, 2.0, -0.0025);
        const std::vector<double> expected = Line(t, 2.0, -0.0025);
        std::vector<double> banded(static_cast<std::size_t>(t.Count()));
        std::vector<double> plain(banded.size());
        ASSERT_EQ(Banded(s, v, t, banded), 0);
        ASSERT_EQ(Plain(s, v, t, plain), 0);
        for (std::size_t i = 0; i < expected.size(); ++i) {
            EXPECT_NEAR(banded[i], expected[i], Tol::kResampleRounding);
            EXPECT_NEAR(plain[i], expected[i], Tol::kResampleRounding);
            worst = std::fmax(worst, std::fmax(std::fabs(banded[i] - expected[i]),
                                               std::fabs(plain[i] - expected[i])));
        }
    }
    RecordProperty("largest error", testing::PrintToString(worst));
}

TEST(Resample, OutsideTheSourceRangeTheEndValuesHold) {
    const MArray<double> s = Grid({400.0, 500.0, 600.0});
    const std::vector<double> v{1.0, 3.0, 0.7};
    const MArray<double> t = Grid({350.0, 400.0, 450.0, 550.0, 599.9, 600.0, 700.0});
    for (auto* form : {&Banded, &Plain}) {
        std::vector<double> out(7);
        ASSERT_EQ(form(s, v, t, out), 0);
        EXPECT_EQ(out[0], 1.0);
        EXPECT_EQ(out[1], 1.0);
        EXPECT_EQ(out[2], 2.0); // halfway: 0.5 * 1 + 0.5 * 3 exactly
        EXPECT_NEAR(out[3], 1.85, Tol::kResampleRounding);
        EXPECT_NEAR(out[4], 0.7 + 2.3e-3, Tol::kResampleRounding);
        EXPECT_EQ(out[5], 0.7); // the last wavelength takes exactly the last value
        EXPECT_EQ(out[6], 0.7);
    }
}

TEST(Resample, EqualGridsCopyBitForBitAndOnePointIsFlat) {
    // An infinite neighbour would turn 1 * v + 0 * inf into NaN: only a true copy keeps it.
    const MArray<double> s = Grid({400.0, 410.0, 420.0});
    const std::vector<double> v{0.1, 0.30000000000000004, std::numeric_limits<double>::infinity()};
    std::vector<double> out(3);
    ASSERT_EQ(Banded(s, v, s, out), 0);
    EXPECT_EQ(out, v);

    const MArray<double> one = Grid({555.0});
    const std::vector<double> single{0.25};
    std::vector<double> flat(4, -1.0);
    const MArray<double> t = Grid({380.0, 555.0, 560.0, 780.0});
    ASSERT_EQ(Banded(one, single, t, flat), 0);
    EXPECT_EQ(flat, std::vector<double>(4, 0.25));
    std::fill(flat.begin(), flat.end(), -1.0);
    ASSERT_EQ(Plain(one, single, t, flat), 0);
    EXPECT_EQ(flat, std::vector<double>(4, 0.25));
}

TEST(Resample, RefusesCountsThatDoNotFitTheGridsAndEmptySources) {
    const MArray<double> s = Grid({400.0, 500.0});
    const MArray<double> t = Grid({420.0, 450.0, 480.0});
    const MArray<double> empty = Grid({});
    std::vector<double> out(3);
    std::vector<double> shortOut(2);
    for (auto* form : {&Banded, &Plain}) {
        EXPECT_EQ(form(s, {1.0, 2.0, 3.0}, t, out), -1);
        EXPECT_EQ(form(s, {1.0, 2.0}, t, shortOut), -1);
        EXPECT_EQ(form(empty, {}, t, out), -1);
        std::vector<double> none;
        EXPECT_EQ(form(empty, {}, empty, none), 0);
    }
    // A target that runs backwards has a wavelength no source interval holds.
    const MArray<double> s3 = Grid({400.0, 500.0, 600.0});
    EXPECT_EQ(Banded(s3, {1.0, 2.0, 3.0}, Grid({450.0, 700.0, 420.0}), out), -1);
}

TEST(Resample, LayoutsCarryStokesMuellerAndTheBand) {
    const MArray<double> s = Grid({400.0, 500.0});
    const MArray<double> t = Grid({400.0, 475.0, 500.0});

    // Stokes into Stokes: every component with the same u = 0.75.
    const std::vector<double> stokes{4.0, 1.0, -2.0, 0.5, 8.0, -1.0, 2.0, 0.0};
    std::vector<double> out(12, 9.0);
    SpectrumLayout<4, 4> full(stokes.data(), 2, 0, 1, out.data(), 3);
    ASSERT_EQ(ResampleSpectrum(s, t, full), 0);
    EXPECT_EQ(out, (std::vector<double>{4.0, 1.0, -2.0, 0.5, 7.0, -0.5, 1.0, 0.125, 8.0, -1.0, 2.0,
                                        0.0}));

    // Stokes into one value per wavelength: I only.
    std::vector<double> intensity(3);
    SpectrumLayout<4, 1> first(stokes.data(), 2, 0, 1, intensity.data(), 3);
    ASSERT_EQ(ResampleSpectrum(s, t, first), 0);
    EXPECT_EQ(intensity, (std::vector<double>{4.0, 7.0, 8.0}));

    // Mueller matrices into one value per wavelength: element (0,0) only.
    std::vector<double> mueller(32, 5.0);
    mueller[0] = 0.2;
    mueller[16] = 0.6;
    std::vector<double> reflectance(3);
    SpectrumLayout<16, 1> m00(mueller.data(), 2, 0, 1, reflectance.data(), 3);
    ASSERT_EQ(ResampleSpectrum(s, t, m00), 0);
    EXPECT_NEAR(reflectance[1], 0.5, Tol::kResampleRounding);
    EXPECT_EQ(reflectance[2], 0.6);

    // One value into Stokes: I with Q = U = V = 0.
    const std::vector<double> plain{1.0, 2.0};
    std::vector<double> widened(12, 9.0);
    SpectrumLayout<1, 4> spread(plain.data(), 2, 0, 1, widened.data(), 3);
    ASSERT_EQ(ResampleSpectrum(s, t, spread), 0);
    EXPECT_EQ(widened, (std::vector<double>{1.0, 0, 0, 0, 1.75, 0, 0, 0, 2.0, 0, 0, 0}));

    // A source band [1, 1] reads zero at index 0.
    std::vector<double> banded(3);
    SpectrumLayout<4, 1> band(stokes.data(), 2, 1, 1, banded.data(), 3);
    ASSERT_EQ(ResampleSpectrum(s, t, band), 0);
    EXPECT_EQ(banded, (std::vector<double>{0.0, 6.0, 8.0}));
}
