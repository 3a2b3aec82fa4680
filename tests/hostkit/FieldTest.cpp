// The field library: bounded field types and the host's wavelength field.
#include "hostkit/field/WaveLength.h"

#include <gtest/gtest.h>

using namespace Korvane;

TEST(Field, WaveLengthSpansTheBuiltInObserver) {
    ASSERT_NE(TWaveLength, nullptr);
    EXPECT_EQ(TWaveLength->Ident(), "WaveLength");
    EXPECT_EQ(PlugType::Find("WaveLength"), TWaveLength);
    // The CIE 1931 observer tabulated at 1 nm (CIE 015:2004) spans 360 to 830 nm.
    EXPECT_EQ(TWaveLength->BottomLimit(), 360.0);
    EXPECT_EQ(TWaveLength->TopLimit(), 830.0);
}

TEST(Field, TypeKeepsItsLimitsAndLeavesTheRegistryWhenDeleted) {
    PlugType* type = new SBFieldType<double>("TestField", -1.5, 2.5);
    const auto* field = static_cast<SBFieldType<double>*>(type);
    EXPECT_EQ(field->BottomLimit(), -1.5);
    EXPECT_EQ(field->TopLimit(), 2.5);
    EXPECT_EQ(PlugType::Find("TestField"), type);
    DeleteType(type);
    EXPECT_EQ(PlugType::Find("TestField"), nullptr);
}
