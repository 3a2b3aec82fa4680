// CieTables: the embedded colorimetric tables read as functions of wavelength (nm).
//
// The colour-matching functions (CIE 1931 2 degree or CIE 1964 10 degree, CIE 15:2004) and the
// relative spectral power of CIE illuminant D65 (ISO/CIE 11664-2) are linear between their 1 nm
// samples and zero outside their range. The sRGB basis reflectances of Mallett and Yuksel (2019)
// are linear between their 5 nm samples and held at their end values outside; each tabulated row
// is divided by its sum (the published rows sum to 1 within 1e-5), so the three sum to 1.
#pragma once

#include "hostkit/cie/CIEConv.h"

namespace Korvane::Cie {

// Range of the colour-matching functions: 360..830 nm at 1 nm.
inline constexpr double kCmfFirst = 360.0;
inline constexpr double kCmfLast = 830.0;
inline constexpr int kCmfCount = 471;

// The colour-matching functions of one observer, kCmfCount samples each.
struct CmfTable {
    const double* xbar;
    const double* ybar;
    const double* zbar;
};

const CmfTable& Cmf(Observer observer);
// The wavelengths of the colour-matching functions, 360, 361, ..., 830.
const double* CmfWavelengths();

// (xbar, ybar, zbar) at lambda; lambda must lie in [kCmfFirst, kCmfLast].
void CmfAt(const CmfTable& cmf, double lambda, double out[3]);
// D65 at lambda: linear over 300..830 nm, zero outside.
double D65At(double lambda);
// The three basis reflectances (red, green, blue) at lambda; they sum to 1.
void BasisAt(double lambda, double out[3]);

} // namespace Korvane::Cie
