// XYZSource: the CIE coordinates of a colour of any model, which the XYZ and xyY models'
// conversions share. The source model is asked IsBW, IsRGB, IsXYZ, IsXYY, IsSpectral in that
// order, and the first that answers decides how its colour is read:
//
//   BW        N (v, v, v), v the intensity (I, or Mueller element (0,0), when polarized)
//   RGB       N (r, g, b) of the channel intensities
//   XYZ, xyY  the three values (ColourMath.h turns one into the other)
//   spectral  spectrum2xyz over the source's grid (reflectances: spectrum2xyzAttr); refused for
//             polarized light and surfaces, which carry no single spectrum to integrate
//
// with N = RGB2XYZ() of the current converter. Except from an XYZ or xyY source, the XYZ found is
// turned into xyY for an xyY target; a source in the target's own coordinates is copied
// unchanged. Defined with XYZModel's conversions (XYZConversions.cpp).
#pragma once

#include "hostkit/colormodel/ColorModel.h"

namespace Korvane::XYZSource {

// The coordinates a conversion delivers.
enum class Target { XYZ, XYY };

// The coordinates of `from`, a colour of `src`, into `out`: 0, or the code of the report made:
// InternalError "Not supported light color conversion" (or surface, scalar) for a source that
// is none of the five models, a null source included; ErrorMessageEx(refusal, refusal) for a
// polarized spectral light or surface; ErrorNoMemory(-1) when the scratch spectrum cannot be
// sized. `out` is written only on success. Scalar colours carry no polarization, so a scalar
// colour of a polarized spectral model converts like any other.
int Read(const ColorModel* src, const ILgtColor& from, Target target, const char* refusal,
         TVect3<double>& out);
int Read(const ColorModel* src, const ISurfColor& from, Target target, const char* refusal,
         TVect3<double>& out);
int Read(const ColorModel* src, const IScalarColor& from, Target target, TVect3<double>& out);

// A light colour of the spectral model `src` into the ray colour `to` of `dst`: the spectrum's
// XYZ (in the target's coordinates) scaled by E / dst.SumLgtColor, E = src.LgtEnergy(from), so
// that the ray carries the light's energy; unscaled when E is exactly 0. The plain sum is taken
// in the target's own coordinates, for xyY x + y + Y, and x and y are scaled with Y. Refuses a
// polarized source with ErrorMessageEx(refusal, refusal); ErrorNoMemory(-1) when the scratch
// spectrum cannot be sized; otherwise 0.
int SpectralRay(const ColorModel& dst, const ColorModel& src, const ILgtColor& from, Target target,
                const char* refusal, IRayColor& to);

} // namespace Korvane::XYZSource
