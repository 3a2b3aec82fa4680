#include "hostkit/base/Module.h"

#include <atomic>

namespace Korvane {
namespace {
std::atomic<HINSTANCE> gLoading{nullptr};
std::atomic<int> gCalls{0};
} // namespace

void PluginLoading(HINSTANCE module) {
    gLoading.store(module);
    gCalls.fetch_add(1);
}

HINSTANCE LoadingModule() {
    return gLoading.load();
}
int PluginLoadingCalls() {
    return gCalls.load();
}

} // namespace Korvane
