// The Planckian locus from Planck's law and the observer, and the correlated colour temperature
// (CCT) and distance from the locus (Duv) of a chromaticity by Ohno's method (Ohno 2013,
// LEUKOS 10(1), "Practical use and calculation of CCT and Duv").
#pragma once

#include "cli/analysis/Types.h"
#include "hostkit/cie/CIEConv.h"

#include <optional>

namespace Korvane::Analysis {

// Second radiation constant, m K.
inline constexpr double kC2 = 1.4388e-2;
// First radiation constant for spectral radiance, W m^2 sr^-1 (2 h c^2).
inline constexpr double kC1L = 1.191042972e-16;

// Spectral radiance of a blackbody at `kelvin`, per metre of wavelength, at `nm`.
double Planck(double nm, double kelvin);

// The locus is tabulated from 1000 K to 100000 K in steps of 0.1 % (the table Ohno's method
// interpolates in); CCTs outside are not given. Points farther than kMaxDuv from the locus have
// no CCT.
inline constexpr double kCctMin = 1000.0;
inline constexpr double kCctMax = 100000.0;
inline constexpr double kMaxDuv = 0.05;

// CIE 1960 u, v of a blackbody at `kelvin`: the integrals of Planck's law against the observer's
// colour-matching functions, summed at 1 nm over 360..830 nm.
Vec2 PlanckianUv1960(double kelvin, Observer observer);
// The same point in CIE 1931 x, y.
Vec2 PlanckianXy(double kelvin, Observer observer);

struct CctDuv {
    double cct; // K
    double duv; // signed distance in CIE 1960 u, v; positive above the locus (greener)
};

// Ohno 2013: the triangular solution for |Duv| < 0.002, the parabolic one otherwise, in the table
// above (fine enough that no correction factor is applied). Empty when the nearest table point is
// an end of the table, |Duv| > kMaxDuv, or the input is not finite.
std::optional<CctDuv> CctOhno2013(const Vec2& uv1960, Observer observer);

} // namespace Korvane::Analysis
