// What the fuzz targets share: the library registered once, reports kept quiet, the checks that
// every input must pass (memory balanced, a loaded plug saved, loaded and saved again gives the
// same bytes), and a failure that stops the fuzzer.
#pragma once

#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"
#include "hostkit/plugsys/Plug.h"
#include "hostkit/plugsys/PlugRef.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace Korvane::Fuzz {

// Registers the library's classes once per process; the reports go to the log only, which is
// cleared per input so it does not grow.
void Setup();

// Stops the fuzzer with a message (the input that got here is the finding).
[[noreturn]] inline void Finding(const std::string& what) {
    std::fprintf(stderr, "fuzz finding: %s\n", what.c_str());
    std::abort();
}

// The "TArray" blocks and live plugs, to compare before and after one input.
struct Balance {
    long long blocks = MemStats::Get("TArray").blocksOutstanding;
    long long bytes = MemStats::Get("TArray").bytesOutstanding;
    long long plugs = PlugStats::Alive();
    void Check() const {
        if (MemStats::Get("TArray").blocksOutstanding != blocks ||
            MemStats::Get("TArray").bytesOutstanding != bytes)
            Finding("\"TArray\" memory statistics not balanced after the input");
        if (PlugStats::Alive() != plugs)
            Finding("plugs left alive after the input");
    }
};

// Save -> load -> save of a plug that loaded gives the same bytes in both formats.
void CheckRoundTrip(const Plug& plug);

// Makes the archive's own check pass again after a mutation, so that the mutated records reach
// the readers: a binary archive gets its payload length and CRC-32 recomputed, a text archive
// its closing checksum line (written anew after the last line that is not one). Bytes that
// begin like neither archive are left alone.
void RepairFrame(std::string& bytes);

} // namespace Korvane::Fuzz
