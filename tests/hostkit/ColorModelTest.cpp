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
struct ModelTypes : testing::Test {
    PlugType a{"TestModelA", TColorModel, false, nullptr};
    PlugType b{"TestModelB", TColorModel, false, nullptr};
};
using ColorModelBase = ModelTypes;
} // namespace

TEST_F(ColorModelBase, IsEqualMeansSameType) {
    const TestModel a1(&a, 1.0), a2(&a, 2.0), b1(&b);
    EXPECT_TRUE(a1.IsEqual(&a2));
    EXPECT_FALSE(a1.IsEqual(&b1));
    EXPECT_FALSE(a1.IsEqual(nullptr));
}

TEST_F(ColorModelBase, ChromaticityAndLuminance) {
    const TestModel m(&a);
    double lum = 0.0;
    TVect2<double> xy(-1.0, -1.0);

    // White of sRGB / BT.709 (x, y) = (0.3127, 0.3290), as XYZ with Y = 1 (IEC 61966-2-1:1999;
    // the XYZ derived in shared/data/srgb_constants.md, section 1).
    m.GetChromaticity(TestLgtColor{{}, {0.9504559270516717, 1.0, 1.0890577507598784}}, lum, xy);
    EXPECT_NEAR(xy.x, 0.3127, Tol::kChromaticityRounding);
    EXPECT_NEAR(xy.y, 0.3290, Tol::kChromaticityRounding);
    EXPECT_EQ(lum, 683.0); // 683 lm/W: SI definition of the candela

    // X+Y+Z exactly 0 with Y not 0: xy is (0, 0), never a division by zero; luminance still 683 Y.
    m.GetChromaticity(TestLgtColor{{}, {1.0, -1.0, 0.0}}, lum, xy);
    EXPECT_EQ(xy.x, 0.0);
    EXPECT_EQ(xy.y, 0.0);
    EXPECT_EQ(lum, -683.0);
}

TEST_F(ColorModelBase, EnergyAndRayColourGoThroughThisModelsOperations) {
    const TestModel src(&a, 2.0), dst(&b, 3.0);
    const TestLgtColor light{{}, {1.0, 2.0, -1.0}};
    EXPECT_EQ(dst.LgtEnergy(light), 2.0); // the model's SumLgtColor

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

// Leaves the built-in default converter current, as at host start.
struct CurrentConverter : ModelTypes {
    void TearDown() override { TColorModel->SetCIEConvAllForAll(CIEConvAll::Default()); }
};

TEST_F(CurrentConverter, DefaultAtHostStartThenWhatAnyModelsSlotStores) {
    EXPECT_EQ(ColorModel::GetCIEConvAll(), CIEConvAll::Default());
    EXPECT_EQ(ColorModel::GetCIEConv(), CIEConvAll::Default());

    TestModel setter(&a);
    TPlugRef<CIEConvAll> mine = CIEConvAll::Create();
    ASSERT_TRUE(mine.Get());
    setter.SetCIEConvAll(mine.Get());
    EXPECT_EQ(ColorModel::GetCIEConvAll(), mine.Get());
    EXPECT_EQ(ColorModel::GetCIEConv(), mine.Get());
    EXPECT_EQ(CIEConv::Current(), mine.Get()); // the static conversions integrate with it too

    setter.SetCIEConvAll(nullptr);
    EXPECT_EQ(ColorModel::GetCIEConvAll(), nullptr);
    EXPECT_EQ(ColorModel::GetCIEConv(), CIEConvAll::Default());
}
