// Tristimulus values of sampled spectra through the host's current CIE converter
// (CIEConv::spectrum2xyz: the spectrum read piecewise linearly, integrated exactly against the
// current observer). A host that wants another observer makes that converter current first.
#pragma once

#include "cli/analysis/Types.h"

#include <vector>

namespace Korvane::Analysis {

// Light: X = integral s xbar dl, likewise Y, Z (no 683 factor). 0, or the converter's non-zero
// result (empty grid, wavelengths not finite and increasing, no memory) with xyz = 0.
int LightXYZ(const SpectrumView& s, Vec3& xyz);

// Reflectance r under an illuminant sampled on r's own grid: XYZ of r * illuminant as a light,
// divided by the Y of the illuminant on the same grid, so the perfect white reflector has Y = 1;
// `white` gets that reflector's XYZ. Non-zero when the converter fails or the illuminant has no
// luminance on the grid.
int ReflectanceXYZ(const SpectrumView& r, const double* illuminant, Vec3& xyz, Vec3& white);

// The converter's XYZ of a unit spike at each wavelength of `nm` (the response of a spectrum
// that is 1 at sample k and 0 at the others): 3 n values, k-major. spectrum2xyz is linear in the
// samples, so XYZ of any s on this grid is sum_k s_k W_k, to rounding. Kept for the last grid seen
// by the calling thread (and the current converter); empty when the converter refuses the grid.
const std::vector<double>& SpikeWeights(const std::vector<double>& nm);

// The current converter's linear RGB (sRGB primaries, D65 white) of an XYZ: M xyz.
Vec3 LinearSrgb(const Vec3& xyz);

// The display colour of a light, whose XYZ has no natural scale: LinearSrgb(xyz) scaled so that
// its largest channel is exactly 1, which shows the light's chromaticity at full strength (D65
// as white, illuminant A as orange); channels below 0 stay there, for EncodeSrgb to clip and
// flag. Unscaled when no channel is above 0 (black).
Vec3 LightSrgb(const Vec3& xyz);

} // namespace Korvane::Analysis
