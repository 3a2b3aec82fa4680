// The two archives: round trips of every exchanged type bit for bit, named bools and left-out
// counts, the layout of each format, and hostile input (truncated, flipped, resealed and
// hand-made damage) that must leave an archive failed with a message saying what and where,
// never crash (the sanitizer build watches), and never let through a count the input cannot back.
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

using namespace Korvane;

namespace {

// Body(): the archive without its seal; Reseal(body): sealed again; FirstRecord: where the
// records start in the body.
struct BinaryFormat {
    using Archive = BinarySerializer;
    static constexpr std::size_t kFirstRecord = BinarySerializer::kHeaderSize;
    static std::string Bytes(const BinarySerializer& s) { return s.Bytes(); }
    static std::string Body(const std::string& bytes) { return bytes; }
    static std::string Reseal(std::string b) {
        const std::uint64_t length = b.size() - kFirstRecord;
        const std::uint32_t crc = ArchiveBytes::Crc32(b.data() + kFirstRecord, length);
        for (std::size_t i = 0; i < 8; ++i)
            b[12 + i] = static_cast<char>((length >> (8 * i)) & 0xFF);
        for (std::size_t i = 0; i < 4; ++i)
            b[20 + i] = static_cast<char>((crc >> (8 * i)) & 0xFF);
        return b;
    }
};

struct TextFormat {
    using Archive = TextSerializer;
    static constexpr std::size_t kFirstRecord = 23; // after "korvane-archive text 1\n"
    static std::string Bytes(const TextSerializer& s) { return s.Text(); }
    static std::string Body(const std::string& text) {
        return text.substr(0, text.rfind('\n', text.size() - 2) + 1);
    }
    static std::string Reseal(const std::string& body) {
        char last[32];
        std::snprintf(last, sizeof last, "end crc32 %08x\n",
                      static_cast<unsigned>(ArchiveBytes::Crc32(body.data(), body.size())));
        return body + last;
    }
};

inline std::uint64_t Bits(double v) {
    std::uint64_t b;
    std::memcpy(&b, &v, sizeof b);
    return b;
}

inline double FromBits(std::uint64_t b) {
    double v;
    std::memcpy(&v, &b, sizeof v);
    return v;
}

// One object exchanging every kind of record, nested groups and an empty holder included.
struct Sample {
    using Lim = std::numeric_limits<double>;
    std::string ident = "Sample \"quoted\" \\ back\nslash \x01\xC3\xA9";
    // clang-format off
    std::vector<double> scalars = {0.1, -0.0, 0.0, Lim::infinity(), -Lim::infinity(),
        Lim::denorm_min(), -Lim::denorm_min() * 12345, Lim::min(), Lim::max(), 1.0 / 3.0,
        FromBits(0x7FF8000000000001u),  // quiet NaN with a payload
        FromBits(0xFFF4000000000ABCu)}; // signalling NaN pattern, sign set
    // clang-format on
    std::int32_t i32[3] = {INT32_MIN, -1, INT32_MAX};
    std::int64_t i64[3] = {INT64_MIN, 0, INT64_MAX};
    std::vector<double> samples = {400.0, 500.5, 1e-300, FromBits(0x7FF0000000000123u)};
    std::vector<double> emptyHolder;
    bool flag = true;

    // What a reader starts from: nothing of the written values.
    void Clear() {
        ident.clear();
        scalars.assign(scalars.size(), 42.0);
        i32[0] = i32[1] = i32[2] = 7;
        i64[0] = i64[1] = i64[2] = 7;
        samples.clear();
        flag = false;
    }

    void Exchange(Serializer& s) {
        s.Serialize(ident);
        s.OpenGroup("Scalars");
        for (double& v : scalars)
            s.Serialize(v);
        for (int i = 0; i < 3; ++i) {
            s.Serialize(i32[i]);
            s.Serialize(i64[i]);
        }
        s.CloseGroup();
        s.OpenGroup("Outer");
        ExchangeHolder(s, samples);
        ExchangeHolder(s, emptyHolder);
        s.Serialize("Flag", flag, false);
        s.CloseGroup();
    }

