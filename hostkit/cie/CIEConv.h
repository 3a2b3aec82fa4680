// CIEConv: the host's CIE converter. Spectrum to XYZ, RGB and grey, the XYZ<->RGB matrices,
// RGB clipping and validity tests of CIE coordinates.
//
// A sampled spectrum is read as the piecewise-linear function through its samples over
// [first, last wavelength] of its grid and zero outside; a one-point grid is one sample with a
// band of 1 nm. Integrals against the colour-matching functions (linear between their 1 nm
// samples, zero outside 360..830 nm), and against D65 times them for reflectances, are exact for
// that reading: Simpson's rule on each interval between merged break points, where the integrand
// is a polynomial of degree 2 (or 3) (GridTables.h).
//
// The static operations use the current converter (SetCurrent; the built-in CIE 1931 2-degree
// converter when none is set), so every caller integrates against one observer.
//
// What depends only on the grid (integration weights, reconstruction matrices) is computed the
// first time a converter sees a grid and kept for the converter's life (up to a bound in grids and
// bytes), immutable, so several threads may convert with one converter at once; a caller may also
// resolve its grid once and keep the tables (CIEGrid). Operations return 0, -1 for an empty grid,
// lengths that do not match, or wavelengths that are not finite and strictly increasing, or the
// code of ErrorNoMemory when the tables of a new grid cannot be allocated.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/base/Vectors.h"
#include "hostkit/base/containers/BArray.h"
#include "hostkit/base/containers/TArray.h"
#include "hostkit/plugsys/PlugRef.h"

#include <cstdint>
#include <memory>

namespace Korvane {

enum class Observer { CIE1931_2deg, CIE1964_10deg };

// The tables of one wavelength grid, resolved once by a converter (CIEConv::ResolveGrid) and kept
// by a caller that converts on that grid again and again: the forms of the conversions that take
// it skip the lookup of the grid (no comparison of wavelengths, no lock). It shares the tables,
// so it stays usable after the converter's cache has moved on; it names the converter that
// resolved it, and any other converter handed it looks the grid up as usual. Immutable: copies
// may be read by any number of threads.
class KOR_HOST_API CIEGrid {
public:
    CIEGrid() = default;
    // Whether it holds tables (a valid grid whose tables could be built).
    explicit operator bool() const { return tables_ != nullptr; }

    // For the converter: its tables (opaque here) and the serial number of the converter that
    // resolved them.
    CIEGrid(std::uint64_t owner, std::shared_ptr<const void> tables)
        : owner_(owner), tables_(std::move(tables)) {}
    std::uint64_t Owner() const { return owner_; }
    const void* Tables() const { return tables_.get(); }

private:
    std::uint64_t owner_ = 0;
    std::shared_ptr<const void> tables_;
};

class KOR_HOST_API CIEConv : public Plug {
public:
    CIEConv(const CIEConv&) = delete;
    CIEConv& operator=(const CIEConv&) = delete;
    ~CIEConv() override;

    // M: (X, Y, Z) -> linear (R, G, B) of the converter's RGB space (sRGB primaries, D65 white).
    const TMatrix3& XYZ2RGB() const { return *xyz2rgb_; }
    // N = M^-1: linear (R, G, B) -> (X, Y, Z).
    const TMatrix3& RGB2XYZ() const;
    // (kR, kG, kB): the middle row of N; Y = kR R + kG G + kB B.
    const TVect3<double>& LuminanceCoefs() const;
    Observer GetObserver() const;
    // Number of wavelength grids whose tables this converter keeps (see the note above), and the
    // bytes of those tables; both are bounded (hostkit/cie/GridCache.h: 16 grids, 8 MiB).
    int CachedGrids() const;
    std::size_t CachedGridBytes() const;
    // The tables of `waves`, for the forms of the conversions that take a CIEGrid. Empty when the
    // grid is empty or invalid or memory runs out (nothing is reported; those forms then behave
    // as the ones that take the wavelengths).
    CIEGrid ResolveGrid(const TArray<double>& waves) const;

    // Light: X = integral s(l) xbar(l) dl, likewise Y, Z (luminance is 683 Y). 0, or non-zero for
    // an empty grid or mismatched lengths (xyz set to 0).
    static int spectrum2xyz(const TArray<double>& waves, const TArray<double>& s,
                            TVect3<double>& xyz);
    static int spectrum2xyz(const TArray<double>& waves, const BArray<double>& s,
                            TVect3<double>& xyz);
    // The same with the tables of `waves` resolved beforehand (ResolveGrid): when `grid` was
    // resolved by the current converter for s.Count() points, the grid is not looked up.
    static int spectrum2xyz(const CIEGrid& grid, const TArray<double>& waves,
                            const BArray<double>& s, TVect3<double>& xyz);
    // Reflectance under D65: integral r D65 cmf / integral D65 ybar over the grid's own range, so
    // a perfect white reflector has Y = 1 on every grid. Non-zero when the grid sees no light.
    static int spectrum2xyzAttr(const TArray<double>& waves, const TArray<double>& r,
                                TVect3<double>& xyz);
    // ybar-weighted mean over the grid's range; non-zero when integral ybar is 0.
    static int spectrum2bw(const TArray<double>& waves, const TArray<double>& s, double& value);
    // Channel c = sum values[i] * cc[i] * c4[i]; an empty c4 means the grid's trapezoid weights.
    static int spectrum2rgbByCurves(const TArray<double>& waves, const TArray<double>& values,
                                    const TArray<double>& c1, const TArray<double>& c2,
                                    const TArray<double>& c3, const TArray<double>& c4,
                                    TVect3<double>& rgb);
    // Negatives become 0; then, when the largest channel is above 1, all three are divided by
    // it. True when the triple changed.
    static bool ClipRGBScale(TVect3<double>& rgb);

    // M * spectrum2xyz; with normalize the triple is divided by its sum when that is not 0.
    TVect3<double> Spectr2RGB(const TArray<double>& s, const TArray<double>& waves,
                              bool normalize) const;
    // M * spectrum2xyzAttr, each channel divided by that of the perfect white reflector on the
    // same grid: reflectance 1 everywhere is RGB (1, 1, 1) exactly.
    TVect3<double> Spectr2RGBAttr(const TArray<double>& r, const TArray<double>& waves,
                                  bool normalize) const;
    int spectrum2rgbAttr(const TArray<double>& waves, const TArray<double>& r,
                         TVect3<double>& rgb) const;

    // (x, y) inside or on the convex hull of the spectral locus (360..830 nm) and y > 0.
    bool IsValidXY(double x, double y) const;
    bool IsValidXYY(double x, double y, double Y) const;
    bool IsValidXYZ(double X, double Y, double Z) const;

    // The converter the static operations use; never null.
    static const CIEConv* Current();
    // Makes `conv` current (null: the built-in default). The converter is not owned: the caller
    // keeps it alive while it is current. Configuration-time only.
    static void SetCurrent(const CIEConv* conv);

protected:
    explicit CIEConv(Observer observer);

    friend class SpikeResponses; // reads the per-grid tables (SpikeResponses.h)
    struct Impl;
    Impl* impl_;
    const TMatrix3* xyz2rgb_; // M, kept by impl_; read inline on the per-ray paths
};

} // namespace Korvane
