// Round trips through both archives: every exchanged type bit for bit, named bools with their
// defaults, counts that an empty holder leaves out, and the layout of each format.
#include "SerializerTestSupport.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Korvane::SerializerTest;

template <class Format>
class SerializerRoundTrip : public testing::Test {};
using Formats = testing::Types<BinaryFormat, TextFormat>;
TYPED_TEST_SUITE(SerializerRoundTrip, Formats);

TYPED_TEST(SerializerRoundTrip, EveryExchangedTypeReadsBackBitForBit) {
    const Sample written;
    typename TypeParam::Archive reader(Written<TypeParam>());
    Sample read;
    read.Clear();
    read.Exchange(reader);
    ASSERT_EQ(reader.Finish(), 0) << reader.Error();

    EXPECT_EQ(read.ident, written.ident);
    ASSERT_EQ(read.scalars.size(), written.scalars.size());
    for (std::size_t i = 0; i < read.scalars.size(); ++i)
        EXPECT_EQ(Bits(read.scalars[i]), Bits(written.scalars[i])) << "scalar " << i;
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(read.i32[i], written.i32[i]);
        EXPECT_EQ(read.i64[i], written.i64[i]);
    }
    ASSERT_EQ(read.samples.size(), written.samples.size());
    for (std::size_t i = 0; i < read.samples.size(); ++i)
        EXPECT_EQ(Bits(read.samples[i]), Bits(written.samples[i])) << "sample " << i;
    EXPECT_TRUE(read.emptyHolder.empty());
    EXPECT_TRUE(read.flag);
}

TYPED_TEST(SerializerRoundTrip, NamedBoolTakesItsDefaultWhenAbsent) {
    typename TypeParam::Archive writer;
    bool a = true;
    writer.OpenGroup("G");
    writer.Serialize("A", a, false);
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);

    typename TypeParam::Archive reader(TypeParam::Bytes(writer));
    bool missing = false, other = true, found = false;
    reader.OpenGroup("G");
    reader.Serialize("Missing", missing, true); // another bool comes next: absent
    reader.Serialize("A", found, false);
    reader.Serialize("Other", other, false); // the group ends next: absent
    EXPECT_EQ(reader.CloseGroup(), 0);
    EXPECT_EQ(reader.Finish(), 0) << reader.Error();
    EXPECT_TRUE(missing);
    EXPECT_TRUE(found);
    EXPECT_FALSE(other);
}

TYPED_TEST(SerializerRoundTrip, CountsLeftOutOfAnEmptyGroupReadAsZero) {
    typename TypeParam::Archive writer;
    writer.OpenGroup("Data"); // an empty matrix holder: no rows, columns or element count
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);

    typename TypeParam::Archive reader(TypeParam::Bytes(writer));
    std::int32_t rows = 5, columns = 5;
    std::int64_t elements = 5;
    reader.OpenGroup("Data");
    reader.SerializeCount(rows, 16);
    reader.Serialize(columns);
    reader.Serialize(elements);
    EXPECT_EQ(reader.CloseGroup(), 0);
    EXPECT_EQ(reader.Finish(), 0) << reader.Error();
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(columns, 0);
    EXPECT_EQ(elements, 0);
}

TYPED_TEST(SerializerRoundTrip, OnlyIntegersMayBeMissingAndOnlyAtAGroupEnd) {
    typename TypeParam::Archive writer;
    writer.OpenGroup("Data");
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);
    const std::string bytes = TypeParam::Bytes(writer);

    typename TypeParam::Archive doubleReader(bytes);
    double v = 1.5;
    doubleReader.OpenGroup("Data");
    doubleReader.Serialize(v);
    EXPECT_TRUE(doubleReader.Failed());
    EXPECT_NE(doubleReader.Error().find("end of group \"Data\""), std::string::npos)
        << doubleReader.Error();
    EXPECT_EQ(v, 1.5);

    typename TypeParam::Archive topLevel(bytes); // outside a group the count is not optional
    std::int32_t n = 3;
    topLevel.Serialize(n);
    EXPECT_TRUE(topLevel.Failed());
}

TEST(BinaryArchive, StoresLittleEndianTaggedRecords) {
    BinarySerializer writer;
    double one = 1.0;
    std::int32_t minusTwo = -2;
    writer.Serialize(one);
    writer.Serialize(minusTwo);
    ASSERT_EQ(writer.Finish(), 0);
    const std::string& b = writer.Bytes();
    const std::string records("D\0\0\0\0\0\0\xF0\x3F"
                              "I\xFE\xFF\xFF\xFF"
                              "Z",
                              15);
    ASSERT_EQ(b.size(), BinarySerializer::kHeaderSize + records.size());
    EXPECT_EQ(b.substr(0, 8), std::string("\x89KVA\r\n\x1A\n", 8));
    EXPECT_EQ(b.substr(8, 4), std::string("\x01\0\0\0", 4));          // version 1
    EXPECT_EQ(b.substr(12, 8), std::string("\x0F\0\0\0\0\0\0\0", 8)); // 15 bytes of records
    EXPECT_EQ(b.substr(BinarySerializer::kHeaderSize), records);
}

TEST(TextArchive, WritesOneIndentedRecordPerLine) {
    TextSerializer writer;
    double values[3] = {0.1, -0.0, -std::numeric_limits<double>::infinity()};
    double nan = FromBits(0xFFF8000000000001u);
    std::int64_t big = std::numeric_limits<std::int64_t>::min();
    bool flag = true;
    std::string ident = "A\"b";
    writer.Serialize(ident);
    writer.OpenGroup("Outer");
    writer.OpenGroup("Inner");
    writer.Serialize(values, 3);
    writer.Serialize(nan);
    writer.CloseGroup();
    writer.Serialize(big);
    writer.Serialize("EquiDistant", flag, false);
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);
    const std::string body = "korvane-archive text 1\n"
                             "string \"A\\\"b\"\n"
                             "group \"Outer\"\n"
                             "  group \"Inner\"\n"
                             "    doubles 3\n"
                             "      0.1\n"
                             "      -0\n"
                             "      -inf\n"
                             "    double nan:0xFFF8000000000001\n"
                             "  endgroup \"Inner\"\n"
                             "  int64 -9223372036854775808\n"
                             "  bool \"EquiDistant\" true\n"
                             "endgroup \"Outer\"\n";
    EXPECT_EQ(writer.Text(), TextFormat::Reseal(body));
}
