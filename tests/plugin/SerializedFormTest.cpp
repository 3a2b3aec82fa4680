// The exact bytes each holder and the spectral model type write, and that SerializeInstance
// answers the close of its group. The expected payloads (the binary archive without its 24-byte
// header) are written out by hand from the record table of the binary archive: a tag byte, then
// little-endian payloads ('G' u32 length + name, 'I' int32, 'L' int64, 'D' the 8 bytes of the
// IEEE-754 double, 'A' u32 count + doubles, 'B' u32 length + name + one byte, 'E', and 'Z' at
// the end). The doubles used have few bits: 0.5 = 0x3FE0..., 1.5 = 0x3FF8..., 2.0 = 0x4000...,
// 400.0 = 0x4079..., 500.0 = 0x407F40..., all further bytes zero.
#include "hostkit/base/BinarySerializer.h"
#include "plugin/holders/ArrayLgtColorHold.h"
#include "plugin/holders/ColorHold.h"
#include "plugin/holders/MatrixLgtColorHold.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "tests/plugin/HolderTestSupport.h"
#include "tests/plugin/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <string>

using namespace Korvane;
using namespace std::string_literals;
using Korvane::Testing::Registered;

namespace {

using BWU = BWModel<Unpolarized>;
using SpU = SpectralModel<Unpolarized>;

constexpr std::size_t kHeaderSize = 24;

const std::string kHalf = "D\0\0\0\0\0\0\xE0\x3F"s;
const std::string kOneAndHalf = "D\0\0\0\0\0\0\xF8\x3F"s;
const std::string kTwo = "D\0\0\0\0\0\0\0\x40"s;
const std::string kColorGroup = "G\x05\0\0\0"s + "Color";
const std::string kDataGroup = "G\x04\0\0\0"s + "Data";
const std::string kEnd = "EZ";

// What the plug's type writes for it, without the archive's header.
std::string Payload(Plug& plug) {
    BinarySerializer archive;
    EXPECT_EQ(plug.ObjType()->SerializeInstance(&plug, archive), 0);
    EXPECT_EQ(archive.Finish(), 0) << archive.Error();
    return archive.Bytes().substr(kHeaderSize);
}

// An archive whose group `group` holds the given records and then one double too many.
std::string WithExtraDouble(const char* group, void (*records)(BinarySerializer&)) {
    BinarySerializer archive;
    archive.OpenGroup(group);
    records(archive);
    double extra = 7.0;
    archive.Serialize(extra);
    archive.CloseGroup();
    archive.Finish();
    return archive.Bytes();
}

} // namespace

TEST_F(Registered, HoldersWriteTheirExactBytes) {
    TPlugRef<ColorHold<LgtColor<BWU>>> grey = new ColorHold<LgtColor<BWU>>();
    grey->Value()[0] = 0.5;
    EXPECT_EQ(Payload(*grey.Get()), kColorGroup + kHalf + kEnd);

    // A spectral colour: its sample count as int32, then its samples.
    TPlugRef<ColorHold<LgtColor<SpU>>> light = new ColorHold<LgtColor<SpU>>();
    ASSERT_EQ(light->Value().Distr().SetLength(2), 0);
    light->Value().Values()[0] = 0.5;
    light->Value().Values()[1] = 2.0;
    EXPECT_EQ(Payload(*light.Get()), kColorGroup + "I\x02\0\0\0"s + kHalf + kTwo + kEnd);

    // Arrays: the count as int32 only when there are colours; matrices rows and columns as int32,
    // the element count as int64, again only when there are elements.
    TPlugRef<ArrayLgtColorHold<BWU>> array = new ArrayLgtColorHold<BWU>();
    EXPECT_EQ(Payload(*array.Get()), kDataGroup + kEnd);
    ASSERT_EQ(array->Resize(2), 0);
    array->Colours()[0][0] = 0.5;
    array->Colours()[1][0] = 2.0;
    EXPECT_EQ(Payload(*array.Get()), kDataGroup + "I\x02\0\0\0"s + kHalf + kTwo + kEnd);

    TPlugRef<MatrixLgtColorHold<BWU>> matrix = new MatrixLgtColorHold<BWU>();
    EXPECT_EQ(Payload(*matrix.Get()), kDataGroup + kEnd);
    ASSERT_EQ(matrix->Resize(1, 3), 0);
    matrix->Colours()(0, 0)[0] = 0.5;
    matrix->Colours()(0, 1)[0] = 1.5;
    matrix->Colours()(0, 2)[0] = 2.0;
    EXPECT_EQ(Payload(*matrix.Get()), kDataGroup + "I\x01\0\0\0"s + "I\x03\0\0\0"s +
                                          "L\x03\0\0\0\0\0\0\0"s + kHalf + kOneAndHalf + kTwo +
                                          kEnd);
}

