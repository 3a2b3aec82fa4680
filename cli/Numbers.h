// How the tool writes numbers: shortest round-trip text in CSV and JSON (nothing cut), a chosen
// number of significant digits in aligned tables.
#pragma once

#include <string>

namespace Korvane::Cli {

// std::to_chars: the shortest text that reads back as the same double.
std::string Shortest(double v);
// printf %.*g with `digits` significant digits; 0 for -0.
std::string Digits(double v, int digits);
// `v`, or 0 when its magnitude is below half a unit of the last of `digits` significant digits
// printed for `reference`: in a table of quantities that share a unit (L*, a*, b*), what
// rounding leaves of a zero (a* = -5.6e-14 beside L* = 100) reads as the 0 it is.
double ZeroBelowLastDigit(double v, double reference, int digits);
// Text padded on the left to `width`.
std::string PadLeft(const std::string& s, std::size_t width);

} // namespace Korvane::Cli
