// Test support for the archives: both formats behind one face, a routine that exchanges every
// kind of record, and resealing (a fresh checksum after deliberate damage, so that the record
// parser itself meets the damage).
#pragma once

#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"

#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

namespace Korvane::SerializerTest {

struct BinaryFormat {
    using Archive = BinarySerializer;
    static std::string Bytes(const BinarySerializer& s) { return s.Bytes(); }
    // New length and checksum for a damaged archive whose header is still whole.
    static std::string Reseal(std::string bytes) {
        if (bytes.size() < BinarySerializer::kHeaderSize)
            return bytes;
        const std::uint64_t length = bytes.size() - BinarySerializer::kHeaderSize;
        const std::uint32_t crc =
            ArchiveBytes::Crc32(bytes.data() + BinarySerializer::kHeaderSize, length);
        for (int i = 0; i < 8; ++i)
            bytes[12 + static_cast<std::size_t>(i)] = static_cast<char>((length >> (8 * i)) & 0xFF);
        for (int i = 0; i < 4; ++i)
            bytes[20 + static_cast<std::size_t>(i)] = static_cast<char>((crc >> (8 * i)) & 0xFF);
        return bytes;
    }
};

struct TextFormat {
    using Archive = TextSerializer;
    static std::string Bytes(const TextSerializer& s) { return s.Text(); }
    // Replaces the checksum line of `body` (the archive without it) by a fresh one.
    static std::string Reseal(std::string body) {
        char last[32];
        std::snprintf(last, sizeof last, "end crc32 %08x\n",
                      static_cast<unsigned>(ArchiveBytes::Crc32(body.data(), body.size())));
        return body + last;
    }
    static std::string WithoutChecksum(const std::string& text) {
        return text.substr(0, text.rfind('\n', text.size() - 2) + 1);
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
    std::string ident = "Sample \"quoted\" \\ back\nslash \x01\xC3\xA9";
    std::vector<double> scalars = {
        0.1,
        -0.0,
        0.0,
        std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::denorm_min(),
        -std::numeric_limits<double>::denorm_min() * 12345,
        std::numeric_limits<double>::min(),
        std::numeric_limits<double>::max(),
        1.0 / 3.0,
        FromBits(0x7FF8000000000001u), // quiet NaN with a payload
        FromBits(0xFFF4000000000ABCu), // signalling NaN pattern, sign set
    };
    std::int32_t i32[3] = {std::numeric_limits<std::int32_t>::min(), -1,
                           std::numeric_limits<std::int32_t>::max()};
    std::int64_t i64[3] = {std::numeric_limits<std::int64_t>::min(), 0,
                           std::numeric_limits<std::int64_t>::max()};
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
        for (std::int32_t& v : i32)
            s.Serialize(v);
        for (std::int64_t& v : i64)
            s.Serialize(v);
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

} // namespace Korvane::SerializerTest
