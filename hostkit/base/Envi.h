// Host environment services: aligned allocation.
#pragma once

#include "hostkit/HostExport.h"

#include <cstddef>

namespace Korvane::Envi {

// Storage aligned to `alignment` bytes (a power of two; values below the pointer size are raised
// to it). Returns null when the allocation fails. (Containers ask the fault site before calling.)
KOR_HOST_API void* AlignedMalloc(std::size_t bytes, int alignment);
KOR_HOST_API void AlignedFree(void* p);

} // namespace Korvane::Envi
