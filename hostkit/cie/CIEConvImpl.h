// CIEConv::Impl: the state of one converter: its observer's tables, the matrices of its RGB
// space, the hull of its spectral locus, its per-grid tables and the radiant-power weights of
// RGB2Watts. Shared by the CIEConv and CIEConvAll sources only.
#pragma once

#include "hostkit/cie/CIEConv.h"
#include "hostkit/cie/GridCache.h"
#include "hostkit/cie/SpectralLocus.h"

namespace Korvane {

// Internal to the host library: hidden, so that calls between its parts stay direct.
#if defined(__GNUC__)
#define KOR_CIE_INTERNAL __attribute__((visibility("hidden")))
#else
#define KOR_CIE_INTERNAL
#endif

struct KOR_CIE_INTERNAL CIEConv::Impl {
    explicit Impl(Observer obs);

    // The tables of `waves` for a spectrum of `count` values: 0, -1 for an empty grid, a length
    // mismatch or an invalid grid, or the code of the no-memory report.
    int Tables(const TArray<double>& waves, int count, Cie::GridTablesRef& out) const;

    int LightXYZ(const TArray<double>& waves, const double* s, int count,
                 TVect3<double>& xyz) const;
    // The same with tables resolved beforehand, when `grid` is this converter's and of count
    // points.
    int LightXYZ(const CIEGrid& grid, const TArray<double>& waves, const double* s, int count,
                 TVect3<double>& xyz) const;
    int ReflectanceXYZ(const TArray<double>& waves, const double* r, int count,
                       TVect3<double>& xyz) const;
    int ReflectanceRGB(const TArray<double>& waves, const double* r, int count,
                       TVect3<double>& rgb) const;
    // Samples of the reconstructed reflectance (or light) of rgb on the grid; zeros on failure.
    int Reconstruct(const TVect3<double>& rgb, const TArray<double>& waves, double* out, int n,
                    bool reflectance) const;
    // The same with tables resolved beforehand, when `grid` is this converter's and of n points.
    int Reconstruct(const TVect3<double>& rgb, const CIEGrid& grid, const TArray<double>& waves,
                    double* out, int n, bool reflectance) const;
    // The same into `out`, first sized to the grid (ErrorNoMemory's code when that fails).
    int ReconstructInto(const TVect3<double>& rgb, const TArray<double>& waves, TArray<double>& out,
                        bool reflectance) const;

    std::uint64_t serial; // distinct for every converter of the process, never 0
    Observer observer;
    const Cie::CmfTable& cmf;
    TMatrix3 xyz2rgb{};
    TMatrix3 rgb2xyz{};
    TVect3<double> luminance{0.0, 0.0, 0.0};
    Cie::SpectralLocus locus;
    Cie::GridCache grids;
    // RGB2Watts(rgb) = watts . rgb: the trapezoid integral over the 1 nm grid 360..830 of the
    // light reconstruction rows.
    TVect3<double> watts{0.0, 0.0, 0.0};
    // False when the tables of the 1 nm grid could not be built (no memory).
    bool ready = false;
};

} // namespace Korvane
