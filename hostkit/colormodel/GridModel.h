// Spectral models on a grid of the host's choice, made as a host makes one when it loads a model.
//
// A spectral model type (the plug-in registers "USpectr" and "StkSpectr") makes a new model,
// which reads its grid from an archive: the group "Wavelengths" (the count, then the
// wavelengths) and the named flag "EquiDistant". The model's OnLoad then works out its weights and
// its converter tables. MakeSpectralModel does exactly that, with the archive written in memory,
// so a host needs no archive of its own. The model belongs to the caller (through the returned
// reference); it is not listed in the registry (TColorModel), which lists the plug-in's own models.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/plugsys/PlugRef.h"

#include <string>
#include <vector>

namespace Korvane {

// `count` wavelengths first, first + step, ..., first + (count - 1) step, in nanometres, each
// worked out as first + step * i (no accumulated sum). Empty when count < 1.
KOR_HOST_API std::vector<double> EvenGrid(double first, double step, int count);

// Whether the grid counts as equidistant by the spectral model's own rule: consecutive steps d
// and dprev agree when |d - dprev| <= (d + dprev) * 1.192092896e-7 (the library's one tolerance).
// A grid of one or two wavelengths is equidistant.
KOR_HOST_API bool IsEquidistantGrid(const std::vector<double>& waves);

// A new spectral model of the type `typeIdent` on `waves` (nanometres, positive, strictly
// increasing), with the equidistant flag IsEquidistantGrid gives. On failure: an empty reference
// and `error` says why (unknown type, a type that makes no spectral model, an invalid grid as
// the model refused it, no memory). An allocation that failed while the model was made fails the
// call, whatever the model made of it. Reports the model makes go to the report log as usual.
// A configuration-time call, like every change of a model's grid.
KOR_HOST_API PlugRef MakeSpectralModel(const char* typeIdent, const std::vector<double>& waves,
                                       std::string& error);

} // namespace Korvane
