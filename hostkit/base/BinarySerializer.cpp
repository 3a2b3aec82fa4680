#include "hostkit/base/BinarySerializer.h"

#include "hostkit/base/ArchiveBytes.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>

namespace Korvane {
namespace {

constexpr char kMagic[8] = {'\x89', 'K', 'V', 'A', '\r', '\n', '\x1A', '\n'};
constexpr std::size_t kVersionAt = 8, kLengthAt = 12, kCrcAt = 20;

constexpr char kGroup = 'G', kGroupEnd = 'E', kDouble = 'D', kInt32 = 'I', kInt64 = 'L',
               kDoubles = 'A', kBool = 'B', kString = 'S', kEnd = 'Z';

// The record of `tag` as a noun phrase for messages.
std::string RecordName(char tag) {
    switch (tag) {
    case kGroup:
        return "a group";
    case kGroupEnd:
        return "the end of a group";
    case kDouble:
        return "a double";
    case kInt32:
        return "an int32";
    case kInt64:
        return "an int64";
    case kDoubles:
        return "an array of doubles";
    case kBool:
        return "a named bool";
    case kString:
        return "a string";
    case kEnd:
        return "the end record";
    default:
        break;
    }
    char text[48];
    std::snprintf(text, sizeof text, "an unknown record type 0x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(tag)));
    return text;
}

std::uint64_t LoadLE(const char* p, int bytes) {
    std::uint64_t v = 0;
    for (int i = bytes - 1; i >= 0; --i)
        v = (v << 8) | static_cast<unsigned char>(p[i]);
    return v;
}

void StoreLE(char* p, std::uint64_t v, int bytes) {
    for (int i = 0; i < bytes; ++i, v >>= 8)
        p[i] = static_cast<char>(v & 0xFFu);
}

std::uint64_t BitsOf(double v) {
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    return bits;
}

double DoubleOf(std::uint64_t bits) {
    double v;
    std::memcpy(&v, &bits, sizeof v);
    return v;
}

std::string Hex32(std::uint32_t v) {
    char text[16];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(v));
    return text;
}

} // namespace

BinarySerializer::BinarySerializer() : reading_(false) {
    Append(kMagic, sizeof kMagic);
    char rest[kHeaderSize - sizeof kMagic] = {};
    StoreLE(rest, kVersion, 4);
    Append(rest, sizeof rest); // length and checksum are filled in by Finish
}

BinarySerializer::BinarySerializer(std::string bytes) : bytes_(std::move(bytes)), reading_(true) {
    CheckHeader();
}

bool BinarySerializer::Recognises(const std::string& bytes) {
    return bytes.size() >= sizeof kMagic &&
           bytes.compare(0, sizeof kMagic, kMagic, sizeof kMagic) == 0;
}

void BinarySerializer::CheckHeader() {
    const std::size_t size = bytes_.size();
    if (bytes_.compare(0, sizeof kMagic, kMagic, std::min(size, sizeof kMagic)) != 0) {
        Fail("binary archive: wrong magic at byte offset 0 (not a binary archive)");
        return;
    }
    if (size < kHeaderSize) {
        Fail("binary archive: truncated header (" + std::to_string(size) + " of " +
             std::to_string(kHeaderSize) + " bytes)");
        return;
    }
    const std::uint64_t version = LoadLE(&bytes_[kVersionAt], 4);
    if (version != kVersion) {
        Fail("binary archive: unsupported version " + std::to_string(version) + " at byte offset " +
             std::to_string(kVersionAt) + " (this reader knows version " +
             std::to_string(kVersion) + ")");
        return;
    }
    const std::uint64_t length = LoadLE(&bytes_[kLengthAt], 8);
    if (length != size - kHeaderSize) {
        Fail("binary archive: the header (byte offset " + std::to_string(kLengthAt) +
             ") announces " + std::to_string(length) + " bytes of records, the archive holds " +
             std::to_string(size - kHeaderSize) + " (truncated or damaged)");
        return;
    }
    const auto stored = static_cast<std::uint32_t>(LoadLE(&bytes_[kCrcAt], 4));
    const std::uint32_t actual = ArchiveBytes::Crc32(bytes_.data() + kHeaderSize, length);
    if (stored != actual)
        Fail("binary archive: checksum mismatch (the header at byte offset " +
             std::to_string(kCrcAt) + " says " + Hex32(stored) + ", the records give " +
             Hex32(actual) + "): the archive is damaged");
}

// ---- writing ----

void BinarySerializer::Append(const char* data, std::size_t size) {
    try {
        bytes_.append(data, size);
    } catch (const std::bad_alloc&) {
        Fail("binary archive: out of memory while writing");
    }
}

void BinarySerializer::PutTag(char tag) {
    if (finished_)
        Fail("binary archive: " + RecordName(tag) + " was written after Finish");
    if (!Failed())
        Append(&tag, 1);
}

void BinarySerializer::PutU32(std::uint32_t v) {
    char p[4];
    StoreLE(p, v, 4);
    if (!Failed())
        Append(p, 4);
}

void BinarySerializer::PutU64(std::uint64_t v) {
    char p[8];
    StoreLE(p, v, 8);
    if (!Failed())
        Append(p, 8);
}

void BinarySerializer::PutText(const std::string& text) {
    if (text.size() > 0xFFFFFFFFu) {
        Fail("binary archive: a name or string of " + std::to_string(text.size()) +
             " bytes is too long");
        return;
    }
    PutU32(static_cast<std::uint32_t>(text.size()));
    if (!Failed())
        Append(text.data(), text.size());
}

// ---- reading ----

std::string BinarySerializer::At() const {
    return " at byte offset " + std::to_string(pos_);
}

bool BinarySerializer::Expect(char tag) {
    if (Failed())
        return false;
    if (pos_ >= bytes_.size()) {
        Fail("binary archive: expected " + RecordName(tag) + At() + ", found the end of the input");
        return false;
    }
    if (bytes_[pos_] != tag) {
        Fail("binary archive: expected " + RecordName(tag) + At() + ", found " +
             (groups_.empty() || bytes_[pos_] != kGroupEnd
                  ? RecordName(bytes_[pos_])
                  : "the end of group \"" + groups_.back() + "\""));
        return false;
    }
    ++pos_;
    return true;
}

bool BinarySerializer::Need(std::size_t size, const char* what) {
    if (bytes_.size() - pos_ >= size)
        return true;
    Fail(std::string("binary archive: truncated ") + what + At() + " (needs " +
         std::to_string(size) + " bytes, " + std::to_string(bytes_.size() - pos_) + " left)");
    return false;
}

std::uint32_t BinarySerializer::GetU32() {
    const auto v = static_cast<std::uint32_t>(LoadLE(&bytes_[pos_], 4));
    pos_ += 4;
    return v;
}

std::uint64_t BinarySerializer::GetU64() {
    const std::uint64_t v = LoadLE(&bytes_[pos_], 8);
    pos_ += 8;
    return v;
}

bool BinarySerializer::GetText(std::string& text, const char* what) {
    if (!Need(4, what))
        return false;
    const std::uint32_t size = GetU32();
    if (!Need(size, what))
        return false;
    try {
        text.assign(bytes_, pos_, size); // bounded by the input, checked just above
    } catch (const std::bad_alloc&) {
        SetAllocError();
        return false;
    }
    pos_ += size;
    return true;
}

bool BinarySerializer::AtGroupEnd() const {
    return !groups_.empty() && pos_ < bytes_.size() && bytes_[pos_] == kGroupEnd;
}

// ---- exchanges ----

int BinarySerializer::OpenGroup(const char* name) {
    const std::string wanted = name ? name : "";
    if (!reading_) {
        PutTag(kGroup);
        PutText(wanted);
    } else {
        const std::size_t at = pos_;
        std::string found;
        if (Expect(kGroup) && GetText(found, "group name") && found != wanted)
            Fail("binary archive: group \"" + found + "\" at byte offset " + std::to_string(at) +
                 " where group \"" + wanted + "\" was expected");
    }
    if (Failed())
        return -1;
    groups_.push_back(wanted);
    return 0;
}

int BinarySerializer::CloseGroup() {
    if (Failed())
        return -1;
    if (groups_.empty()) {
        Fail(std::string("binary archive: CloseGroup without an open group") +
             (reading_ ? At() : std::string()));
        return -1;
    }
    if (!reading_) {
        PutTag(kGroupEnd);
    } else if (pos_ < bytes_.size() && bytes_[pos_] != kGroupEnd) {
        Fail("binary archive: group \"" + groups_.back() + "\" is closed" + At() + " while " +
             RecordName(bytes_[pos_]) + " of it is still unread");
    } else {
        Expect(kGroupEnd);
    }
    if (Failed())
        return -1;
    groups_.pop_back();
    return 0;
}

void BinarySerializer::Serialize(double& v) {
    if (!reading_) {
        PutTag(kDouble);
        PutU64(BitsOf(v));
    } else if (Expect(kDouble) && Need(8, "double")) {
        v = DoubleOf(GetU64());
    }
}

void BinarySerializer::Serialize(std::int32_t& v) {
    if (!reading_) {
        PutTag(kInt32);
        PutU32(static_cast<std::uint32_t>(v));
    } else if (!Failed() && AtGroupEnd()) {
        v = 0; // a count that the writer left out
    } else if (Expect(kInt32) && Need(4, "int32")) {
        v = static_cast<std::int32_t>(GetU32());
    }
}

void BinarySerializer::Serialize(std::int64_t& v) {
    if (!reading_) {
        PutTag(kInt64);
        PutU64(static_cast<std::uint64_t>(v));
    } else if (!Failed() && AtGroupEnd()) {
        v = 0; // a count that the writer left out
    } else if (Expect(kInt64) && Need(8, "int64")) {
        v = static_cast<std::int64_t>(GetU64());
    }
}

void BinarySerializer::Serialize(double* values, int n) {
    if (Failed() || n == 0)
        return;
    if (n < 0) {
        Fail("binary archive: an array of " + std::to_string(n) + " doubles" +
             (reading_ ? At() : std::string()));
        return;
    }
    const auto count = static_cast<std::size_t>(n);
    if (!reading_) {
        PutTag(kDoubles);
        PutU32(static_cast<std::uint32_t>(n));
        for (std::size_t i = 0; i < count && !Failed(); ++i)
            PutU64(BitsOf(values[i]));
        return;
    }
    const std::size_t at = pos_;
    if (!Expect(kDoubles) || !Need(4, "array length"))
        return;
    const std::uint32_t stored = GetU32();
    if (stored != count) {
        Fail("binary archive: an array of " + std::to_string(stored) + " doubles at byte offset " +
             std::to_string(at) + " where " + std::to_string(n) + " were expected");
        return;
    }
    if (!Need(8 * count, "array of doubles")) // count < 2^31, so no overflow
        return;
    for (std::size_t i = 0; i < count; ++i)
        values[i] = DoubleOf(GetU64());
}

void BinarySerializer::Serialize(const char* name, bool& flag, bool defaultValue) {
    const std::string wanted = name ? name : "";
    if (!reading_) {
        PutTag(kBool);
        PutText(wanted);
        const char value = flag ? 1 : 0;
        if (!Failed())
            Append(&value, 1);
        return;
    }
    if (Failed())
        return;
    // Look at the next record; anything but a bool of this name means the archive lacks it.
    const std::size_t at = pos_;
    std::string found;
    if (pos_ >= bytes_.size() || bytes_[pos_] != kBool) {
        flag = defaultValue;
        return;
    }
    ++pos_;
    if (!GetText(found, "bool name"))
        return;
    if (found != wanted) {
        pos_ = at;
        flag = defaultValue;
        return;
    }
    if (!Need(1, "bool value"))
        return;
    const auto value = static_cast<unsigned char>(bytes_[pos_]);
    if (value > 1) {
        Fail("binary archive: bool \"" + wanted + "\"" + At() + " holds " + std::to_string(value) +
             ", not 0 or 1");
        return;
    }
    ++pos_;
    flag = value == 1;
}

void BinarySerializer::Serialize(std::string& text) {
    if (!reading_) {
        PutTag(kString);
        PutText(text);
        return;
    }
    std::string read;
    if (Expect(kString) && GetText(read, "string"))
        text.swap(read);
}

bool BinarySerializer::CanHold(std::int64_t elements, int valuesPerElement) {
    if (!reading_)
        return true;
    if (Failed())
        return false;
    const auto left = static_cast<std::int64_t>(bytes_.size() - pos_);
    if (elements < 0)
        Fail("binary archive: a negative count (" + std::to_string(elements) +
             ") before byte "
             "offset " +
             std::to_string(pos_));
    else if (!FitsIn(elements, valuesPerElement, left, 8))
        Fail("binary archive: a count of " + std::to_string(elements) + " elements of " +
             std::to_string(valuesPerElement) + " doubles before byte offset " +
             std::to_string(pos_) + " is more than the " + std::to_string(left) +
             " bytes left can hold");
    return !Failed();
}

int BinarySerializer::Finish() {
    if (Failed())
        return -1;
    if (!groups_.empty()) {
        Fail("binary archive: group \"" + groups_.back() + "\" is never closed" +
             (reading_ ? At() : std::string()));
        return -1;
    }
    if (reading_) {
        if (Expect(kEnd) && pos_ != bytes_.size())
            Fail("binary archive: " + std::to_string(bytes_.size() - pos_) +
                 " bytes follow the end record" + At());
        return Failed() ? -1 : 0;
    }
    if (finished_)
        return 0;
    PutTag(kEnd);
    if (Failed())
        return -1;
    finished_ = true;
    const std::size_t length = bytes_.size() - kHeaderSize;
    StoreLE(&bytes_[kLengthAt], length, 8);
    StoreLE(&bytes_[kCrcAt], ArchiveBytes::Crc32(bytes_.data() + kHeaderSize, length), 4);
    return 0;
}

} // namespace Korvane
