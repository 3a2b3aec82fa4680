// Hostile input: truncated, flipped, resealed and hand-made damage must leave either archive
// failed with a message that says what and where, never crash, and never allocate for a count
// that the input cannot back.
#include "SerializerTestSupport.h"

#include <gtest/gtest.h>

using namespace Korvane;
using namespace Korvane::SerializerTest;

namespace {

// Reads `bytes` as a Sample; returns the archive's error (empty when it read cleanly).
template <class Format>
std::string ReadSample(const std::string& bytes) {
    typename Format::Archive reader(bytes);
    Sample s;
    s.Clear();
    s.Exchange(reader);
    reader.Finish();
    return reader.Failed() ? reader.Error() : std::string();
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
class SerializerDamage : public testing::Test {};
using Formats = testing::Types<BinaryFormat, TextFormat>;
TYPED_TEST_SUITE(SerializerDamage, Formats);

TYPED_TEST(SerializerDamage, TruncationAnywhereFails) {
    const std::string whole = Written<TypeParam>();
    for (std::size_t cut = 0; cut < whole.size(); ++cut)
        EXPECT_NE(ReadSample<TypeParam>(whole.substr(0, cut)), "") << "cut at " << cut;
}

TYPED_TEST(SerializerDamage, EveryFlippedByteFails) {
    const std::string whole = Written<TypeParam>();
    for (const int pattern : {0x01, 0x20, 0x80, 0xFF})
        for (std::size_t i = 0; i < whole.size(); ++i) {
            const std::string bytes = Flipped(whole, i, pattern);
            EXPECT_NE(ReadSample<TypeParam>(bytes), "") << "byte " << i << " ^ " << +pattern;
        }
}

// With the checksum made right again, the damage reaches the record parser: it must never crash
// (the sanitizer build watches), and a failure must always come with a message.
TEST(BinaryArchiveDamage, ResealedDamageReachesTheParserSafely) {
    const std::string whole = Written<BinaryFormat>();
    for (std::size_t cut = BinarySerializer::kHeaderSize; cut < whole.size(); ++cut)
        EXPECT_NE(ReadSample<BinaryFormat>(BinaryFormat::Reseal(whole.substr(0, cut))), "")
            << "cut at " << cut;
    for (const int pattern : {0x01, 0x40, 0x80, 0xFF})
        for (std::size_t i = BinarySerializer::kHeaderSize; i < whole.size(); ++i) {
            const std::string bytes = Flipped(whole, i, pattern);
            ReadSample<BinaryFormat>(BinaryFormat::Reseal(bytes)); // fails or reads other values
        }
}

TEST(TextArchiveDamage, ResealedDamageReachesTheParserSafely) {
    const std::string body = TextFormat::WithoutChecksum(Written<TextFormat>());
    for (std::size_t cut = body.find('\n') + 1; cut < body.size(); ++cut) {
        const std::string error = ReadSample<TextFormat>(TextFormat::Reseal(body.substr(0, cut)));
        if (body[cut - 1] == '\n') { // whole lines missing: always noticed
            EXPECT_NE(error, "") << "cut at " << cut;
        }
    }
    for (const int pattern : {0x01, 0x20, 0x80})
        for (std::size_t i = 0; i < body.size(); ++i) {
            const std::string bytes = Flipped(body, i, pattern);
            ReadSample<TextFormat>(TextFormat::Reseal(bytes));
        }
}

TYPED_TEST(SerializerDamage, AbsurdCountsFailBeforeAnyAllocation) {
    typename TypeParam::Archive writer;
    std::int32_t huge = std::numeric_limits<std::int32_t>::max(), negative = -3;
    std::int64_t twoTo31 = std::int64_t{1} << 31;
    writer.Serialize(huge);
    writer.Serialize(negative);
    writer.Serialize(twoTo31);
    ASSERT_EQ(writer.Finish(), 0);
    const std::string bytes = TypeParam::Bytes(writer);

    typename TypeParam::Archive hugeReader(bytes);
    std::int32_t n = 0;
    hugeReader.SerializeCount(n, 1);
    EXPECT_EQ(n, 0);
    EXPECT_TRUE(Contains(hugeReader.Error(), "count of 2147483647")) << hugeReader.Error();

    typename TypeParam::Archive negativeReader(bytes);
    std::int32_t skip = 0;
    negativeReader.Serialize(skip);
    negativeReader.SerializeCount(n, 4);
    EXPECT_EQ(n, 0);
    EXPECT_TRUE(Contains(negativeReader.Error(), "negative count (-3)")) << negativeReader.Error();

    typename TypeParam::Archive wideReader(bytes);
    std::int64_t wide = 0;
    wideReader.Serialize(skip);
    wideReader.Serialize(skip);
    wideReader.Serialize(wide);
    EXPECT_EQ(wide, twoTo31);
    EXPECT_FALSE(wideReader.CanHold(wide, 16));
    EXPECT_TRUE(Contains(wideReader.Error(), "count of 2147483648 elements of 16"))
        << wideReader.Error();
}

TYPED_TEST(SerializerDamage, MismatchesAreNamedWithTheirPlace) {
    const std::string bytes = Written<TypeParam>();
    const std::string where = std::is_same_v<TypeParam, BinaryFormat> ? "byte offset" : "line";

    typename TypeParam::Archive wrongGroup(bytes);
    std::string ident;
    wrongGroup.Serialize(ident);
    EXPECT_EQ(wrongGroup.OpenGroup("Wavelengths"), -1);
    EXPECT_TRUE(Contains(wrongGroup.Error(), "\"Scalars\"")) << wrongGroup.Error();
    EXPECT_TRUE(Contains(wrongGroup.Error(), "\"Wavelengths\"")) << wrongGroup.Error();
    EXPECT_TRUE(Contains(wrongGroup.Error(), where)) << wrongGroup.Error();

    typename TypeParam::Archive wrongType(bytes);
    std::int32_t i = 9;
    wrongType.Serialize(i); // a string comes first
    EXPECT_EQ(i, 9);
    EXPECT_TRUE(Contains(wrongType.Error(), "int32")) << wrongType.Error();
    EXPECT_TRUE(Contains(wrongType.Error(), where)) << wrongType.Error();

    typename TypeParam::Archive earlyClose(bytes);
    earlyClose.Serialize(ident);
    earlyClose.OpenGroup("Scalars");
    EXPECT_EQ(earlyClose.CloseGroup(), -1);
    EXPECT_TRUE(Contains(earlyClose.Error(), "still unread")) << earlyClose.Error();

    typename TypeParam::Archive unread(bytes);
    unread.Serialize(ident);
    EXPECT_EQ(unread.Finish(), -1);
    EXPECT_NE(unread.Error(), "");
}

TYPED_TEST(SerializerDamage, AFailedArchiveLeavesValuesAlone) {
    typename TypeParam::Archive reader(std::string("not an archive at all"));
    ASSERT_TRUE(reader.Failed());
    double d = 2.5;
    std::int32_t count = 8;
    bool flag = true;
    std::string text = "kept";
    double array[2] = {1, 2};
    EXPECT_EQ(reader.OpenGroup("X"), -1);
    reader.Serialize(d);
    reader.Serialize("Flag", flag, false);
    reader.Serialize(text);
    reader.Serialize(array, 2);
    EXPECT_EQ(reader.CloseGroup(), -1);
    EXPECT_EQ(d, 2.5);
    EXPECT_TRUE(flag);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(array[1], 2.0);
    reader.SerializeCount(count, 1);
    EXPECT_EQ(count, 0);
    EXPECT_FALSE(reader.CanHold(0, 1));
}

TYPED_TEST(SerializerDamage, UnbalancedWritingIsRefused) {
    typename TypeParam::Archive open;
    open.OpenGroup("Never closed");
    EXPECT_EQ(open.Finish(), -1);
    EXPECT_TRUE(Contains(open.Error(), "never closed")) << open.Error();

    typename TypeParam::Archive closed;
    EXPECT_EQ(closed.CloseGroup(), -1);
    EXPECT_TRUE(Contains(closed.Error(), "without an open group")) << closed.Error();
}

TEST(BinaryArchiveDamage, WrongVersionIsNamed) {
    std::string bytes = Written<BinaryFormat>();
    bytes[8] = 2;
    BinarySerializer reader(bytes);
    EXPECT_TRUE(Contains(reader.Error(), "unsupported version 2")) << reader.Error();
}

// Hand-made text lines inside a valid frame: each must fail on its own line.
TEST(TextArchiveDamage, GarbageLinesFailWithTheirLineNumber) {
    struct Case {
        const char* line;
        void (*read)(Serializer&);
    };
    const Case cases[] = {
        {"double 1.5x",
         [](Serializer& s) {
             double v;
             s.Serialize(v);
         }},
        {"double nan",
         [](Serializer& s) {
             double v;
             s.Serialize(v);
         }},
        {"double nan:0x3FF0000000000000",
         [](Serializer& s) {
             double v;
             s.Serialize(v);
         }},
        {"double  1",
         [](Serializer& s) {
             double v;
             s.Serialize(v);
         }},
        {"int32 2147483648",
         [](Serializer& s) {
             std::int32_t v;
             s.Serialize(v);
         }},
        {"int64 12 ",
         [](Serializer& s) {
             std::int64_t v;
             s.Serialize(v);
         }},
        {"doubles 2\n  1\nint32 3",
         [](Serializer& s) {
             double v[2];
             s.Serialize(v, 2);
         }},
        {"doubles 3\n  1\n  2",
         [](Serializer& s) {
             double v[2];
             s.Serialize(v, 2);
         }},
        {"bool \"Flag\" maybe",
         [](Serializer& s) {
             bool b;
             s.Serialize("Flag", b, false);
         }},
        {"string \"open",
         [](Serializer& s) {
             std::string t;
             s.Serialize(t);
         }},
        {"string \"bad \\q escape\"",
         [](Serializer& s) {
             std::string t;
             s.Serialize(t);
         }},
        {"group Unquoted", [](Serializer& s) { s.OpenGroup("Unquoted"); }},
        {"\x01\xFF garbage",
         [](Serializer& s) {
             double v;
             s.Serialize(v);
         }},
    };
    for (const Case& c : cases) {
        TextSerializer reader(
            TextFormat::Reseal(std::string("korvane-archive text 1\n") + c.line + "\n"));
        ASSERT_FALSE(reader.Failed()) << reader.Error();
        c.read(reader);
        reader.Finish();
        EXPECT_TRUE(Contains(reader.Error(), "text archive, line "))
            << c.line << ": " << reader.Error();
    }
}
