// How the tool writes numbers: shortest round-trip text in CSV and JSON (nothing cut), a chosen
// number of significant digits in aligned tables.
#pragma once

#include <string>

namespace Korvane::Cli {

// std::to_chars: the shortest text that reads back as the same double.
std::string Shortest(double v);
// printf %.*g with `digits` significant digits.
std::string Digits(double v, int digits);
// Text padded on the left to `width`.
std::string PadLeft(const std::string& s, std::size_t width);

} // namespace Korvane::Cli
