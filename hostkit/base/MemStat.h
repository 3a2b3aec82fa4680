// Memory statistics per tag, and IArray, the accounting base of the host's containers.
//
// A container reports each block it allocates (AddMemStat) and releases (DelMemStat) under a
// tag. A report with a null block is a failed allocation: it counts as an attempt that failed
// and adds nothing outstanding. Reports take no lock and write nothing that another thread writes
// (containers allocate on every thread, per ray): counters are kept per thread and summed when
// read. Up to 31 tags are kept apart, further ones share one slot named "(other tags)".
#pragma once

#include "hostkit/HostExport.h"

#include <cstddef>
#include <string>

namespace Korvane {

struct MemStatCounts {
    long long bytesOutstanding = 0;
    long long blocksOutstanding = 0;
    long long bytesTotal = 0;  // every byte ever recorded under the tag
    long long blocksTotal = 0; // every successful block
    long long failed = 0;      // allocations recorded with a null block
};

class KOR_HOST_API IArray {
public:
    IArray();
    virtual ~IArray();

    static void AddMemStat(std::size_t bytes, void* p, const char* tag);
    static void DelMemStat(std::size_t bytes, void* p, const char* tag);
};

namespace MemStats {
KOR_HOST_API MemStatCounts Get(const char* tag);
// Forgets the totals and failures of a tag; outstanding counts stay (they describe live blocks).
KOR_HOST_API void ResetTotals(const char* tag);

// Allocation failures seen on the calling thread since it started: blocks recorded as failed
// under any tag, plugs that could not be allocated, and ErrorNoMemory reports (one failure may
// count more than once). Never reset: an operation compares a reading before and after itself to
// learn whether memory ran out anywhere inside it, also where a failure was absorbed on the way.
KOR_HOST_API long long FailuresOnThisThread();
// Counts one failure on the calling thread (the allocation sites and ErrorNoMemory call it).
KOR_HOST_API void RecordFailure();
} // namespace MemStats

} // namespace Korvane
