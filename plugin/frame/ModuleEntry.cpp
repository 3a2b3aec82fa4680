#include "plugin/frame/ModuleEntry.h"

namespace {
constexpr int kVersionId = 263237; // 0x00040445
} // namespace

Korvane::BOOL DllMain(Korvane::HINSTANCE module, unsigned long reason, void* /*reserved*/) {
    if (reason == Korvane::kProcessAttach)
        Korvane::PluginLoading(module);
    return 1;
}

int VersionId() {
    return kVersionId;
}

int InitClasses() {
    return 0;
}

void TermClasses() {}
