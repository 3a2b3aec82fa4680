#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"

#include <atomic>

namespace Korvane::FaultInjection {
namespace {
std::atomic<unsigned> gSites{0};
std::atomic<long> gFailAt{0};
std::atomic<bool> gFailAfter{false};
std::atomic<long> gCounted{0};
} // namespace

void Arm(unsigned sites, long failAt, bool failAfter) {
    gCounted.store(0);
    gFailAt.store(failAt);
    gFailAfter.store(failAfter);
    gSites.store(sites);
}

void Disarm() {
    gSites.store(0);
}

long Counted() {
    return gCounted.load();
}

bool ShouldFail(Site site) {
    if ((gSites.load(std::memory_order_relaxed) & site) == 0)
        return false;
    const long n = gCounted.fetch_add(1) + 1;
    const long at = gFailAt.load();
    const bool fail = n == at || (gFailAfter.load() && n > at);
    if (fail) // a forced failure is a failure like any other for whoever watches for them
        MemStats::RecordFailure();
    return fail;
}

} // namespace Korvane::FaultInjection
