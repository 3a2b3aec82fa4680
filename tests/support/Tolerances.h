// Every tolerance the tests use, with the reason for its size.
#pragma once

namespace Korvane::Tol {

// Results that are exact by construction (copies, bit-exact round trips) are compared with ==.

// -- colour-model base --------------------------------------------------------------------------

// Chromaticity of a white XYZ that was derived from published xy and rounded to double: the
// rounding of the three inputs, of the sum X+Y+Z and of one division stays within a few units in
// the last place of values near 0.3 (1 ulp there is 5.6e-17; the largest error seen is 1 ulp).
inline constexpr double kChromaticityRounding = 2e-16;

// -- CIE converter ------------------------------------------------------------------------------

// Integral of ybar (CIE 1931 2 deg, 360..830 nm), reference 106.8569 given to four decimals.
inline constexpr double kYbarIntegral = 1e-4;
// D65 white XYZ at Y = 100 against ASTM E308 (95.047, 100, 108.883): the reference has three
// decimals and comes from plain 1 nm sums, which differ from the exact integral of the
// interpolated tables by up to 1.5e-3 (Z).
inline constexpr double kWhiteXYZ = 2e-3;
// White chromaticities given to five decimals, from sums over other ranges and steps than the
// exact 360..830 nm integral (CIE 15:2004 uses 5 nm sums over 380..780 nm: 7e-6 apart).
inline constexpr double kWhiteChromaticity = 5e-5;
// The three CIE 1931 integrals differ by up to 3.3e-4 relative, so an equal-energy spectrum lies
// up to 4.5e-5 from (1/3, 1/3).
inline constexpr double kEqualEnergyChromaticity = 1e-4;
// M and N against the rational derivation rounded once to double: two 3x3 inversions of values
// up to 3.3 in double precision, a few ulp (4.4e-16) each.
inline constexpr double kDerivedMatrix = 1e-12;
// M and N against the IEC 61966-2-1 matrices printed with four decimals: the printed pair differs
// from the exact derivation by up to 3.7e-4.
inline constexpr double kPublishedMatrix = 5e-4;
// M N against the identity: each entry is three products of values up to 3.3, rounded.
inline constexpr double kMatrixIdentity = 1e-14;
// Relative error of a colour sent through a reconstruction and back, or of an integral taken on
// two grids: a 3x3 solve with rcond near 1 and sums of up to a few hundred terms, each at
// rounding level (1.1e-16); seen up to 1.0e-14 over 8000 colours on four grids.
inline constexpr double kSpectralRoundTrip = 1e-12;
// How far reflectances reconstructed from in-gamut RGB leave [0, 1] on the default 390..710 nm
// grid: measured 6.40e-4 (red below 0, cyan above 1) over a 65^3 sampling of the sRGB cube; the
// bound leaves room for a change of tables in the fourth digit.
inline constexpr double kInGamutExcursion = 7e-4;

// -- spectral resampling and conversions ---------------------------------------------------------

// Linear interpolation of values of magnitude up to 3: u carries one or two roundings (a
// reciprocal width and a product, or one division) and the blend two products and a sum, a few
// ulp (2.2e-16 near 1) in all; the largest error seen against the exact straight line is 2.2e-16.
inline constexpr double kResampleRounding = 2e-15;
// Luminance of an RGB ray read back from the ray: the scale factor, the ray weights and their
// division, eleven products and a sum of values near 0.5, each rounded once (1.1e-16 relative);
// seen 0 for RGB (0.2, 0.7, 0.1).
inline constexpr double kRayScaling = 1e-15;

// -- BW model -----------------------------------------------------------------------------------

// Relative error of the ybar-weighted mean of a flat spectrum against its value: a ratio of two
// sums of the same few hundred products, each rounded (1.1e-16); seen 5.1e-16.
inline constexpr double kFlatSpectrumMean = 1e-14;
// The three luminance coefficients (the middle row of N) sum to the Y of the white (1, 1, 1),
// which the derivation makes 1: one rounded 3x3 inversion and two additions, a few ulp; seen
// 1.1e-16.
inline constexpr double kLuminanceRowSum = 1e-15;
// The chromaticity of N (1, 1, 1) against the sRGB white (0.3127, 0.3290) it was derived from:
// the rounded inversion, the sums and one division, a few ulp of values near 0.3; seen 0.
inline constexpr double kGreyChromaticity = 1e-15;

// -- spectral model: energy, density and display ------------------------------------------------

// A value multiplied by a trapezoid weight and then by the rounded reciprocal of that weight:
// the reciprocal and the two products round once each, under 1.5 ulp (3.3e-16) relative; seen
// 2.2e-16.
inline constexpr double kReciprocalRoundTrip = 4e-16;
// Error, relative to the largest channel, between a weighted sum over per-wavelength spike
// responses (a model's XYZ table times the inverse weights, or a mass converter table) and the
// host converter's integral of the whole spectrum, which by linearity is the same sum: each
// response, product and partial sum rounds once (1.1e-16 relative) over up to 41 wavelengths;
// seen 1.8e-15 over 300 random grids of 2 to 41 points.
inline constexpr double kSpikeTableSum = 1e-14;

// -- XYZ and xyY models ------------------------------------------------------------------------

// The chromaticity of a column or row sum of N against the published primary or white that N was
// derived from: one rounded 3x3 derivation, a sum and a division, a few ulp of values up to 0.6
// (1.1e-16 there); seen 1.1e-16.
inline constexpr double kPrimaryChromaticity = 1e-15;
// xyY colours summed through XYZ and back: a reciprocal of y, a few products and sums of values
// up to 5, and the reciprocal of X + Y + Z, each rounded once; seen 1.1e-16 on values near 1.
inline constexpr double kXYYSum = 1e-15;
// Relative error of each value of a ray scaled to its light's energy against the same scaling
// done here: xyY by a reciprocal or a division, the ratio E / sum and one product per value,
// a few roundings of 1.1e-16 each; seen 0.
inline constexpr double kCIERayScaling = 1e-15;

// -- RGB model -----------------------------------------------------------------------------------

// R + G + B of a ray colour scaled to carry a given energy E: the ratio E / sum, the three
// products and the two additions each round once (1.1e-16 relative), a few ulp of E in all.
inline constexpr double kRGBRayEnergy = 1e-15;

// -- conversions across models --------------------------------------------------------------------

// Relative error of a light sent around RGB, XYZ and xyY and back: M, N (a rounded inverse of M,
// M N off the identity by up to 1e-14), the reciprocals of y and of X + Y + Z and a few products,
// each rounding once (1.1e-16 relative) on values near 0.5; the conditioning of M (about 10) may
// lift that into the 1e-15 range; seen 2.8e-16 for RGB (0.2, 0.4, 0.6).
inline constexpr double kCrossModelRoundTrip = 1e-12;
// A grey g read back from (g, g, g) as (g + g + g) * 0.3333333333333333: the sum and the product
// round once each and the constant lies 1.7e-17 relative below 1/3, under 1.5 ulp (3.4e-16
// relative) in all.
inline constexpr double kMeanOfThree = 4e-16;

} // namespace Korvane::Tol
