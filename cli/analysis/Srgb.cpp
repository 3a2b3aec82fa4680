#include "cli/analysis/Srgb.h"

#include <cmath>
#include <cstdio>

namespace Korvane::Analysis {

double SrgbEncode(double v) {
    if (v < 0.0)
        return -SrgbEncode(-v);
    // 1.055 v^(1/2.4) - 0.055 written so that v = 1 gives exactly 1 (the direct form gives
    // 1 - 1.1e-16, which is not display white).
    return v <= 0.0031308 ? 12.92 * v : 1.0 + 1.055 * (std::pow(v, 1.0 / 2.4) - 1.0);
}

double SrgbDecode(double v) {
    if (v < 0.0)
        return -SrgbDecode(-v);
    return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
}

EncodedSrgb EncodeSrgb(const Vec3& linear) {
    EncodedSrgb out{{0.0, 0.0, 0.0}, false, ""};
    int bytes[3] = {0, 0, 0};
    for (std::size_t c = 0; c < 3; ++c) {
        double v = linear[c];
        if (!(v >= -kSrgbClipTolerance && v <= 1.0 + kSrgbClipTolerance))
            out.clipped = true;
        v = v > 1.0 ? 1.0 : v >= 0.0 ? v : 0.0; // NaN goes to 0
        out.value[c] = SrgbEncode(v);
        bytes[c] = static_cast<int>(std::lround(out.value[c] * 255.0));
    }
    char buf[8];
    std::snprintf(buf, sizeof buf, "#%02x%02x%02x", bytes[0], bytes[1], bytes[2]);
    out.hex = buf;
    return out;
}

} // namespace Korvane::Analysis
