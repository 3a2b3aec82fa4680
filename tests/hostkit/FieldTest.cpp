// The field library: the host's wavelength field.
#include "hostkit/field/WaveLength.h"

#include <gtest/gtest.h>

using namespace Korvane;

TEST(Field, WaveLengthSpansTheBuiltInObserver) {
    ASSERT_NE(TWaveLength, nullptr);
    EXPECT_EQ(PlugType::Find("WaveLength"), TWaveLength);
    // The CIE 1931 observer tabulated at 1 nm (CIE 015:2004) spans 360 to 830 nm.
    EXPECT_EQ(TWaveLength->BottomLimit(), 360.0);
    EXPECT_EQ(TWaveLength->TopLimit(), 830.0);
}
