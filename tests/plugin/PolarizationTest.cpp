// Polarization policies: the strings that model identifiers and display names are built from.
#include "plugin/frame/Polarization.h"

#include <gtest/gtest.h>

#include <string>

using namespace Korvane;

TEST(PolarizationPolicy, TagsNamesAndModelCodeBits) {
    EXPECT_EQ(std::string(Unpolarized::Tag()), "U");
    EXPECT_EQ(std::string(Unpolarized::PolarName()), "Unpolarized");
    EXPECT_EQ(std::string(StokesPolarization::Tag()), "Stk");
    EXPECT_EQ(std::string(StokesPolarization::PolarName()), "Polarized");
    EXPECT_EQ(Unpolarized::kPolarizationBit, 1);
    EXPECT_EQ(StokesPolarization::kPolarizationBit, 2);
}
