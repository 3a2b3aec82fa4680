#include "plugin/frame/ModuleEntry.h"

#include <gtest/gtest.h>

TEST(ModuleEntry, VersionIdIsFixed) {
    EXPECT_EQ(VersionId(), 263237);
}
