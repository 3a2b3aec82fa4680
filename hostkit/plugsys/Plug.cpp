#include "hostkit/plugsys/Plug.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/plugsys/PlugFile.h"

#include <cstdlib>
#include <new>

namespace Korvane {
namespace {
std::atomic<long long> gAlive{0};
} // namespace

IOwner::~IOwner() = default;

Plug::Plug() {
    gAlive.fetch_add(1, std::memory_order_relaxed);
}
Plug::Plug(const Plug& other) : name_(other.name_) {
    gAlive.fetch_add(1, std::memory_order_relaxed);
}
Plug::~Plug() {
    gAlive.fetch_sub(1, std::memory_order_relaxed);
}

PlugType* Plug::ObjType() const {
    return nullptr;
}
void Plug::SetName(const char* name) {
    name_ = name ? name : "";
}
Str Plug::GetText() const {
    return name_;
}
Plug* Plug::Clone() const {
    return nullptr;
}
void Plug::OnLoad(int) {}
int Plug::SaveToFile(const char* path) const {
    return PlugFile::Save(*this, path);
}
bool Plug::CanProvide(const PlugType*) const {
    return false;
}
Plug* Plug::Provide(const PlugType*) {
    return nullptr;
}
void Plug::OnChange(int) {}
int Plug::OnAsk(int) {
    return 0;
}

int Plug::Release() const {
    const int n = refs_.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (n == 0)
        delete this;
    return n;
}

int Plug::ReleaseNoDelete() const {
    return refs_.fetch_sub(1, std::memory_order_acq_rel) - 1;
}

void* Plug::operator new(std::size_t bytes) noexcept {
    void* p = FaultInjection::ShouldFail(FaultInjection::PlugAlloc) ? nullptr : std::malloc(bytes);
    if (!p)
        MemStats::RecordFailure();
    return p;
}

void Plug::operator delete(void* p) noexcept {
    std::free(p);
}

namespace PlugStats {
long long Alive() {
    return gAlive.load();
}
} // namespace PlugStats

} // namespace Korvane
