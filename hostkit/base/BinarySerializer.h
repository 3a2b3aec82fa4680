// BinarySerializer: the compact archive. Each record is a one-byte tag and its payload in
// little-endian byte order; a double is stored as its IEEE-754 bit pattern, so it reads back bit
// for bit (NaN payloads, infinities, -0.0 and denormals included).
//
// Layout: a 24-byte header (magic "\x89KVA\r\n\x1A\n", version u32, payload length u64, CRC-32 of
// the payload u32), then the records, the last of which is the end record. Records:
//   'G' group       u32 name length, name bytes     'E' group end (no payload)
//   'D' double      8 bytes                         'I' int32 (4 bytes)   'L' int64 (8 bytes)
//   'A' doubles     u32 count, 8 bytes each         'S' string: u32 length, bytes
//   'B' named bool  u32 name length, name, 1 byte (0 or 1)
//   'Z' end of the archive
// A reader checks magic, version, length and checksum before it reads a record, so truncation and
// damaged bytes fail at once; the tags then let it name a record that does not match what the
// reading routine asks for. Error messages give the byte offset of the record in question.
#pragma once

#include "hostkit/base/Serializer.h"

#include <cstddef>
#include <vector>

namespace Korvane {

class KOR_HOST_API BinarySerializer final : public Serializer {
public:
    static constexpr std::uint32_t kVersion = 1;
    static constexpr std::size_t kHeaderSize = 24;

    // A writer: records go to Bytes(), which Finish() completes.
    BinarySerializer();
    // A reader of `bytes`; it is failed from the start when the header or checksum is wrong.
    explicit BinarySerializer(std::string bytes);

    // Whether `bytes` begins with this archive's magic.
    static bool Recognises(const std::string& bytes);

    bool IsReading() const override { return reading_; }
    int OpenGroup(const char* name) override;
    int CloseGroup() override;
    void Serialize(double& v) override;
    void Serialize(std::int32_t& v) override;
    void Serialize(std::int64_t& v) override;
    void Serialize(double* values, int n) override;
    void Serialize(const char* name, bool& flag, bool defaultValue) override;
    void Serialize(std::string& text) override;
    bool CanHold(std::int64_t elements, int valuesPerElement) override;

protected:
    std::int64_t BytesLeft() const override {
        return reading_ ? static_cast<std::int64_t>(bytes_.size() - pos_) : -1;
    }

public:
    // Writing: appends the end record and seals the header (length, checksum). Reading: checks
    // that every group was closed and nothing but the end record is left. 0, or -1 (failed).
    int Finish();
    // The archive (complete once a writer has finished).
    const std::string& Bytes() const { return bytes_; }

private:
    // Writing.
    void PutTag(char tag);
    void PutU32(std::uint32_t v);
    void PutU64(std::uint64_t v);
    void PutText(const std::string& text);
    void Append(const char* data, std::size_t size);

    // Reading; each returns false after failing with a message that names the offset.
    void CheckHeader();
    bool Expect(char tag);
    bool Need(std::size_t size, const char* what);
    bool GetText(std::string& text, const char* what);
    std::uint32_t GetU32();
    std::uint64_t GetU64();
    bool AtGroupEnd() const;
    std::string At() const;

    std::string bytes_;
    std::size_t pos_ = kHeaderSize; // reading: next unread byte
    std::vector<std::string> groups_;
    bool reading_;
    bool finished_ = false;
};

} // namespace Korvane