    // The holder idiom: the count is written only when non-zero, and always asked for.
    static void ExchangeHolder(Serializer& s, std::vector<double>& values) {
        s.OpenGroup("Data");
        std::int32_t n = static_cast<std::int32_t>(values.size());
        if (s.IsReading() || n != 0)
            s.SerializeCount(n, 1);
        if (s.IsReading())
            values.assign(static_cast<std::size_t>(n), 0.0);
        s.Serialize(values.data(), static_cast<int>(values.size()));
        s.CloseGroup();
    }
};

template <class Format>
std::string Written(Sample sample = Sample()) {
    typename Format::Archive writer;
    sample.Exchange(writer);
    writer.Finish();
    return Format::Bytes(writer);
}

// Reads `bytes` as a Sample; the archive's error, empty when it read cleanly.
template <class Format>
std::string ReadSample(const std::string& bytes, Sample* into = nullptr) {
    typename Format::Archive reader(bytes);
    Sample s;
    s.Clear();
    s.Exchange(reader);
    reader.Finish();
    if (into)
        *into = s;
    return reader.Error();
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string Flipped(std::string bytes, std::size_t at, int pattern) {
    bytes[at] = static_cast<char>(static_cast<unsigned char>(bytes[at]) ^ pattern);
    return bytes;
}

} // namespace

template <class Format>
class SerializerRoundTrip : public testing::Test {};
using Formats = testing::Types<BinaryFormat, TextFormat>;
TYPED_TEST_SUITE(SerializerRoundTrip, Formats);

TYPED_TEST(SerializerRoundTrip, EveryExchangedTypeReadsBackBitForBit) {
    const Sample w;
    Sample r;
    ASSERT_EQ(ReadSample<TypeParam>(Written<TypeParam>(), &r), "");
    EXPECT_EQ(r.ident, w.ident);
    ASSERT_EQ(r.scalars.size(), w.scalars.size());
    for (std::size_t i = 0; i < r.scalars.size(); ++i)
        EXPECT_EQ(Bits(r.scalars[i]), Bits(w.scalars[i])) << "scalar " << i;
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(r.i32[i] == w.i32[i] && r.i64[i] == w.i64[i]) << "integer " << i;
    ASSERT_EQ(r.samples.size(), w.samples.size());
    for (std::size_t i = 0; i < r.samples.size(); ++i)
        EXPECT_EQ(Bits(r.samples[i]), Bits(w.samples[i])) << "sample " << i;
    EXPECT_TRUE(r.emptyHolder.empty());
    EXPECT_TRUE(r.flag);
}

TYPED_TEST(SerializerRoundTrip, AbsentNamedBoolTakesItsDefault) {
    typename TypeParam::Archive writer;
    bool a = true;
    writer.OpenGroup("G");
    writer.Serialize("A", a, false);
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);

    typename TypeParam::Archive reader(TypeParam::Bytes(writer));
    bool missing = false, found = false, other = true;
    reader.OpenGroup("G");
    reader.Serialize("Missing", missing, true); // another bool comes next
    reader.Serialize("A", found, false);
    reader.Serialize("Other", other, false); // the group ends next
    reader.CloseGroup();
    EXPECT_EQ(reader.Finish(), 0) << reader.Error();
    EXPECT_TRUE(missing && found && !other);
}

// An empty matrix holder writes no rows, columns or element count; reading asks for all three.
// Only integers may be missing, and only where a group ends.
TYPED_TEST(SerializerRoundTrip, CountsLeftOutAtAGroupEndReadAsZero) {
    typename TypeParam::Archive writer;
    writer.OpenGroup("Data");
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);
    const std::string bytes = TypeParam::Bytes(writer);

    typename TypeParam::Archive reader(bytes);
    std::int32_t rows = 5, columns = 5;
    std::int64_t elements = 5;
    reader.OpenGroup("Data");
    reader.SerializeCount(rows, 16);
    reader.Serialize(columns);
    reader.Serialize(elements);
    reader.CloseGroup();
    EXPECT_EQ(reader.Finish(), 0) << reader.Error();
    EXPECT_TRUE(rows == 0 && columns == 0 && elements == 0);

    typename TypeParam::Archive doubleReader(bytes);
    double v = 1.5;
    doubleReader.OpenGroup("Data");
    doubleReader.Serialize(v);
    EXPECT_NE(doubleReader.Error().find("end of group \"Data\""), std::string::npos)
        << doubleReader.Error();
    EXPECT_EQ(v, 1.5);

    typename TypeParam::Archive topLevel(bytes);
    topLevel.Serialize(rows);
    EXPECT_TRUE(topLevel.Failed());
}

TEST(BinaryArchive, StoresLittleEndianTaggedRecords) {
    BinarySerializer writer;
    double one = 1.0;
    std::int32_t minusTwo = -2;
    writer.Serialize(one);
    writer.Serialize(minusTwo);
    ASSERT_EQ(writer.Finish(), 0);
    const std::string header("\x89KVA\r\n\x1A\n"
                             "\x01\0\0\0"          // version 1
                             "\x0F\0\0\0\0\0\0\0", // 15 bytes of records
                             20);
    const std::string records("D\0\0\0\0\0\0\xF0\x3F"
                              "I\xFE\xFF\xFF\xFF"
                              "Z",
                              15);
    EXPECT_EQ(writer.Bytes().substr(0, 20), header);
    EXPECT_EQ(writer.Bytes().substr(BinarySerializer::kHeaderSize), records);
}

