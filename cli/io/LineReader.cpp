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

bool LineReader::Next(std::string& line) {
    line.clear();
    if (failed_)
        return false;
    std::streambuf* buf = in_.rdbuf();
    bool any = false;
    for (;;) {
        const int c = buf->sbumpc();
        if (c == std::char_traits<char>::eof())
            break;
        any = true;
        if (c == '\n')
            break;
        if (line.size() >= kMaxLineLength) {
            ++number_;
            return Fail(0, "line longer than " + std::to_string(kMaxLineLength) + " bytes");
        }
        line.push_back(static_cast<char>(c));
    }
    if (!any)
        return false;
    ++number_;
    if (number_ == 1 && line.compare(0, 3, "\xEF\xBB\xBF") == 0)
        line.erase(0, 3);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return true;
}

bool LineReader::Fail(long column, const std::string& message) {
    failed_ = true;
    error_.file = file_;
    error_.line = number_;
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

bool ParseFinite(const std::string& text, double& value) {
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
