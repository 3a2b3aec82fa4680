#include "cli/io/LineReader.h"

#include <charconv>
#include <cmath>

namespace Korvane::SpectrumIO {

std::string ReadError::Text() const {
    std::string t = file;
    if (line > 0)
        t += ":" + std::to_string(line);
    if (column > 0)
        t += ":" + std::to_string(column);
    return t + ": " + message;
}

bool LineReader::Fill() {
    constexpr std::size_t kChunk = 1 << 16;
    buf_.erase(0, pos_);
    pos_ = 0;
    const std::size_t old = buf_.size();
    buf_.resize(old + kChunk);
    const std::streamsize got =
        in_.rdbuf()->sgetn(&buf_[old], static_cast<std::streamsize>(kChunk));
    buf_.resize(old + static_cast<std::size_t>(got > 0 ? got : 0));
    return got > 0;
}

bool LineReader::Next(std::string& line) {
    line.clear();
    if (failed_)
        return false;
    std::size_t scanned = pos_; // no line end in [pos_, scanned)
    for (;;) {
        const std::size_t eol = buf_.find('\n', scanned);
        if (eol != std::string::npos && eol - pos_ <= kMaxLineLength) {
            line.assign(buf_, pos_, eol - pos_);
            pos_ = eol + 1;
            break;
        }
        if (buf_.size() - pos_ > kMaxLineLength) {
            ++number_;
            return Fail(0, "line longer than " + std::to_string(kMaxLineLength) + " bytes");
        }
        scanned = buf_.size();
        const std::size_t offset = scanned - pos_;
        if (!Fill()) {
            if (buf_.size() == pos_)
                return false;
            line.assign(buf_, pos_, std::string::npos); // last line without a line end
            pos_ = buf_.size();
            break;
        }
        scanned = pos_ + offset;
    }
    ++number_;
    if (number_ == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0)
        line.erase(0, 3);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return true;
}

bool LineReader::Fail(long column, const std::string& message) {
    return FailAt(number_, column, message);
}

bool LineReader::FailAt(long line, long column, const std::string& message) {
    failed_ = true;
    error_.file = file_;
    error_.line = line;
    error_.column = column;
    error_.message = message;
    return false;
}

bool IsBlank(const std::string& s) {
    for (char c : s)
        if (c != ' ' && c != '\t')
            return false;
    return true;
}

bool ParseFinite(std::string_view text, double& value) {
    const char* first = text.data();
    const char* last = first + text.size();
    if (first != last && *first == '+')
        ++first;
    const auto r = std::from_chars(first, last, value);
    return r.ec == std::errc() && r.ptr == last && std::isfinite(value);
}

std::string Shortest(double v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string Quote(const std::string& s) {
    if (s.size() <= 40)
        return "'" + s + "'";
    return "'" + s.substr(0, 40) + "...'";
}

} // namespace Korvane::SpectrumIO
