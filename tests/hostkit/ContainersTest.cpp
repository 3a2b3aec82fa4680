#include "hostkit/base/containers/TArray.h"

#include <gtest/gtest.h>

using namespace Korvane;

TEST(TArrayGrowth, AllocGrowsExactlyAndNeverShrinks) {
    MArray<double> a(10);
    ASSERT_EQ(a.Alloc(5), 0);
    EXPECT_EQ(a.Capacity(), 5);
    ASSERT_EQ(a.Alloc(3), 0);
    EXPECT_EQ(a.Capacity(), 5);
    EXPECT_EQ(a.Count(), 3);
}
