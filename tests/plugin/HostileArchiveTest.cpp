// Plug files that claim more than they hold: whatever a file says, reading it allocates no more
// than Serializer::kMaxReadExpansion times its size, counted by the memory statistics (the text
// archive let such a file allocate 40 to 64 times its size).
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/plugsys/PlugFile.h"
#include "plugin/models/SpectralModel.h"
#include "tests/plugin/HolderTestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

using namespace Korvane;

namespace {

using HostileArchive = Korvane::Testing::Registered;

// A holder of `ident` whose "Data" group holds only what `claim` writes (counts or a shape, no
// colours), followed by `padding` doubles that make the claim look affordable.
template <class Archive, class Claim>
std::string Claiming(const char* ident, Claim claim, int padding) {
    Archive a;
    std::string type = ident;
    a.Serialize(type);
    a.OpenGroup("Data");
    claim(a);
    a.CloseGroup();
    std::vector<double> pad(static_cast<std::size_t>(padding), 0.0);
    a.Serialize(pad.data(), padding);
    a.Finish();
    if constexpr (std::is_same_v<Archive, BinarySerializer>)
        return a.Bytes();
    else
        return a.Text();
}

// An array holder that claims `count` colours and stores none of them (each colour's sample
// count is left out, and reads as 0 at the group's end).
template <class Archive>
std::string ClaimingArchive(const char* ident, std::int32_t count, int padding) {
    return Claiming<Archive>(
        ident, [&](Archive& a) { a.Serialize(count); }, padding);
}

// A matrix holder that claims rows x cols colours and stores none of them.
template <class Archive>
std::string ClaimingMatrix(const char* ident, std::int32_t rows, std::int32_t cols, int padding) {
    return Claiming<Archive>(
        ident,
        [&](Archive& a) {
            a.Serialize(rows);
            a.Serialize(cols);
            std::int64_t count = std::int64_t{rows} * cols;
            a.Serialize(count);
        },
        padding);
}

} // namespace

TEST_F(HostileArchive, ArrayHoldersThatOmitTheirColoursAllocateBoundedByTheFile) {
    // The bound: kMaxReadExpansion times the file, and the few small blocks of the plug itself.
    constexpr long long kPlugOverhead = 4096;
    const std::string path = testing::TempDir() + "hostile_array.plug";
    for (const char* ident : {"USpectrArrayLgtColorHold", "StkSpectrArrayLgtColorHold"})
        for (bool text : {false, true}) {
            // The largest claim the room check lets through: half a double of input per colour.
            const int padding = 20000;
            std::string bytes = text ? ClaimingArchive<TextSerializer>(ident, 1, padding)
                                     : ClaimingArchive<BinarySerializer>(ident, 1, padding);
            const auto size = static_cast<std::int32_t>(bytes.size());
            // Less the bytes before the count (a few hundred at most).
            const std::int32_t claim = text ? size - 400 : (size - 200) / 4;
            bytes = text ? ClaimingArchive<TextSerializer>(ident, claim, padding)
                         : ClaimingArchive<BinarySerializer>(ident, claim, padding);
            std::string error;
            ASSERT_TRUE(ArchiveBytes::WriteFile(path.c_str(), bytes, error)) << error;

            const long long before = MemStats::Get("TArray").bytesTotal;
            PlugRef loaded = PlugFile::Load(path.c_str(), error);
            const long long allocated = MemStats::Get("TArray").bytesTotal - before;
            EXPECT_FALSE(loaded) << ident;
            EXPECT_LE(allocated,
                      Serializer::kMaxReadExpansion * static_cast<long long>(bytes.size()) +
                          kPlugOverhead)
                << ident << (text ? " text: " : " binary: ") << allocated << " bytes for a file of "
                << bytes.size() << " (" << error << ")";
        }
    std::remove(path.c_str());
}

// Matrix holders size their storage from two stored numbers: a shape whose product overflows, a
// negative side, or a claim the rest of the file cannot justify is refused before the storage
// is allocated; a claim that passes the checks asks for no more than kMaxReadExpansion times the
// file.
TEST_F(HostileArchive, MatrixHoldersThatClaimMoreThanTheyHoldAreRefused) {
    const std::string path = testing::TempDir() + "hostile_matrix.plug";
    const std::size_t colour = sizeof(LgtColor<SpectralModel<Unpolarized>>);
    for (const char* ident : {"USpectrMatrixLgtColorHold", "StkSpectrMatrixLgtColorHold"})
        for (bool text : {false, true}) {
            auto make = [&](std::int32_t rows, std::int32_t cols) {
                return text ? ClaimingMatrix<TextSerializer>(ident, rows, cols, 20000)
                            : ClaimingMatrix<BinarySerializer>(ident, rows, cols, 20000);
            };
            const auto size = static_cast<std::int32_t>(make(1, 1).size());
            const std::int32_t claim = text ? size - 400 : (size - 200) / 4;
            struct Shape {
                std::int32_t rows, cols;
            };
            for (Shape shape : {Shape{65536, 65536}, Shape{-2, 3}, Shape{3, -2},
                                Shape{2147483647, 2}, Shape{claim / 8, 8}, Shape{8, claim / 8}}) {
                const std::string bytes = make(shape.rows, shape.cols);
                const std::string where = std::string(ident) + (text ? " text " : " binary ") +
                                          std::to_string(shape.rows) + " x " +
                                          std::to_string(shape.cols);
                std::string error;
                ASSERT_TRUE(ArchiveBytes::WriteFile(path.c_str(), bytes, error)) << error;
                PlugRef loaded = PlugFile::Load(path.c_str(), error);
                EXPECT_FALSE(loaded) << where;
                EXPECT_FALSE(error.empty()) << where;
                // What got as far as the allocation fits the bound; the rest was refused by it
                // or by the room check, with a message.
                const long long elements = std::int64_t{shape.rows} * shape.cols;
                if (elements > 0 &&
                    static_cast<long long>(colour) * elements >
                        Serializer::kMaxReadExpansion * static_cast<long long>(bytes.size())) {
                    EXPECT_EQ(error.find("out of memory"), std::string::npos)
                        << where << ": " << error;
                }
            }
        }
    std::remove(path.c_str());
}
