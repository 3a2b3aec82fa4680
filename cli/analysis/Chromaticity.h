// Chromaticity coordinates of a tristimulus triple, and the dominant wavelength and excitation
// purity of a chromaticity relative to the equal-energy white E (x = y = 1/3).
#pragma once

#include "cli/analysis/Types.h"
#include "hostkit/cie/CIEConv.h"

#include <optional>

namespace Korvane::Analysis {

// CIE 1931 x, y; (0, 0) when X + Y + Z is 0.
Vec2 Xy(const Vec3& xyz);
// CIE 1960 UCS u, v = 4X / (X + 15Y + 3Z), 6Y / (X + 15Y + 3Z); (0, 0) when the denominator is 0.
Vec2 Uv1960(const Vec3& xyz);
// CIE 1976 u', v' = 4X / (X + 15Y + 3Z), 9Y / (X + 15Y + 3Z); (0, 0) when the denominator is 0.
Vec2 UvPrime(const Vec3& xyz);
// CIE 1976 u', v' of a CIE 1931 x, y.
Vec2 UvPrimeFromXy(const Vec2& xy);
// CIE 1960 u, v of a CIE 1931 x, y.
Vec2 Uv1960FromXy(const Vec2& xy);

struct DominantWavelength {
    // The wavelength in nm where the ray from E through the colour meets the spectral locus. A
    // colour on the purple side has none; it gets the complementary wavelength (where the ray
    // from the colour through E meets the locus) with a minus sign, as the CIE writes it.
    double wavelength;
    // |colour - E| / |boundary - E|, the boundary being the locus or the purple line.
    double purity;
};

// Against the spectral locus of `observer` at 1 nm (360..830 nm, linear between) closed by the
// purple line between its ends. Empty for E itself or a chromaticity that is not finite.
std::optional<DominantWavelength> DominantWavelengthOf(const Vec2& xy, Observer observer);

} // namespace Korvane::Analysis
