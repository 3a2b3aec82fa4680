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

#include <typeinfo>

namespace Korvane {

enum class SourceKind { BW, RGB, XYZ, XYY, Spectral, Other };

// The kind of `src`; Other for a null model. Inline, so that a per-ray conversion reads the kind
// of one of the library's models with a few comparisons and no call.
inline SourceKind KindOf(const ColorModel* src);

// What KindOf reads: the library's model classes and their kinds, the likeliest sources of a
// per-ray conversion first, and the questions in their order for any other model.
struct KnownModel {
    const std::type_info* type;
    SourceKind kind;
};
constexpr int kKnownModelCount = 8;
KOR_PLUGIN_API extern const KnownModel kKnownModels[kKnownModelCount];
KOR_PLUGIN_API SourceKind AskedKind(const ColorModel& src);

inline SourceKind KindOf(const ColorModel* src) {
    if (!src)
        return SourceKind::Other;
    const std::type_info* type = &typeid(*src);
#pragma GCC unroll 8 // a chain of comparisons, no loop
    for (const KnownModel& known : kKnownModels)
        if (known.type == type)
            return known.kind;
    return AskedKind(*src);
}

} // namespace Korvane
