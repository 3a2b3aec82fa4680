// CIEConvAll: the full converter, a CIEConv that also reconstructs spectra from RGB or XYZ and
// gives the radiant power of an RGB light.
//
// Reconstruction is linear in the input and exact on the target grid. Basis: the three sRGB
// basis reflectances of Mallett and Yuksel (2019), linear between tabulated points and held at
// their end values outside, each row divided by its sum so that they sum to 1. Reflectance
// r = sum_c a_c B_c with a = A^-1 rgb, column c of A being spectrum2rgbAttr of B_c sampled on the
// grid; light s = D65 * sum_c a_c B_c with A built from Spectr2RGB of D65 B_c. So
// spectrum2rgbAttr(RGB2SpectrumAttr(rgb)) and Spectr2RGB(RGB2Spectrum(rgb)) give rgb back to
// rounding on every grid that can show three colours. XYZ input goes through rgb = M xyz. A depends
// only on the grid and is kept per grid (immutable entries, safe for concurrent conversions).
// When A is singular or ill-conditioned (reciprocal condition number below 2^-29: the grid does
// not see three independent colours, e.g. one point or nothing inside 360..830 nm) the call
// returns -1 and writes zeros.
//
// The output has one value per wavelength: a TArray is resized to the grid (ErrorNoMemory's code
// when that fails); a view or a plain array must already have the grid's length (else -1).
#pragma once

#include "hostkit/cie/CIEConv.h"
#include "hostkit/plugsys/PlugType.h"

namespace Korvane {

class KOR_HOST_API CIEConvAll : public CIEConv {
public:
    // A new converter for the observer (the built-in default uses CIE 1931 2 degree), with a
    // count of 0 for the caller's PlugRef; null, after ErrorNoMemory, when memory runs out.
    static CIEConvAll* Create(Observer observer = Observer::CIE1931_2deg);
    // The built-in default converter, alive from host start to host end.
    static const CIEConvAll* Default();

    PlugType* ObjType() const override;

    int RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves, double* out,
                     int n) const;
    int RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                     TArray<double>& out) const;
    int RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                     BArray<double>& out) const;
    int RGB2SpectrumAttr(const TVect3<double>& rgb, const TArray<double>& waves, double* out,
                         int n) const;
    // The same two, with the tables of `waves` resolved beforehand (CIEConv::ResolveGrid): when
    // `grid` was resolved by this converter for n points, the lookup of the grid is skipped;
    // otherwise these are the forms above. The values are the same bits either way.
    int RGB2Spectrum(const TVect3<double>& rgb, const CIEGrid& grid, const TArray<double>& waves,
                     double* out, int n) const;
    int RGB2SpectrumAttr(const TVect3<double>& rgb, const CIEGrid& grid,
                         const TArray<double>& waves, double* out, int n) const;
    int RGB2SpectrumAttr(const TVect3<double>& rgb, const TArray<double>& waves,
                         TArray<double>& out) const;
    int XYZ2Spectrum(const TVect3<double>& xyz, const TArray<double>& waves,
                     TArray<double>& out) const;
    int XYZ2SpectrumAttr(const TVect3<double>& xyz, const TArray<double>& waves,
                         TArray<double>& out) const;

    // Radiant power, integral of RGB2Spectrum(rgb) over 360..830 nm at 1 nm (linear in rgb).
    double RGB2Watts(const TVect3<double>& rgb) const;

protected:
    explicit CIEConvAll(Observer observer);
};

// The type of CIEConvAll plugs; it offers XYZ2Watts = RGB2Watts(M xyz) of the current converter.
class KOR_HOST_API CIEConvAllType : public PlugType {
public:
    // Identifier "CIEConvAll"; its plugs are not stored in files.
    CIEConvAllType();
    // A new converter with the default observer (Create), or null.
    Plug* NewInstance() override;
    double XYZ2Watts(double X, double Y, double Z) const;
};

// The host's CIEConvAll type object, from host start to host end.
KOR_HOST_API extern CIEConvAllType* TCIEConvAll;

} // namespace Korvane
