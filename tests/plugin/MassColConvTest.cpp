// The mass colour converter: its tables against the CIE converter, the bounds of ray RGB, lazy
// one-time preparation, and preparation without memory.
#include "plugin/masscolconv/MassColConv.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/cie/CIEConvAll.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace Korvane {
namespace {

constexpr double kBoundsFactor = 1.0000001192092896;

void Range(TArray<double>& a, double first, double step, int n) {
    a.Alloc(n);
    for (int i = 0; i < n; ++i)
        a[i] = first + step * i;
}

TVect3<double> Vec(const RGBColourDistr<double>& d) {
    return {d.r, d.g, d.b};
}

void ExpectNearColour(const TVect3<double>& got, const TVect3<double>& want) {
    const double scale =
        std::fmax(std::fabs(want.x), std::fmax(std::fabs(want.y), std::fabs(want.z)));
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(got[c], want[c], scale * Tol::kSpectralRoundTrip) << "channel " << c;
}

TEST(MassColConv, TablesSumToTheConvertersColours) {
    const CIEConvAll* conv = CIEConvAll::Default();
    MArray<double> grid;
    Range(grid, 390.0, 10.0, 33);
    TPlugRef<MassColConv> mass = new MassColConv(grid, conv);
    ASSERT_EQ(mass->PrepareForLight(), 0);
    TArray<double> s(10);
    s.Alloc(33);
    for (int i = 0; i < 33; ++i)
        s[i] = 1.0 + 0.5 * std::sin(0.3 * i);
    // A spectral colour becomes RGB or XYZ by one weighted sum over the tables.
    const TVect3<double>* rgbRows = mass->WeightsForLight();
    ASSERT_NE(rgbRows, nullptr);
    TVect3<double> rgb{0.0, 0.0, 0.0}, xyz{0.0, 0.0, 0.0}, surf{0.0, 0.0, 0.0};
    for (int i = 0; i < 33; ++i)
        for (int c = 0; c < 3; ++c) {
            rgb[c] += s[i] * rgbRows[i][c];
            xyz[c] += s[i] * Vec(mass->LightXYZ()[i])[c];
            surf[c] += s[i] * Vec(mass->WeightForSurface(i))[c];
        }
    ExpectNearColour(rgb, conv->Spectr2RGB(s, grid, false));
    TVect3<double> direct;
    ASSERT_EQ(CIEConv::spectrum2xyz(grid, s, direct), 0);
    ExpectNearColour(xyz, direct);
    ExpectNearColour(surf, conv->Spectr2RGBAttr(s, grid, false));
}

TEST(MassColConv, BoundsAreTheDensityRangeWidenedExactly) {
    MArray<double> grid;
    Range(grid, 380.0, 10.0, 41);
    TPlugRef<MassColConv> mass = new MassColConv(grid, CIEConvAll::Default());
    ASSERT_EQ(mass->PrepareForLight(), 0);
    for (int c = 0; c < 3; ++c) {
        double lo = 1e10, hi = -1e10;
        for (const RGBColourDistr<double>& d : mass->LightRGBDensity()) {
            lo = std::fmin(lo, Vec(d)[c]);
            hi = std::fmax(hi, Vec(d)[c]);
        }
        EXPECT_EQ(mass->BoundsOfRayRGB()[c].lo, lo * kBoundsFactor) << "channel " << c;
        EXPECT_EQ(mass->BoundsOfRayRGB()[c].hi, hi * kBoundsFactor) << "channel " << c;
    }
    // Red goes negative for blue-green light, so its minimum grows in magnitude.
    EXPECT_LT(mass->BoundsOfRayRGB()[0].lo, 0.0);

    // A one-point grid has inverse weight 1: the densities are the rows themselves.
    Range(grid, 550.0, 0.0, 1);
    mass = new MassColConv(grid, CIEConvAll::Default());
    const RGBColourDistr<double>& row = mass->WeightForLight(0);
    EXPECT_EQ(Vec(mass->LightRGBDensity()[0]), Vec(row));
    EXPECT_EQ(Vec(mass->LightXYZDensity()[0]), Vec(mass->LightXYZ()[0]));
    EXPECT_GT(row.g, 0.0);
    EXPECT_EQ(mass->BoundsOfRayRGB()[1].hi, row.g * kBoundsFactor);
}

TEST(MassColConv, PreparesLazilyAndOnce) {
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create();
    MArray<double> grid;
    Range(grid, 390.0, 10.0, 33);
    TPlugRef<MassColConv> mass = new MassColConv(grid, conv.Get());
    EXPECT_EQ(conv->RefCount(), 2);
    EXPECT_EQ(mass->LightRGB().Count(), 0);

    // The surface table is made on first use, and only it.
    TArray<double> spike(10);
    spike.Alloc(33);
    spike.Fill(0.0);
    spike[5] = 1.0;
    EXPECT_EQ(Vec(mass->WeightForSurface(5)), conv->Spectr2RGBAttr(spike, grid, false));
    EXPECT_EQ(mass->SurfaceRGB().Count(), 33);
    EXPECT_EQ(mass->LightRGB().Count(), 0);

    {
        // Count the allocations without failing any.
        FaultInjection::ScopedFailure count(FaultInjection::ArrayStorage, LONG_MAX);
        ASSERT_EQ(mass->PrepareForLight(), 0);
        EXPECT_EQ(FaultInjection::Counted(), 6); // four tables, the spike, the inverse weights
        ASSERT_EQ(mass->PrepareForLight(), 0);
        EXPECT_EQ(mass->WeightsForLight(), mass->WeightsForLight());
        EXPECT_EQ(FaultInjection::Counted(), 6);
    }

    // A copy shares the converter and carries the tables.
    TPlugRef<MassColConv> copy = new MassColConv(*mass.Get());
    EXPECT_EQ(conv->RefCount(), 3);
    EXPECT_EQ(Vec(copy->LightXYZ()[9]), Vec(mass->LightXYZ()[9]));
}

TEST(MassColConv, PreparationWithoutMemory) {
    MArray<double> grid;
    Range(grid, 390.0, 10.0, 33);
    // Allocation k and every later one fail: the first table (k = 1), a later table, the spike,
    // the inverse weights.
    for (long k = 1; k <= 6; ++k) {
        TPlugRef<MassColConv> mass = new MassColConv(grid, CIEConvAll::Default());
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, k, true);
        EXPECT_EQ(mass->PrepareForLight(), -1) << "allocation " << k;
        if (k == 1) {
            EXPECT_EQ(mass->WeightsForLight(), nullptr);
            EXPECT_EQ(Vec(mass->WeightForLight(3)), TVect3<double>(0.0, 0.0, 0.0));
        } else {
            // Light RGB has its rows, so the next call takes the preparation as done and
            // leaves the other tables as they are.
            EXPECT_EQ(mass->PrepareForLight(), 0) << "allocation " << k;
            EXPECT_EQ(mass->LightRGBDensity().Count(), k == 2 ? 0 : 33);
        }
    }
    TPlugRef<MassColConv> mass = new MassColConv(grid, CIEConvAll::Default());
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1, true);
        EXPECT_EQ(mass->PrepareForSurface(), -1);
        EXPECT_EQ(Vec(mass->WeightForSurface(0)), TVect3<double>(0.0, 0.0, 0.0));
    }
    EXPECT_TRUE(ReportLog::Entries().empty());
}

} // namespace
} // namespace Korvane
