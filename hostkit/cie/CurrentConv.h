// The converter in use as the host kit itself reads it (CIEConv::Current, ColorModel::GetCIEConv):
// the one last set by CIEConv::SetCurrent, else the built-in default. Inline, so that a plug-in's
// GetCIEConv on a per-ray path is one call into the host kit, not a chain of them.
#pragma once

#include "hostkit/cie/CIEConv.h"
#include "hostkit/cie/CIEConvAll.h"

#include <atomic>

namespace Korvane::Cie {

// Set by CIEConv::SetCurrent; null until then. Not exported: the host kit's own.
extern std::atomic<const CIEConv*> gCurrentConv;
// The built-in default once CIEConvAll::Default has made it; null before.
extern std::atomic<const CIEConv*> gDefaultConv;

inline const CIEConv* CurrentConv() {
    if (const CIEConv* c = gCurrentConv.load(std::memory_order_acquire))
        return c;
    if (const CIEConv* c = gDefaultConv.load(std::memory_order_acquire))
        return c;
    return CIEConvAll::Default();
}

} // namespace Korvane::Cie
