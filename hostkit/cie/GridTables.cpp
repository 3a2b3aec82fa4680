#include "hostkit/cie/GridTables.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/cie/Matrix3Ops.h"

#include <cmath>
#include <new>

namespace Korvane::Cie {
namespace {

// The two integrands at one wavelength inside 360..830 nm: cmf and D65 cmf.
struct Integrand {
    double light[3];
    double refl[3];
};

Integrand IntegrandAt(const CmfTable& cmf, double lambda) {
    Integrand f{};
    CmfAt(cmf, lambda, f.light);
    const double d65 = D65At(lambda);
    for (int c = 0; c < 3; ++c)
        f.refl[c] = d65 * f.light[c];
    return f;
}

// Where the integrals of one grid interval go: the rows of its left and right samples. For the
// box of a one-point grid only `left` is used and its weight is 1 across the box.
struct Rows {
    double* leftLight;
    double* leftRefl;
    double* rightLight;
    double* rightRefl;
};

// Adds the integrals of hat * f over [a, b] (clipped to the range of the tables, where f is not
// zero) to the rows: the falling hat (b - l) / (b - a) to the left rows, the rising one to the
// right rows. Simpson's rule on each piece between 1 nm samples is exact for these integrands.
void AddInterval(const CmfTable& cmf, double a, double b, bool box, const Rows& rows) {
    const double lo = a > kCmfFirst ? a : kCmfFirst;
    const double hi = b < kCmfLast ? b : kCmfLast;
    if (!(lo < hi))
        return;
    const double span = b - a;
    double p = lo;
    Integrand fp = IntegrandAt(cmf, p);
    while (p < hi) {
        double q = std::floor(p) + 1.0;
        if (q > hi)
            q = hi;
        const double mid = 0.5 * (p + q);
        const Integrand fm = IntegrandAt(cmf, mid);
        const Integrand fq = IntegrandAt(cmf, q);
        const double h6 = (q - p) / 6.0;
        const double fall[3] = {box ? 1.0 : (b - p) / span, box ? 1.0 : (b - mid) / span,
                                box ? 1.0 : (b - q) / span};
        for (int c = 0; c < 3; ++c) {
            rows.leftLight[c] +=
                h6 * (fall[0] * fp.light[c] + 4.0 * fall[1] * fm.light[c] + fall[2] * fq.light[c]);
            rows.leftRefl[c] +=
                h6 * (fall[0] * fp.refl[c] + 4.0 * fall[1] * fm.refl[c] + fall[2] * fq.refl[c]);
        }
        if (!box) {
            const double rise[3] = {(p - a) / span, (mid - a) / span, (q - a) / span};
            for (int c = 0; c < 3; ++c) {
                rows.rightLight[c] += h6 * (rise[0] * fp.light[c] + 4.0 * rise[1] * fm.light[c] +
                                            rise[2] * fq.light[c]);
                rows.rightRefl[c] +=
                    h6 * (rise[0] * fp.refl[c] + 4.0 * rise[1] * fm.refl[c] + rise[2] * fq.refl[c]);
            }
        }
        p = q;
        fp = fq;
    }
}

void FillWeights(const CmfTable& cmf, const double* w, int n, double* light, double* refl) {
    if (n == 1) {
        AddInterval(cmf, w[0] - 0.5, w[0] + 0.5, true, {light, refl, nullptr, nullptr});
        return;
    }
    for (int i = 0; i + 1 < n; ++i)
        AddInterval(
            cmf, w[i], w[i + 1], false,
            {light + kRow * i, refl + kRow * i, light + kRow * (i + 1), refl + kRow * (i + 1)});
}

bool IsValidGrid(const double* w, int n) {
    if (n < 1)
        return false;
    for (int i = 0; i < n; ++i)
        if (!std::isfinite(w[i]) || (i > 0 && !(w[i] > w[i - 1])))
            return false;
    return true;
}

// Plane k, sample i: sum_c basis_c(i) inv[c][k], so that sum_k plane_k rgb_k samples
// sum_c a_c B_c with a = inv . rgb; scaled per sample by `scale` (D65 for lights, 1 for
// reflectances).
void FillReconstruction(const TMatrix3& inv, const double* basis, const double* scale, int n,
                        double* planes) {
    for (int k = 0; k < 3; ++k)
        for (int i = 0; i < n; ++i)
            planes[k * n + i] = scale[i] * (basis[i] * inv.m[0][k] + basis[n + i] * inv.m[1][k] +
                                            basis[2 * n + i] * inv.m[2][k]);
}

bool Solvable(const TMatrix3& a, TMatrix3& inv) {
    return ReciprocalCondition(a) >= kMinReciprocalCondition && Invert(a, inv);
}

} // namespace

GridTables* BuildGridTables(const double* waves, int n, const CmfTable& cmf,
                            const TMatrix3& xyz2rgb, GridStatus& status) {
    if (!IsValidGrid(waves, n)) {
        status = GridStatus::BadGrid;
        return nullptr;
    }
    const auto un = static_cast<std::size_t>(n);
    // Each of the three allocations may fail (and may be made to fail by the fault sweeps).
    auto refused = [] { return FaultInjection::ShouldFail(FaultInjection::ConverterTables); };
    std::unique_ptr<GridTables> t(refused() ? nullptr : new (std::nothrow) GridTables);
    double* block = t && !refused()
                        ? new (std::nothrow) double[GridTablesBytes(n) / sizeof(double)]()
                        : nullptr;
    // Scratch: a row of ones, the basis sampled on the grid, and the basis times D65.
    std::unique_ptr<double[]> scratch(block && !refused() ? new (std::nothrow) double[un * 8]
                                                          : nullptr);
    if (!scratch) {
        delete[] block;
        status = GridStatus::NoMemory;
        return nullptr;
    }
    t->storage.reset(block);
    t->n = n;
    double* grid = block;
    double* light = grid + n;
    double* refl = light + kRow * n;
    double* reconRefl = refl + kRow * n;
    double* reconLight = reconRefl + kRow * n;
    for (int i = 0; i < n; ++i)
        grid[i] = waves[i];
    FillWeights(cmf, grid, n, light, refl);
    t->waves = grid;
    t->light = light;
    t->reflectance = refl;
    t->reconReflectance = reconRefl;
    t->reconLight = reconLight;

    // The normalisations are the sums of the weights, taken by the same sums that convert a
    // spectrum, so that a flat 1 gives Y = 1 and RGB (1, 1, 1) exactly.
    double* ones = scratch.get();
    double* basis = ones + n;
    double* d65 = basis + 3 * n;
    double* lightBasis = d65 + n;
    double acc[kRow];
    for (int i = 0; i < n; ++i)
        ones[i] = 1.0;
    SumRows(ones, light, n, acc);
    t->lightY = acc[1];
    SumRows(ones, refl, n, acc);
    t->reflectanceY = acc[1];
    TVect3<double> whiteXYZ;
    if (ReflectanceXYZ(*t, ones, whiteXYZ))
        t->whiteRGB = xyz2rgb * whiteXYZ;

    for (int i = 0; i < n; ++i) {
        double b[3];
        BasisAt(grid[i], b);
        d65[i] = D65At(grid[i]);
        for (int c = 0; c < 3; ++c) {
            basis[c * n + i] = b[c];
            lightBasis[c * n + i] = d65[i] * b[c];
        }
    }
    // Column c of A is the colour of basis spectrum c on this grid.
    TMatrix3 a{}, inv{};
    bool seen = true;
    for (int c = 0; c < 3; ++c) {
        TVect3<double> col;
        seen = seen && ReflectanceRGB(*t, xyz2rgb, basis + c * n, col);
        for (int r = 0; r < 3 && seen; ++r)
            a.m[r][c] = col[r];
    }
    if (seen && Solvable(a, inv)) {
        FillReconstruction(inv, basis, ones, n, reconRefl);
        t->reflectanceInvertible = true;
    }
    for (int c = 0; c < 3; ++c) {
        const TVect3<double> col = xyz2rgb * LightXYZ(*t, lightBasis + c * n);
        for (int r = 0; r < 3; ++r)
            a.m[r][c] = col[r];
    }
    if (Solvable(a, inv)) {
        FillReconstruction(inv, basis, d65, n, reconLight);
        t->lightInvertible = true;
    }
    status = GridStatus::Ok;
    return t.release();
}

} // namespace Korvane::Cie
