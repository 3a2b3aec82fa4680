#include "cli/Numbers.h"

#include <charconv>
#include <cstdio>

namespace Korvane::Cli {

std::string Shortest(double v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string Digits(double v, int digits) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*g", digits, v);
    return buf;
}

std::string PadLeft(const std::string& s, std::size_t width) {
    return s.size() >= width ? s : std::string(width - s.size(), ' ') + s;
}

} // namespace Korvane::Cli
