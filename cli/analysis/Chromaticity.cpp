#include "cli/analysis/Chromaticity.h"

#include "cli/analysis/ObserverTables.h"

#include <cmath>
#include <limits>

namespace Korvane::Analysis {

Vec2 Xy(const Vec3& xyz) {
    const double s = xyz[0] + xyz[1] + xyz[2];
    if (s == 0.0)
        return {0.0, 0.0};
    return {xyz[0] / s, xyz[1] / s};
}

Vec2 Uv1960(const Vec3& xyz) {
    const double d = xyz[0] + 15.0 * xyz[1] + 3.0 * xyz[2];
    if (d == 0.0)
        return {0.0, 0.0};
    return {4.0 * xyz[0] / d, 6.0 * xyz[1] / d};
}

Vec2 UvPrime(const Vec3& xyz) {
    const double d = xyz[0] + 15.0 * xyz[1] + 3.0 * xyz[2];
    if (d == 0.0)
        return {0.0, 0.0};
    return {4.0 * xyz[0] / d, 9.0 * xyz[1] / d};
}

Vec2 UvPrimeFromXy(const Vec2& xy) {
    const double d = -2.0 * xy[0] + 12.0 * xy[1] + 3.0;
    if (d == 0.0)
        return {0.0, 0.0};
    return {4.0 * xy[0] / d, 9.0 * xy[1] / d};
}

Vec2 Uv1960FromXy(const Vec2& xy) {
    const Vec2 p = UvPrimeFromXy(xy);
    return {p[0], p[1] * 2.0 / 3.0};
}

namespace {

// Where the ray origin + t dir (t > 0) meets segment a..b: t and the segment parameter s in
// [0, 1]; false when it does not.
bool RayHitsSegment(const Vec2& origin, const Vec2& dir, const Vec2& a, const Vec2& b, double& t,
                    double& s) {
    const double ex = b[0] - a[0], ey = b[1] - a[1];
    const double det = dir[0] * (-ey) - dir[1] * (-ex);
    if (det == 0.0)
        return false;
    const double rx = a[0] - origin[0], ry = a[1] - origin[1];
    t = (rx * (-ey) - ry * (-ex)) / det;
    s = (dir[0] * ry - dir[1] * rx) / det;
    return t > 0.0 && s >= 0.0 && s <= 1.0;
}

struct Hit {
    double t = std::numeric_limits<double>::infinity();
    double nm = 0.0;
};

// The nearest crossing of the ray with the spectral locus (not the purple line).
Hit LocusHit(const std::vector<Vec2>& locus, const Vec2& origin, const Vec2& dir) {
    Hit best;
    for (std::size_t i = 0; i + 1 < locus.size(); ++i) {
        double t = 0.0, s = 0.0;
        if (RayHitsSegment(origin, dir, locus[i], locus[i + 1], t, s) && t < best.t) {
            best.t = t;
            best.nm = kLocusFirstNm + static_cast<double>(i) + s;
        }
    }
    return best;
}

} // namespace

std::optional<DominantWavelength> DominantWavelengthOf(const Vec2& xy, Observer observer) {
    const Vec2 white{1.0 / 3.0, 1.0 / 3.0};
    const Vec2 dir{xy[0] - white[0], xy[1] - white[1]};
    if (!std::isfinite(dir[0]) || !std::isfinite(dir[1]) || (dir[0] == 0.0 && dir[1] == 0.0))
        return std::nullopt;
    const std::vector<Vec2>& locus = SpectralLocusXy(observer);
    const Hit spectral = LocusHit(locus, white, dir);
    double purpleT = std::numeric_limits<double>::infinity(), s = 0.0;
    const bool purple = RayHitsSegment(white, dir, locus.back(), locus.front(), purpleT, s);
    if (!purple || spectral.t <= purpleT) {
        if (!std::isfinite(spectral.t))
            return std::nullopt;
        return DominantWavelength{spectral.nm, 1.0 / spectral.t};
    }
    const Hit complementary = LocusHit(locus, white, {-dir[0], -dir[1]});
    if (!std::isfinite(complementary.t))
        return std::nullopt;
    return DominantWavelength{-complementary.nm, 1.0 / purpleT};
}

} // namespace Korvane::Analysis
