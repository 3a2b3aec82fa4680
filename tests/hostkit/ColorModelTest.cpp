// The colour-model base: the behaviours a model inherits, and the host's current converter.
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "tests/support/TestModel.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

using namespace Korvane;
using Korvane::Testing::TestLgtColor;
using Korvane::Testing::TestModel;
using Korvane::Testing::TestRayColor;

namespace {

struct ModelTypes {
    PlugType a{"TestModelA", TColorModel, false, nullptr};
    PlugType b{"TestModelB", TColorModel, false, nullptr};
};

} // namespace

TEST(ColorModelBase, DefaultsOfAModelWithoutGridOrPolarization) {
    ModelTypes types;
    const TestModel m(&types.a);
    EXPECT_FALSE(m.IsBW() || m.IsRGB() || m.IsXYZ() || m.IsXYY() || m.IsSpectral());
    EXPECT_FALSE(m.HasPolarization());
    EXPECT_EQ(m.GetWaveLengths().Count(), 0);
    EXPECT_EQ(m.GetMassColConv(), nullptr);
    double low = 0.0, high = 0.0;
    m.GetWaveRange(low, high);
    // The CIE 1931 observer tabulated at 1 nm (CIE 015:2004) spans 360 to 830 nm.
    EXPECT_EQ(low, 360.0);
    EXPECT_EQ(high, 830.0);
}

TEST(ColorModelBase, IsEqualMeansSameType) {
    ModelTypes types;
    const TestModel a1(&types.a, 1.0), a2(&types.a, 2.0), b(&types.b);
    EXPECT_TRUE(a1.IsEqual(&a2));
    EXPECT_TRUE(a1.IsEqual(&a1));
    EXPECT_FALSE(a1.IsEqual(&b));
    EXPECT_FALSE(a1.IsEqual(nullptr));
}

TEST(ColorModelBase, ChromaticityAndLuminance) {
    ModelTypes types;
    const TestModel m(&types.a);
    double lum = 0.0;
    TVect2<double> xy(-1.0, -1.0);

    // White of sRGB / BT.709 (x, y) = (0.3127, 0.3290), as XYZ with Y = 1 (IEC 61966-2-1:1999;
    // the XYZ derived in shared/data/srgb_constants.md, section 1).
    const TestLgtColor white{{}, {0.9504559270516717, 1.0, 1.0890577507598784}};
    m.GetChromaticity(white, lum, xy);
    EXPECT_NEAR(xy.x, 0.3127, Tol::kChromaticityRounding);
    EXPECT_NEAR(xy.y, 0.3290, Tol::kChromaticityRounding);
    EXPECT_EQ(lum, 683.0); // 683 lm/W: SI definition of the candela

    // X+Y+Z exactly 0 with Y not 0: xy is (0, 0), never a division by zero; luminance still 683 Y.
    const TestLgtColor balanced{{}, {1.0, -1.0, 0.0}};
    m.GetChromaticity(balanced, lum, xy);
    EXPECT_EQ(xy.x, 0.0);
    EXPECT_EQ(xy.y, 0.0);
    EXPECT_EQ(lum, -683.0);
}

TEST(ColorModelBase, LightEnergyIsTheSumAndDensityHooksLeaveTheColour) {
    ModelTypes types;
    const TestModel m(&types.a);
    TestLgtColor c{{}, {1.0, 2.0, 4.0}};
    EXPECT_EQ(m.LgtEnergy(c), 7.0);
    m.EnergyToDensity(c);
    m.DensityToEnergy(c);
    EXPECT_EQ(c.v[0], 1.0);
    EXPECT_EQ(c.v[1], 2.0);
    EXPECT_EQ(c.v[2], 4.0);
}

TEST(ColorModelBase, ConvertToRayColorUsesThisModelAndKeepsTheOrientation) {
    ModelTypes types;
    const TestModel src(&types.a, 2.0), dst(&types.b, 3.0);
    const TestLgtColor light{{}, {1.0, 2.0, -1.0}};
    TestRayColor ray{{}, {9.0, 9.0, 9.0}, {0.0, 0.6, 0.8}};

    ASSERT_EQ(dst.ConvertToRayColor(&src, light, ray), 0);
    // dst's light conversion: times dst's gain 3, then dst's clamp of the negative value.
    EXPECT_EQ(ray.v[0], 3.0);
    EXPECT_EQ(ray.v[1], 6.0);
    EXPECT_EQ(ray.v[2], 0.0);
    TVect3<double> xort(0.0, 0.0, 0.0);
    dst.GetXOrt(ray, xort);
    EXPECT_EQ(xort, TVect3<double>(0.0, 0.6, 0.8));
}

// Each test leaves the built-in default converter current, as at host start.
class CurrentConverter : public testing::Test {
protected:
    void TearDown() override { TColorModel->SetCIEConvAllForAll(CIEConvAll::Default()); }
};

TEST_F(CurrentConverter, DefaultAtHostStart) {
    EXPECT_EQ(ColorModel::GetCIEConvAll(), CIEConvAll::Default());
    EXPECT_EQ(ColorModel::GetCIEConv(), CIEConvAll::Default());
}

TEST_F(CurrentConverter, StoredByTheSlotForEveryModel) {
    ModelTypes types;
    const TestModel m(&types.a);
    TPlugRef<CIEConvAll> mine = CIEConvAll::Create();
    ASSERT_TRUE(mine.Get());

    TestModel(&types.b).SetCIEConvAll(mine.Get()); // any model's slot sets it process-wide
    EXPECT_EQ(m.GetCIEConvAll(), mine.Get());
    EXPECT_EQ(m.GetCIEConv(), mine.Get());

    TestModel(&types.b).SetCIEConvAll(nullptr);
    EXPECT_EQ(m.GetCIEConvAll(), nullptr);
    ASSERT_NE(m.GetCIEConv(), nullptr);
    EXPECT_EQ(m.GetCIEConv(), CIEConvAll::Default());
    EXPECT_EQ(m.GetCIEConv(), CIEConv::Current());
}
