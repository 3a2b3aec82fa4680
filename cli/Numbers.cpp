#include "cli/Numbers.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Korvane::Cli {

std::string Shortest(double v) {
    char buf[32];
    const auto r = std::to_chars(buf, buf + sizeof buf, v);
    return std::string(buf, r.ptr);
}

std::string Digits(double v, int digits) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*g", digits, v == 0.0 ? 0.0 : v);
    return buf;
}

double ZeroBelowLastDigit(double v, double reference, int digits) {
    if (!std::isfinite(reference) || reference == 0.0)
        return v;
    // The exponent %g prints `reference` with: that of %e at the same digits, after rounding.
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*e", digits - 1, std::abs(reference));
    const int exponent = std::atoi(std::strchr(buf, 'e') + 1);
    return std::abs(v) < 0.5 * std::pow(10.0, exponent - digits + 1) ? 0.0 : v;
}

std::string PadLeft(const std::string& s, std::size_t width) {
    return s.size() >= width ? s : std::string(width - s.size(), ' ') + s;
}

} // namespace Korvane::Cli
