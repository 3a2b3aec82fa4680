#include "cli/analysis/Cielab.h"

#include <cmath>

namespace Korvane::Analysis {
namespace {

double F(double t) {
    constexpr double d = 6.0 / 29.0;
    return t > d * d * d ? std::cbrt(t) : t / (3.0 * d * d) + 4.0 / 29.0;
}

} // namespace

Vec3 Lab(const Vec3& xyz, const Vec3& white) {
    const double fx = F(xyz[0] / white[0]), fy = F(xyz[1] / white[1]), fz = F(xyz[2] / white[2]);
    return {116.0 * fy - 16.0, 500.0 * (fx - fy), 200.0 * (fy - fz)};
}

} // namespace Korvane::Analysis
