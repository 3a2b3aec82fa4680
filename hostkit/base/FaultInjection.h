// Deterministic allocation failure for tests: "the n-th allocation at these sites fails".
//
// Every allocation point of the host kit and of the containers asks ShouldFail(site) before it
// allocates. A plan counts the allocations at the sites it covers, starting at 1 when armed; the
// allocation whose number equals `failAt` fails, and with `failAfter` set every later one too.
#pragma once

#include "hostkit/HostExport.h"

namespace Korvane::FaultInjection {

enum Site : unsigned {
    PlugAlloc = 1u << 0,       // Plug::operator new: plugs, models, type objects, holders
    ArrayStorage = 1u << 1,    // TArray storage, plain or aligned
    Distribution = 1u << 2,    // spectral distribution storage
    MatrixStorage = 1u << 3,   // TMatrix storage
    ConverterTables = 1u << 4, // the CIE converter: its state and each grid's tables
    AnySite = 0x1Fu,
};

KOR_HOST_API void Arm(unsigned sites, long failAt, bool failAfter = false);
KOR_HOST_API void Disarm();
// Allocations counted at the armed sites since Arm (also after Disarm, until the next Arm).
KOR_HOST_API long Counted();
// True when the plan says this allocation fails; counts it either way.
KOR_HOST_API bool ShouldFail(Site site);

// Arms on construction, disarms on destruction.
class ScopedFailure {
public:
    ScopedFailure(unsigned sites, long failAt, bool failAfter = false) {
        Arm(sites, failAt, failAfter);
    }
    ~ScopedFailure() { Disarm(); }
    ScopedFailure(const ScopedFailure&) = delete;
    ScopedFailure& operator=(const ScopedFailure&) = delete;
};

} // namespace Korvane::FaultInjection
