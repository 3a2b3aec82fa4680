// What the holder tests share: the library registered for the length of a test, colour values
// filled with a recognisable pattern, and a holder sent through an archive by its own type.
#pragma once

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/frame/ModuleEntry.h"

#include <gtest/gtest.h>

#include <string>

namespace Korvane::Testing {

// Every type and model registered for the length of the test.
class Registered : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(InitClasses(), 0); }
    void TearDown() override { TermClasses(); }
};

// Distinct values, none zero, that start at `seed`; a spectral colour gets three samples and a
// polarized ray colour the X orientation (0, seed, 1).
template <class M, class I, class Comp, int N>
void Pattern(FixedColour<M, I, Comp, N>& c, double seed) {
    for (int k = 0; k < FixedColour<M, I, Comp, N>::kDoubles; ++k)
        c[k] = seed + 0.25 * k;
}
template <class M, class I, class D>
void Pattern(SpctrlColour<M, I, D>& c, double seed) {
    ASSERT_EQ(c.Distr().SetLength(3), 0);
    for (int k = 0; k < 3 * D::Component::kSize; ++k)
        c.Values()[k] = seed + 0.25 * k;
}
template <class M, class L, bool kPolarized>
void Pattern(RayColour<M, L, kPolarized>& c, double seed) {
    Pattern(c.Light(), seed);
    if constexpr (kPolarized)
        c.XOrt() = TVect3<double>(0.0, seed, 1.0);
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
