// The kind of a source model, as every conversion decides it: the questions IsBW, IsRGB, IsXYZ,
// IsXYY and IsSpectral asked in this order, the first yes deciding (none: Other).
//
// The library's own model classes give fixed answers, so for them the kind is read from the
// object's type (the address of its type_info among this library's model classes) without
// asking: no virtual call on the per-ray paths, and the same branch. Any other model, a host's
// own or a test's, is asked the questions in their order.
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "plugin/PluginExport.h"

namespace Korvane {

enum class SourceKind { BW, RGB, XYZ, XYY, Spectral, Other };

// The kind of `src`; Other for a null model.
KOR_PLUGIN_API SourceKind KindOf(const ColorModel* src);

} // namespace Korvane
