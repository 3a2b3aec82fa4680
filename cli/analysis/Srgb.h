// The sRGB encoding of IEC 61966-2-1: the piecewise transfer curve and the #rrggbb form.
#pragma once

#include "cli/analysis/Types.h"

#include <string>

namespace Korvane::Analysis {

// 12.92 v for v <= 0.0031308, else 1.055 v^(1/2.4) - 0.055; negatives mirrored. Exact at 0 and 1.
double SrgbEncode(double linear);
// The inverse: v / 12.92 for v <= 0.04045, else ((v + 0.055) / 1.055)^2.4; negatives mirrored.
double SrgbDecode(double encoded);

// How far a linear channel may lie outside 0..1 and still count as in range: what the rounding of
// a matrix product leaves of an exact 0 or 1 (some 1e-16 relative) is not clipping.
inline constexpr double kSrgbClipTolerance = 1e-9;

struct EncodedSrgb {
    Vec3 value;      // encoded, each clipped to 0..1
    bool clipped;    // some linear channel was more than kSrgbClipTolerance below 0 or above 1,
                     // or not finite
    std::string hex; // "#rrggbb" of the clipped value, each channel round(255 v)
};

EncodedSrgb EncodeSrgb(const Vec3& linear);

} // namespace Korvane::Analysis
