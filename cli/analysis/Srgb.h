// The sRGB encoding of IEC 61966-2-1: the piecewise transfer curve and the #rrggbb form.
#pragma once

#include "cli/analysis/Types.h"

#include <string>

namespace Korvane::Analysis {

// 12.92 v for v <= 0.0031308, else 1.055 v^(1/2.4) - 0.055; negatives mirrored.
double SrgbEncode(double linear);
// The inverse: v / 12.92 for v <= 0.04045, else ((v + 0.055) / 1.055)^2.4; negatives mirrored.
double SrgbDecode(double encoded);

struct EncodedSrgb {
    Vec3 value;      // encoded, each clipped to 0..1
    bool clipped;    // some linear channel was below 0 or above 1 (or not finite)
    std::string hex; // "#rrggbb" of the clipped value, each channel round(255 v)
};

EncodedSrgb EncodeSrgb(const Vec3& linear);

} // namespace Korvane::Analysis