TEST_F(Registered, TheSpectralModelWritesItsGridAndNoCountForAnEmptyOne) {
    TPlugRef<Testing::GridModel<Unpolarized>> model =
        new Testing::GridModel<Unpolarized>(Testing::Grid({400, 500}));
    const std::string kGridGroup = "G\x0B\0\0\0"s + "Wavelengths";
    const std::string kEquidistant = "B\x0B\0\0\0"s + "EquiDistant";
    EXPECT_EQ(Payload(*model.Get()), kGridGroup + "I\x02\0\0\0"s + "A\x02\0\0\0"s +
                                         "\0\0\0\0\0\0\x79\x40"s + "\0\0\0\0\0\x40\x7F\x40"s + "E" +
                                         kEquidistant + "\x01" + "Z");

    // A grid that failed to load is empty: the group is written bare, with no count of 0.
    BinarySerializer damaged(WithExtraDouble("Wavelengths", [](BinarySerializer& a) {
        std::int32_t n = 0;
        a.Serialize(n);
    }));
    EXPECT_NE(model->ObjType()->SerializeInstance(model.Get(), damaged), 0);
    ASSERT_EQ(model->NWaves(), 0);
    EXPECT_EQ(Payload(*model.Get()), kGridGroup + "E" + kEquidistant + "\x01" + "Z");
}

// A group that still holds a record when it is closed fails the archive, and every holder type
// answers that failure as its own result.
TEST_F(Registered, SerializeInstanceAnswersTheCloseOfItsGroup) {
    const auto one = [](BinarySerializer& a) {
        double v = 0.5;
        a.Serialize(v);
    };
    TPlugRef<ColorHold<LgtColor<BWU>>> grey = new ColorHold<LgtColor<BWU>>();
    BinarySerializer colour(WithExtraDouble("Color", one));
    EXPECT_NE(grey->ObjType()->SerializeInstance(grey.Get(), colour), 0);
    EXPECT_TRUE(colour.Failed());

    TPlugRef<ArrayLgtColorHold<BWU>> array = new ArrayLgtColorHold<BWU>();
    BinarySerializer arrayArchive(WithExtraDouble("Data", [](BinarySerializer& a) {
        std::int32_t n = 1;
        a.Serialize(n);
        double v = 0.5;
        a.Serialize(v);
    }));
    EXPECT_NE(array->ObjType()->SerializeInstance(array.Get(), arrayArchive), 0);
    EXPECT_TRUE(arrayArchive.Failed());

    TPlugRef<MatrixLgtColorHold<BWU>> matrix = new MatrixLgtColorHold<BWU>();
    BinarySerializer matrixArchive(WithExtraDouble("Data", [](BinarySerializer& a) {
        std::int32_t rows = 1, cols = 1;
        std::int64_t count = 1;
        a.Serialize(rows);
        a.Serialize(cols);
        a.Serialize(count);
        double v = 0.5;
        a.Serialize(v);
    }));
    EXPECT_NE(matrix->ObjType()->SerializeInstance(matrix.Get(), matrixArchive), 0);
    EXPECT_TRUE(matrixArchive.Failed());
}
