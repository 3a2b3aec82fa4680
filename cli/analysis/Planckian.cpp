#include "cli/analysis/Planckian.h"

#include "cli/analysis/ObserverTables.h"

#include <cmath>
#include <vector>

namespace Korvane::Analysis {
namespace {

struct LocusPoint {
    double t, u, v;
};

Vec3 PlanckXYZ(double kelvin, const CmfColumns& cmf) {
    Vec3 xyz{0.0, 0.0, 0.0};
    for (int i = 0; i < kLocusCount; ++i) {
        const double p = Planck(kLocusFirstNm + static_cast<double>(i), kelvin);
        xyz[0] += p * cmf.xbar[i];
        xyz[1] += p * cmf.ybar[i];
        xyz[2] += p * cmf.zbar[i];
    }
    return xyz;
}

Vec2 UvOf(const Vec3& xyz) {
    const double d = xyz[0] + 15.0 * xyz[1] + 3.0 * xyz[2];
    return {4.0 * xyz[0] / d, 6.0 * xyz[1] / d};
}

// 0.1 % steps: 1.001^4608 > 100.
std::vector<LocusPoint> BuildTable(Observer observer) {
    const CmfColumns cmf = ObserverCmf(observer);
    std::vector<LocusPoint> table;
    for (double t = kCctMin; t <= kCctMax * 1.001; t *= 1.001) {
        const Vec2 uv = UvOf(PlanckXYZ(t, cmf));
        table.push_back({t, uv[0], uv[1]});
    }
    return table;
}

const std::vector<LocusPoint>& Table(Observer observer) {
    if (observer == Observer::CIE1964_10deg) {
        static const std::vector<LocusPoint> t10 = BuildTable(Observer::CIE1964_10deg);
        return t10;
    }
    static const std::vector<LocusPoint> t2 = BuildTable(Observer::CIE1931_2deg);
    return t2;
}

double Distance(const LocusPoint& p, const Vec2& uv) {
    return std::hypot(uv[0] - p.u, uv[1] - p.v);
}

double Distance2(const LocusPoint& p, const Vec2& uv) {
    const double du = uv[0] - p.u, dv = uv[1] - p.v;
    return du * du + dv * dv;
}

// Index of the table point nearest to uv: a coarse pass every 16 points, then the points around
// the best coarse one (the distance to a point within kMaxDuv of the locus has one minimum).
std::size_t Nearest(const std::vector<LocusPoint>& table, const Vec2& uv) {
    constexpr std::size_t kStride = 16;
    std::size_t best = 0;
    double bestD = Distance2(table[0], uv);
    for (std::size_t i = kStride; i < table.size(); i += kStride) {
        const double d = Distance2(table[i], uv);
        if (d < bestD) {
            bestD = d;
            best = i;
        }
    }
    const std::size_t lo = best > kStride ? best - kStride : 0;
    const std::size_t hi = std::min(table.size() - 1, best + kStride);
    for (std::size_t i = lo; i <= hi; ++i) {
        const double d = Distance2(table[i], uv);
        if (d < bestD) {
            bestD = d;
            best = i;
        }
    }
    return best;
}

} // namespace

double Planck(double nm, double kelvin) {
    const double m = nm * 1e-9;
    return kC1L / (m * m * m * m * m) / std::expm1(kC2 / (m * kelvin));
}

Vec2 PlanckianUv1960(double kelvin, Observer observer) {
    return UvOf(PlanckXYZ(kelvin, ObserverCmf(observer)));
}

Vec2 PlanckianXy(double kelvin, Observer observer) {
    const Vec3 xyz = PlanckXYZ(kelvin, ObserverCmf(observer));
    const double s = xyz[0] + xyz[1] + xyz[2];
    return {xyz[0] / s, xyz[1] / s};
}

std::optional<CctDuv> CctOhno2013(const Vec2& uv, Observer observer) {
    if (!std::isfinite(uv[0]) || !std::isfinite(uv[1]))
        return std::nullopt;
    const std::vector<LocusPoint>& table = Table(observer);
    const std::size_t m = Nearest(table, uv);
    if (m == 0 || m + 1 >= table.size())
        return std::nullopt;
    const LocusPoint& p0 = table[m - 1];
    const LocusPoint& p1 = table[m];
    const LocusPoint& p2 = table[m + 1];
    const double d0 = Distance(p0, uv), d1 = Distance(p1, uv), d2 = Distance(p2, uv);

    // Triangular solution.
    const double l = std::hypot(p2.u - p0.u, p2.v - p0.v);
    const double x = (d0 * d0 - d2 * d2 + l * l) / (2.0 * l);
    double cct = p0.t + (p2.t - p0.t) * (x / l);
    const double vx = p0.v + (p2.v - p0.v) * (x / l);
    double duv = std::sqrt(std::max(0.0, d0 * d0 - x * x)) * (uv[1] - vx >= 0.0 ? 1.0 : -1.0);

    if (std::abs(duv) >= 0.002) {
        // Parabolic solution through (T, d) of the three points.
        const double X = (p2.t - p1.t) * (p0.t - p2.t) * (p1.t - p0.t);
        const double a = (p0.t * (d2 - d1) + p1.t * (d0 - d2) + p2.t * (d1 - d0)) / X;
        const double b =
            -(p0.t * p0.t * (d2 - d1) + p1.t * p1.t * (d0 - d2) + p2.t * p2.t * (d1 - d0)) / X;
        const double c = -(d0 * (p2.t - p1.t) * p1.t * p2.t + d1 * (p0.t - p2.t) * p0.t * p2.t +
                           d2 * (p1.t - p0.t) * p0.t * p1.t) /
                         X;
        cct = -b / (2.0 * a);
        const Vec2 at = PlanckianUv1960(cct, observer);
        duv = (a * cct * cct + b * cct + c) * (uv[1] - at[1] >= 0.0 ? 1.0 : -1.0);
    }
    if (!std::isfinite(cct) || !std::isfinite(duv) || std::abs(duv) > kMaxDuv)
        return std::nullopt;
    return CctDuv{cct, duv};
}

} // namespace Korvane::Analysis
