// GridTables: what a converter needs for one wavelength grid, computed once per grid.
//
// A spectrum sampled on the grid w_0 < ... < w_{n-1} is read as s(l) = sum_i s_i h_i(l), h_i the
// hat function of sample i (1 at w_i, 0 at the neighbouring samples, linear between, zero outside
// [w_0, w_{n-1}]); on a one-point grid h_0 is the box of 1 nm centred on w_0. Against a tabulated
// function f the integral is then sum_i s_i W_i with W_i = integral of h_i f. The tables are
// linear between their 1 nm samples, so between merged break points h_i cmf is quadratic and
// h_i D65 cmf cubic, and Simpson's rule on each such piece gives W_i exactly.
//
// Per sample the weights are rows of four channels (the fourth is 0, so that a weighted sum runs
// over whole rows and vectorises across channels): integral h_i (xbar, ybar, zbar) for lights,
// integral h_i D65 (xbar, ybar, zbar) for reflectances. The reconstructions (CIEConvAll.h) are
// three planes of n values, one per input channel: sample i of the spectrum of rgb is
// plane_r[i] r + plane_g[i] g + plane_b[i] b, a loop over i like any plain array loop.
#pragma once

#include "hostkit/base/Kernels.h"
#include "hostkit/base/Vectors.h"
#include "hostkit/cie/CieTables.h"

#include <memory>

namespace Korvane::Cie {

inline constexpr int kRow = 4; // doubles per table row

// A reconstruction matrix A whose reciprocal condition number sigma_min / sigma_max is below
// this floor is refused. Solving with A loses up to DBL_EPSILON / rcond(A) relative accuracy; the
// floor keeps that loss within FLT_EPSILON (2^-52 / 2^-23 = 2^-29), so a reconstructed colour is
// still right at single precision. Grids across the visible range give rcond near 1, a 50 nm band
// about 1e-8; a grid that sees fewer than three independent colours (one point, two points,
// nothing but 700..830 nm) gives rcond at rounding level, below 1e-16.
inline constexpr double kMinReciprocalCondition = 0x1p-29;

struct GridTables {
    int n = 0;
    const double* waves = nullptr;            // the grid, n values
    const double* light = nullptr;            // n rows
    const double* reflectance = nullptr;      // n rows
    const double* reconReflectance = nullptr; // 3 planes of n
    const double* reconLight = nullptr;       // 3 planes of n
    double lightY = 0.0;                      // integral of ybar over the grid's range
    double reflectanceY = 0.0;                // integral of D65 ybar over the grid's range
    TVect3<double> whiteRGB{0.0, 0.0, 0.0};   // M . XYZ of the perfect white reflector
    bool reflectanceInvertible = false;
    bool lightInvertible = false;
    std::unique_ptr<double[]> storage;
};

enum class GridStatus { Ok, BadGrid, NoMemory };

// Bytes of the tables of an n-point grid: the grid and four tables of n rows.
inline std::size_t GridTablesBytes(int n) {
    return static_cast<std::size_t>(n) * (1 + 4 * kRow) * sizeof(double);
}

// The tables for a grid (n >= 1, finite, strictly increasing), for the colour-matching functions
// `cmf` and the RGB space of M = `xyz2rgb`. Null with the status when the grid is not valid or
// memory runs out.
GridTables* BuildGridTables(const double* waves, int n, const CmfTable& cmf,
                            const TMatrix3& xyz2rgb, GridStatus& status);

// out[c] = sum_i s_i rows[i][c], each channel summed in index order.
inline void SumRows(const double* s, const double* rows, int n, double out[kRow]) {
    Kernels::SumRows4(s, 1, rows, n, out);
}

inline TVect3<double> LightXYZ(const GridTables& t, const double* s) {
    double acc[kRow];
    SumRows(s, t.light, t.n, acc);
    return {acc[0], acc[1], acc[2]};
}

// Reflectance under D65, normalised so that the perfect white reflector has Y = 1; false when
// the grid sees no light.
inline bool ReflectanceXYZ(const GridTables& t, const double* r, TVect3<double>& xyz) {
    if (t.reflectanceY == 0.0)
        return false;
    double acc[kRow];
    SumRows(r, t.reflectance, t.n, acc);
    xyz = {acc[0] / t.reflectanceY, acc[1] / t.reflectanceY, acc[2] / t.reflectanceY};
    return true;
}

// M . ReflectanceXYZ, channel by channel divided by the white's; false when the grid sees no
// light or a channel of the white is 0.
inline bool ReflectanceRGB(const GridTables& t, const TMatrix3& xyz2rgb, const double* r,
                           TVect3<double>& rgb) {
    TVect3<double> xyz;
    if (!ReflectanceXYZ(t, r, xyz) || t.whiteRGB.x == 0.0 || t.whiteRGB.y == 0.0 ||
        t.whiteRGB.z == 0.0)
        return false;
    const TVect3<double> v = xyz2rgb * xyz;
    rgb = {v.x / t.whiteRGB.x, v.y / t.whiteRGB.y, v.z / t.whiteRGB.z};
    return true;
}

// The samples of the spectrum reconstructed from rgb with the three reconstruction planes:
// out[i] = plane_r[i] r + plane_g[i] g + plane_b[i] b.
inline void Reconstruct(const double* planes, int n, const TVect3<double>& rgb, double* out) {
    Kernels::Combine3(planes, planes + n, planes + 2 * n, rgb.x, rgb.y, rgb.z, out, n);
}

} // namespace Korvane::Cie
