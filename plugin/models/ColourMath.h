// Small conversions shared by the models: xyY <-> XYZ and the max-magnitude normalization of a
// triple. Every test of a value against 0 is exact.
//
//   xyY -> XYZ:  f = 1/y (1.0 when y is exactly 0), X = x Y f, Z = f Y - X - Y, Y kept
//   XYZ -> xyY:  g = 1/(X+Y+Z) (1.0 when the sum is exactly 0), (x, y, Y) = (X g, Y g, Y)
//
// A y of 0 is deliberately read as 1 rather than refused: the conversions never fail.
#pragma once

#include "hostkit/base/Vectors.h"

#include <cmath>

namespace Korvane::ColourMath {

inline TVect3<double> XYYToXYZ(const TVect3<double>& xyY) {
    const double f = xyY.y == 0.0 ? 1.0 : 1.0 / xyY.y;
    const double X = xyY.x * xyY.z * f;
    return {X, xyY.z, f * xyY.z - X - xyY.z};
}

inline TVect3<double> XYZToXYY(const TVect3<double>& xyz) {
    const double s = xyz.x + xyz.y + xyz.z;
    const double g = s == 0.0 ? 1.0 : 1.0 / s;
    return {xyz.x * g, xyz.y * g, xyz.y};
}

// Every negative component becomes 0.
inline TVect3<double> ClampNegative(TVect3<double> v) {
    for (int i = 0; i < 3; ++i)
        if (v[i] < 0.0)
            v[i] = 0.0;
    return v;
}

// Divides the triple by a = max(|v0|, |v1|, |v2|); when a is exactly 0 the triple becomes
// (1, 1, 1). Returns a.
inline double NormalizeMaxMagnitude(TVect3<double>& v) {
    double a = std::fabs(v.x);
    if (std::fabs(v.y) > a)
        a = std::fabs(v.y);
    if (std::fabs(v.z) > a)
        a = std::fabs(v.z);
    if (a == 0.0) {
        v = TVect3<double>(1.0, 1.0, 1.0);
    } else {
        v.x /= a;
        v.y /= a;
        v.z /= a;
    }
    return a;
}

} // namespace Korvane::ColourMath