TEST(TextArchive, WritesOneIndentedRecordPerLine) {
    TextSerializer writer;
    double values[3] = {0.1, -0.0, -std::numeric_limits<double>::infinity()};
    double nan = FromBits(0xFFF8000000000001u);
    bool flag = true;
    writer.OpenGroup("Outer");
    writer.OpenGroup("In \"quotes\"");
    writer.Serialize(values, 3);
    writer.CloseGroup();
    writer.Serialize(nan);
    writer.Serialize("EquiDistant", flag, false);
    writer.CloseGroup();
    ASSERT_EQ(writer.Finish(), 0);
    EXPECT_EQ(writer.Text(), TextFormat::Reseal("korvane-archive text 1\n"
                                                "group \"Outer\"\n"
                                                "  group \"In \\\"quotes\\\"\"\n"
                                                "    doubles 3\n"
                                                "      0.1\n"
                                                "      -0\n"
                                                "      -inf\n"
                                                "  endgroup \"In \\\"quotes\\\"\"\n"
                                                "  double nan:0xFFF8000000000001\n"
                                                "  bool \"EquiDistant\" true\n"
                                                "endgroup \"Outer\"\n"));
}

template <class Format>
class SerializerDamage : public testing::Test {};
TYPED_TEST_SUITE(SerializerDamage, Formats);

TYPED_TEST(SerializerDamage, TruncationOrAnyFlippedByteFails) {
    const std::string whole = Written<TypeParam>();
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        EXPECT_NE(ReadSample<TypeParam>(whole.substr(0, cut)), "") << "cut at " << cut;
    for (const int pattern : {0x01, 0x20, 0x80, 0xFF})
        for (std::size_t i = 0; i < whole.size(); ++i)
            EXPECT_NE(ReadSample<TypeParam>(Flipped(whole, i, pattern)), "")
                << "byte " << i << " ^ " << pattern;
}

// Resealed damage reaches the record parser. A binary archive cut anywhere, or a text archive
// cut after a whole line, must fail; flipped bytes may also just change a value.
TYPED_TEST(SerializerDamage, ResealedDamageReachesTheParserSafely) {
    const std::string body = TypeParam::Body(Written<TypeParam>());
    constexpr bool binary = std::is_same_v<TypeParam, BinaryFormat>;
    for (std::size_t cut = TypeParam::kFirstRecord; cut < body.size(); ++cut) {
        const std::string error = ReadSample<TypeParam>(TypeParam::Reseal(body.substr(0, cut)));
        if (binary || body[cut - 1] == '\n') {
            EXPECT_NE(error, "") << "cut at " << cut;
        }
    }
    for (const int pattern : {0x01, 0x20, 0x80, 0xFF})
        for (std::size_t i = TypeParam::kFirstRecord; i < body.size(); ++i)
            ReadSample<TypeParam>(TypeParam::Reseal(Flipped(body, i, pattern)));
}

TYPED_TEST(SerializerDamage, AbsurdCountsFailBeforeAnyAllocation) {
    typename TypeParam::Archive writer;
    std::int32_t huge = INT32_MAX, negative = -3;
    std::int64_t twoTo31 = std::int64_t{1} << 31;
    writer.Serialize(huge);
    writer.Serialize(negative);
    writer.Serialize(twoTo31);
    ASSERT_EQ(writer.Finish(), 0);

    typename TypeParam::Archive reader(TypeParam::Bytes(writer));
    std::int32_t n = 0;
    reader.SerializeCount(n, 1);
    EXPECT_EQ(n, 0);
    EXPECT_TRUE(Contains(reader.Error(), "count of 2147483647")) << reader.Error();

    typename TypeParam::Archive negativeReader(TypeParam::Bytes(writer));
    negativeReader.Serialize(n);
    negativeReader.SerializeCount(n, 4);
    EXPECT_EQ(n, 0);
    EXPECT_TRUE(Contains(negativeReader.Error(), "negative count (-3)")) << negativeReader.Error();

    typename TypeParam::Archive wideReader(TypeParam::Bytes(writer));
    std::int64_t wide = 0;
    wideReader.Serialize(n);
    wideReader.Serialize(n);
    wideReader.Serialize(wide);
    EXPECT_FALSE(wideReader.CanHold(wide, 16));
    EXPECT_TRUE(Contains(wideReader.Error(), "count of 2147483648 elements of 16"))
        << wideReader.Error();
}

