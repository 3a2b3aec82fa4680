#include "hostkit/base/Envi.h"

#include "hostkit/platform/Platform.h"

namespace Korvane::Envi {

void* AlignedMalloc(std::size_t bytes, int alignment) {
    std::size_t a = alignment > 0 ? static_cast<std::size_t>(alignment) : sizeof(void*);
    if (a < sizeof(void*))
        a = sizeof(void*);
    if ((a & (a - 1)) != 0)
        return nullptr; // not a power of two
    return Platform::AlignedAlloc(bytes, a);
}

void AlignedFree(void* p) {
    if (p)
        Platform::AlignedRelease(p);
}

} // namespace Korvane::Envi
