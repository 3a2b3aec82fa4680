// Matrix3Ops: products, inverse and conditioning of 3x3 matrices (TMatrix3, row-major).
//
// The inverse is the adjugate divided by the determinant. The reciprocal condition number in the
// 2-norm, rcond(A) = sigma_min / sigma_max, is 0 for a singular matrix and 1 for a multiple of
// an orthogonal matrix; the singular values come from one-sided Jacobi rotations (Golub and Van
// Loan, Matrix Computations, 4th ed., sections 2.6 and 8.6.4), which find a singular value at
// rounding level (about 1e-16 sigma_max) when A is singular. An inverse through the adjugate
// cannot tell that: for a matrix of rank 1 its minors are rounding noise as well.
#pragma once

#include "hostkit/base/Vectors.h"

#include <cfloat>
#include <cmath>

namespace Korvane::Cie {

inline TMatrix3 Multiply(const TMatrix3& a, const TMatrix3& b) {
    TMatrix3 p{};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            p.m[r][c] = a.m[r][0] * b.m[0][c] + a.m[r][1] * b.m[1][c] + a.m[r][2] * b.m[2][c];
    return p;
}

// The inverse of a; false (inv untouched) when the determinant is 0 or not finite.
inline bool Invert(const TMatrix3& a, TMatrix3& inv) {
    const auto& m = a.m;
    const double c00 = m[1][1] * m[2][2] - m[1][2] * m[2][1];
    const double c01 = m[1][2] * m[2][0] - m[1][0] * m[2][2];
    const double c02 = m[1][0] * m[2][1] - m[1][1] * m[2][0];
    const double det = m[0][0] * c00 + m[0][1] * c01 + m[0][2] * c02;
    if (det == 0.0 || !std::isfinite(det))
        return false;
    const double f = 1.0 / det;
    inv.m[0][0] = c00 * f;
    inv.m[0][1] = (m[0][2] * m[2][1] - m[0][1] * m[2][2]) * f;
    inv.m[0][2] = (m[0][1] * m[1][2] - m[0][2] * m[1][1]) * f;
    inv.m[1][0] = c01 * f;
    inv.m[1][1] = (m[0][0] * m[2][2] - m[0][2] * m[2][0]) * f;
    inv.m[1][2] = (m[0][2] * m[1][0] - m[0][0] * m[1][2]) * f;
    inv.m[2][0] = c02 * f;
    inv.m[2][1] = (m[0][1] * m[2][0] - m[0][0] * m[2][1]) * f;
    inv.m[2][2] = (m[0][0] * m[1][1] - m[0][1] * m[1][0]) * f;
    return true;
}

// sigma_min / sigma_max of a; 0 when a is 0 or not finite.
inline double ReciprocalCondition(const TMatrix3& a) {
    double u[3][3];
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            u[r][c] = a.m[r][c];
    // Rotate pairs of columns until every pair is orthogonal to rounding; a pair counts as
    // orthogonal when |<u_p, u_q>| <= DBL_EPSILON |u_p| |u_q|, the usual stopping rule. Three
    // columns converge quadratically, in a handful of sweeps.
    constexpr int kMaxSweeps = 60;
    for (int sweep = 0; sweep < kMaxSweeps; ++sweep) {
        bool rotated = false;
        for (int p = 0; p < 2; ++p) {
            for (int q = p + 1; q < 3; ++q) {
                double alpha = 0.0, beta = 0.0, gamma = 0.0;
                for (int r = 0; r < 3; ++r) {
                    alpha += u[r][p] * u[r][p];
                    beta += u[r][q] * u[r][q];
                    gamma += u[r][p] * u[r][q];
                }
                if (!(std::fabs(gamma) > DBL_EPSILON * std::sqrt(alpha * beta)))
                    continue;
                rotated = true;
                const double zeta = (beta - alpha) / (2.0 * gamma);
                const double t =
                    (zeta >= 0.0 ? 1.0 : -1.0) / (std::fabs(zeta) + std::sqrt(1.0 + zeta * zeta));
                const double cs = 1.0 / std::sqrt(1.0 + t * t);
                const double sn = cs * t;
                for (int r = 0; r < 3; ++r) {
                    const double up = u[r][p];
                    const double uq = u[r][q];
                    u[r][p] = cs * up - sn * uq;
                    u[r][q] = sn * up + cs * uq;
                }
            }
        }
        if (!rotated)
            break;
    }
    double lo = HUGE_VAL, hi = 0.0;
    for (int c = 0; c < 3; ++c) {
        const double sigma = std::sqrt(u[0][c] * u[0][c] + u[1][c] * u[1][c] + u[2][c] * u[2][c]);
        lo = sigma < lo ? sigma : lo;
        hi = sigma > hi ? sigma : hi;
    }
    if (!(hi > 0.0) || !std::isfinite(hi) || !std::isfinite(lo))
        return 0.0;
    return lo / hi;
}

} // namespace Korvane::Cie
