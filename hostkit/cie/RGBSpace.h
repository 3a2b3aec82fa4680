// RGBSpace: the matrices of a linear RGB space from the chromaticities of its primaries and its
// white (the normalised primary matrix of SMPTE RP 177-1993):
//   P = columns (x/y, 1, z/y) of R, G, B;  S = P^-1 W with W the white XYZ at Y = 1;
//   N = P diag(S) maps (R, G, B) to (X, Y, Z), and M = N^-1 maps back.
// Rows of N sum to W, so RGB (1, 1, 1) is the white; the middle row of N gives luminance.
#pragma once

#include "hostkit/base/Vectors.h"

namespace Korvane::Cie {

// Linear sRGB / ITU-R BT.709 primaries and the D65 white as IEC 61966-2-1 rounds it.
inline constexpr TVect2<double> kSRGBRed{0.64, 0.33};
inline constexpr TVect2<double> kSRGBGreen{0.30, 0.60};
inline constexpr TVect2<double> kSRGBBlue{0.15, 0.06};
inline constexpr TVect2<double> kSRGBWhite{0.3127, 0.3290};

struct RGBSpaceMatrices {
    TMatrix3 rgb2xyz; // N
    TMatrix3 xyz2rgb; // M
};

// False when the primaries are collinear (no RGB space).
bool DeriveRGBSpace(TVect2<double> red, TVect2<double> green, TVect2<double> blue,
                    TVect2<double> white, RGBSpaceMatrices& out);

} // namespace Korvane::Cie