TYPED_TEST(SerializerDamage, MismatchesAreNamedWithTheirPlace) {
    const std::string bytes = Written<TypeParam>();
    const std::string where = std::is_same_v<TypeParam, BinaryFormat> ? "byte offset " : "line ";
    std::string ident;

    typename TypeParam::Archive wrongGroup(bytes);
    wrongGroup.Serialize(ident);
    EXPECT_EQ(wrongGroup.OpenGroup("Wavelengths"), -1);
    const std::string& e = wrongGroup.Error();
    EXPECT_TRUE(Contains(e, "\"Scalars\"") && Contains(e, "\"Wavelengths\"") && Contains(e, where))
        << e;

    typename TypeParam::Archive wrongType(bytes);
    std::int32_t i = 9;
    wrongType.Serialize(i); // a string comes first
    EXPECT_EQ(i, 9);
    EXPECT_TRUE(Contains(wrongType.Error(), "int32") && Contains(wrongType.Error(), where))
        << wrongType.Error();

    typename TypeParam::Archive earlyClose(bytes);
    earlyClose.Serialize(ident);
    earlyClose.OpenGroup("Scalars");
    EXPECT_EQ(earlyClose.CloseGroup(), -1);
    EXPECT_TRUE(Contains(earlyClose.Error(), "still unread")) << earlyClose.Error();

    typename TypeParam::Archive unread(bytes);
    unread.Serialize(ident);
    EXPECT_EQ(unread.Finish(), -1);

    typename TypeParam::Archive openAtEnd;
    openAtEnd.OpenGroup("Open");
    EXPECT_EQ(openAtEnd.Finish(), -1);
    EXPECT_TRUE(Contains(openAtEnd.Error(), "never closed")) << openAtEnd.Error();
}

TYPED_TEST(SerializerDamage, AFailedArchiveLeavesValuesAlone) {
    typename TypeParam::Archive reader(std::string("not an archive at all"));
    ASSERT_TRUE(reader.Failed());
    double d = 2.5, array[2] = {1, 2};
    std::int32_t count = 8;
    bool flag = true;
    std::string text = "kept";
    EXPECT_EQ(reader.OpenGroup("X"), -1);
    reader.Serialize(d);
    reader.Serialize("Flag", flag, false);
    reader.Serialize(text);
    reader.Serialize(array, 2);
    EXPECT_EQ(reader.CloseGroup(), -1);
    EXPECT_TRUE(d == 2.5 && flag && text == "kept" && array[1] == 2.0);
    reader.SerializeCount(count, 1);
    EXPECT_EQ(count, 0);
}

TEST(BinaryArchiveDamage, WrongVersionIsNamed) {
    std::string bytes = Written<BinaryFormat>();
    bytes[8] = 2;
    BinarySerializer reader(bytes);
    EXPECT_TRUE(Contains(reader.Error(), "unsupported version 2")) << reader.Error();
}

// Hand-made lines inside a valid frame, each read as the record its keyword names, must fail
// and name their line.
TEST(TextArchiveDamage, GarbageLinesFailWithTheirLineNumber) {
    const char* const lines[] = {
        "double 1.5x",
        "double nan" /* a NaN must carry its bit pattern */,
        "double nan:0x3FF0000000000000",
        "double  1",
        "double \x01\xFF",
        "int32 2147483648",
        "int64 12 ",
        "doubles 2\n  1\nint32 3",
        "doubles 3\n  1\n  2",
        "bool \"Flag\" maybe",
        "string \"open",
        "string \"bad \\q escape\"",
        "group Unquoted",
        "\x01\xFF garbage",
    };
    for (const std::string line : lines) {
        TextSerializer reader(TextFormat::Reseal("korvane-archive text 1\n" + line + "\n"));
        double d[2];
        std::int32_t i32;
        std::int64_t i64;
        bool b;
        std::string text;
        const std::string keyword = line.substr(0, line.find(' '));
        if (keyword == "double")
            reader.Serialize(d[0]);
        else if (keyword == "doubles")
            reader.Serialize(d, 2);
        else if (keyword == "int32")
            reader.Serialize(i32);
        else if (keyword == "int64")
            reader.Serialize(i64);
        else if (keyword == "bool")
            reader.Serialize("Flag", b, false);
        else if (keyword == "group")
            reader.OpenGroup("Unquoted");
        else
            reader.Serialize(text);
        reader.Finish();
        EXPECT_TRUE(Contains(reader.Error(), "text archive, line "))
            << line << ": " << reader.Error();
    }
}
