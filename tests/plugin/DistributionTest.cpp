// Spectral distributions: length changes, the band of light distributions, copies, and running
// out of memory. All values are small integers and halves, so every sum below is exact.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/containers/TArray.h"
#include "plugin/colour/ColourValues.h"

#include <gtest/gtest.h>

using namespace Korvane;

namespace {

using Light = ExtSpctrlColourDistr<StkLightComp>;
const StkLightComp kZero{};

// Component i holds base + (i, 10 + i, 20 + i, 30 + i): every double of every component differs.
void Ramp(BArray<StkLightComp>& d, double base = 0.0) {
    for (int i = 0; i < d.Count(); ++i)
        for (int j = 0; j < 4; ++j)
            d[i][j] = base + 10.0 * j + i;
}

StkLightComp Stokes(double i, double q, double u, double v) {
    return StkLightComp{{i, q, u, v}};
}

// Ten ramp components with the band [2, 5].
void TenBanded(Light& d) {
    ASSERT_EQ(d.SetLength(10), 0);
    Ramp(d);
    d.SetBand(2, 5);
}

} // namespace

TEST(DistributionLength, SameLengthKeepsValuesOtherLengthResetsBand) {
    Light d;
    TenBanded(d);
    ASSERT_EQ(d.SetLength(10), 0);
    EXPECT_EQ(d[7], Stokes(7, 17, 27, 37));
    EXPECT_EQ(d.First(), 2);
    EXPECT_EQ(d.Last(), 5);

    ASSERT_EQ(d.SetLength(4), 0);
    EXPECT_EQ(d.First(), 0);
    EXPECT_EQ(d.Last(), 3);
}

TEST(DistributionBand, OutsideTheBandReadsZeroWritesAreLostFillsZero) {
    Light d;
    TenBanded(d);
    EXPECT_EQ(d.Get(5), Stokes(5, 15, 25, 35));
    EXPECT_EQ(d.Get(7), kZero);

    d.At(7) = Stokes(1, 1, 1, 1);
    EXPECT_EQ(d.Get(7), kZero);
    EXPECT_EQ(d[7], Stokes(7, 17, 27, 37)); // storage untouched
    EXPECT_EQ(d.At(30), kZero);             // the sink is zero again when handed out
    d.At(3) = Stokes(1, 2, 3, 4);
    EXPECT_EQ(d.Get(3), Stokes(1, 2, 3, 4));

    d.Fill(Stokes(2, -1, 0.5, 0));
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(d[i], (i >= 2 && i <= 5) ? Stokes(2, -1, 0.5, 0) : kZero) << i;
}

TEST(DistributionBand, AddScaledCoversBandAndSourceOnly) {
    Light d;
    TenBanded(d);
    StkLightComp buffer[10];
    BArray<StkLightComp> src(buffer, 10);
    Ramp(src, 100.0);
    src = BArray<StkLightComp>(buffer, 4); // values beyond its count exist but are not its own

    d.AddScaled(src, 0.5);
    for (int i = 0; i < 10; ++i)
        for (int j = 0; j < 4; ++j) {
            const double own = 10.0 * j + i;
            const double expected = (i == 2 || i == 3) ? own + 0.5 * (100.0 + own) : own;
            EXPECT_EQ(d[i][j], expected) << "component " << i << ", value " << j;
        }
}

TEST(DistributionCopy, CopyValuesTakesLengthAndValuesButNotTheBand) {
    Light longer;
    ASSERT_EQ(longer.SetLength(8), 0);
    Ramp(longer, 1.0);
    longer.SetBand(3, 4);
    Light d;
    ASSERT_EQ(d.SetLength(3), 0);

    d.CopyValues(longer);
    EXPECT_TRUE(SameComponents(d, longer));
    EXPECT_EQ(d.Last(), 7);
    d.CopyValues(d);
    EXPECT_TRUE(SameComponents(d, longer));
}

TEST(DistributionCopy, GrowingArrayOfRayColoursCopiesEveryElement) {
    using Ray = RayColor<SpectralModel<StokesPolarization>>;
    TArray<Ray> rays(10);
    ASSERT_EQ(rays.Alloc(1), 0);
    Light& d = rays[0].Light().Distr();
    ASSERT_EQ(d.SetLength(5), 0);
    Ramp(d);
    d.SetBand(1, 2);
    rays[0].XOrt() = TVect3<double>(0.0, 0.0, 1.0);
    const Ray copy = rays[0]; // copy construction: values, then the band

    ASSERT_EQ(rays.Alloc(3), 0); // reallocates: the element moves through its distribution
    EXPECT_TRUE(rays[0] == copy);
    EXPECT_EQ(rays[0].Light().Distr().Last(), 2);
    EXPECT_EQ(copy.Light().Distr().Last(), 2);
    EXPECT_EQ(rays[2].Light().Distr().Count(), 0);
    EXPECT_EQ(rays[2].XOrt(), TVect3<double>(1.0, 0.0, 0.0));
}

TEST(DistributionMemory, FailedSetLengthLeavesAnEmptyDistribution) {
    Light d;
    ASSERT_EQ(d.SetLength(5), 0);
    d.SetBand(1, 3);
    SpctrlColourDistr<StkSurfComp> src;
    ASSERT_EQ(src.SetLength(3), 0);
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 1, true);
        EXPECT_EQ(d.SetLength(8), -1);
        const SpctrlColourDistr<StkSurfComp> copy(src);
        EXPECT_EQ(copy.Count(), 0);
        EXPECT_EQ(FaultInjection::Counted(), 2);
    }
    EXPECT_EQ(d.Data(), nullptr);
    EXPECT_EQ(d.Count(), 0);
    EXPECT_EQ(d.Last(), 3); // the band keeps its limits, over no storage
    EXPECT_EQ(d.Get(2), kZero);
}
