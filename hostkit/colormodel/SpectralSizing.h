// Sizing the colours of spectral holders.
//
// A spectral colour starts empty: no samples, and conversions or arithmetic into it have nothing
// to fill. A host gives the colours of a holder the length of their model before it uses them.
// These helpers do that through the holder's own plug type, as loading a holder does: they write
// in memory the archive of a colour of the model's length, zero at every wavelength (a light
// colour then covers the whole grid), and let the type read it into the holder. They work for
// every spectral model, whatever its grid and polarization, without the plug-in's headers.
//
// Each returns 0, or the code of the report made: InternalError when the model is not spectral,
// the holder has no type that reads colours (ArrayRayColorHolder), or the holder does not belong
// to the model's polarization; ErrorNoMemory when the colours cannot be allocated. What the
// holder held before is replaced. A Stokes ray colour also gets the reference axis (1, 0, 0).
//
// Cost: the archive takes about nine bytes per double of the sized colours; size large buffers
// once and reuse them. Not for per-ray paths.
#pragma once

#include "hostkit/colormodel/Holders.h"

namespace Korvane {

class ColorModel;

// The colour of a single-colour holder (any of the five kinds) gets model.NWaves() samples.
KOR_HOST_API int SizeSpectralColour(Plug& holder, const ColorModel& model);

// The array holds `count` light colours, each of model.NWaves() samples.
KOR_HOST_API int SizeSpectralArray(ArrayLgtColorHolder& holder, int count, const ColorModel& model);

// The matrix holds rows x cols light colours, each of model.NWaves() samples.
KOR_HOST_API int SizeSpectralMatrix(MatrixLgtColorHolder& holder, int rows, int cols,
                                    const ColorModel& model);

} // namespace Korvane
