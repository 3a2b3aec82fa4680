// What the holder tests share: the library registered for the length of a test, colour values
// filled with a recognisable pattern, and a holder sent through an archive by its own type.
#pragma once

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/frame/ModuleEntry.h"
#include "tests/support/ColourPattern.h"

#include <gtest/gtest.h>

#include <string>

namespace Korvane::Testing {

// Every type and model registered for the length of the test.
class Registered : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(InitClasses(), 0); }
    void TearDown() override { TermClasses(); }
};

// A colour filled with the pattern of ColourPattern.h; the test fails when it cannot be sized.
template <class C>
void Pattern(C& c, double seed) {
    ASSERT_TRUE(FillPattern(c, seed)) << "cannot size a spectral colour";
}

// The plug written by its type into an archive of `format`.
inline std::string Write(Plug& plug, ArchiveFormat format) {
    auto write = [&](auto& archive) {
        EXPECT_EQ(plug.ObjType()->SerializeInstance(&plug, archive), 0);
        EXPECT_EQ(archive.Finish(), 0) << archive.Error();
    };
    BinarySerializer binary;
    TextSerializer text;
    format == ArchiveFormat::Binary ? write(binary) : write(text);
    return format == ArchiveFormat::Binary ? binary.Bytes() : text.Text();
}

// Reads `bytes` into the plug through its type; the archive's error, empty when all was read.
inline std::string Read(Plug& plug, std::string bytes, ArchiveFormat format) {
    auto read = [&](auto& archive) {
        plug.ObjType()->SerializeInstance(&plug, archive);
        archive.Finish();
        return archive.Failed() ? archive.Error() : std::string();
    };
    if (format == ArchiveFormat::Binary) {
        BinarySerializer archive(std::move(bytes));
        return read(archive);
    }
    TextSerializer archive(std::move(bytes));
    return read(archive);
}

} // namespace Korvane::Testing
