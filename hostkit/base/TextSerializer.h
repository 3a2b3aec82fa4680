// TextSerializer: the readable archive. One record per line, indented two spaces per open group,
// so two archives of similar objects diff line by line:
//
//   korvane-archive text 1
//   string "SpectralModel"
//   group "Wavelengths"
//     int32 3
//     doubles 3
//       400
//       nan:0x7FF8000000000001
//       -inf
//   endgroup "Wavelengths"
//   bool "EquiDistant" false
//   end crc32 0123abcd
//
// Finite doubles are written as the shortest decimal that reads back to the same bits
// (std::to_chars / std::from_chars, independent of the locale), -0 and inf/-inf as such, and a
// NaN as "nan:0x" and its 16-digit bit pattern, so payload and sign survive. Names and strings
// are quoted; '"', '\' and bytes outside printable ASCII are escaped (\" \\ \xHH). The last line
// carries the CRC-32 of everything before it: a reader checks it before reading a record, so a
// truncated or damaged archive fails at once (an edited archive must be written again).
// Error messages give the line number.
#pragma once

#include "hostkit/base/Serializer.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Korvane {

class KOR_HOST_API TextSerializer final : public Serializer {
public:
    static constexpr int kVersion = 1;

    // A writer: lines go to Text(), which Finish() completes.
    TextSerializer();
    // A reader of `text`; it is failed from the start when the first line, the last line or the
    // checksum is wrong.
    explicit TextSerializer(std::string text);

    // Whether `bytes` begins like a text archive.
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
        return reading_ ? static_cast<std::int64_t>(end_ - pos_) : -1;
    }

public:
    // Writing: appends the checksum line. Reading: checks that every group was closed and every
    // record read. 0, or -1 (failed).
    int Finish();
    // The archive (complete once a writer has finished).
    const std::string& Text() const { return text_; }

private:
    struct Line {
        std::string_view keyword; // empty at the end of the records
        std::string_view rest;    // after the single space that follows the keyword
        std::string_view whole;   // without indentation
    };

    // Writing.
    void PutLine(std::size_t depth, const std::string& content);

    // Both directions of an integer record.
    template <class Int>
    void ExchangeInt(Int& v, const char* keyword);

    // Reading.
    void CheckFrame();
    Line Peek() const;
    void Next();
    bool Expect(std::string_view keyword, std::string_view& rest);
    bool AtGroupEnd() const;
    void FailHere(const std::string& what);
    std::string Found(const Line& line) const;

    std::string text_;
    std::size_t pos_ = 0; // reading: start of the next line
    std::size_t end_ = 0; // reading: start of the checksum line
    long line_ = 1;       // reading: number of the next line
    std::vector<std::string> groups_;
    bool reading_;
    bool finished_ = false;
};

} // namespace Korvane
