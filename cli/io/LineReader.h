// LineReader: lines of a stream, at most kMaxLineLength bytes each, with the UTF-8 byte-order
// mark of the first line and a CR before each LF removed. Internal to the spectrum readers.
#pragma once

#include "cli/io/SpectrumReader.h"

#include <istream>
#include <string>
#include <string_view>

namespace Korvane::SpectrumIO {

class LineReader {
public:
    LineReader(std::istream& in, const std::string& file, ReadError& error)
        : in_(in), file_(file), error_(error) {}
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // The next line into `line`: true; false at the end of the input or on an error (Failed()).
    bool Next(std::string& line);
    bool Failed() const { return failed_; }
    long LineNumber() const { return number_; }

    // Records an error at `column` (1-based; 0 for the whole line) of the current line.
    bool Fail(long column, const std::string& message);
    // The same at an earlier line (1-based), for an error found only after reading ahead.
    bool FailAt(long line, long column, const std::string& message);

private:
    bool Fill(); // more input into buf_; false at the end

    std::istream& in_;
    std::string buf_; // read ahead; [pos_, buf_.size()) not yet consumed
    std::size_t pos_ = 0;
    const std::string& file_;
    ReadError& error_;
    long number_ = 0;
    bool failed_ = false;
};

// Splits helpers shared by both formats.
bool IsBlank(const std::string& s);
// A finite double taking the whole of `text`; false otherwise.
bool ParseFinite(std::string_view text, double& value);
// Shortest round-trip text of a double.
std::string Shortest(double v);
// Text for messages: at most 40 bytes of `s`, quoted.
std::string Quote(const std::string& s);

} // namespace Korvane::SpectrumIO
