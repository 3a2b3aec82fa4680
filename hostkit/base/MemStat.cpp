#include "hostkit/base/MemStat.h"

#include <atomic>
#include <cstring>
#include <mutex>

namespace Korvane {
namespace {

// Counters of one tag. Allocation reports come from every container on every thread, so they
// are lock-free: a tag's slot is found by a scan of the published slots (tags are few) and its
// counters are atomics. Only adding a new tag takes the lock.
struct TagSlot {
    std::string name; // written once, before the slot is published
    std::atomic<long long> bytesOutstanding{0};
    std::atomic<long long> blocksOutstanding{0};
    std::atomic<long long> bytesTotal{0};
    std::atomic<long long> blocksTotal{0};
    std::atomic<long long> failed{0};
};

// Tags beyond this many share the last slot, named "(other tags)".
constexpr int kMaxTags = 32;

struct StatState {
    TagSlot slots[kMaxTags];
    std::atomic<int> published{0};
    std::mutex adding;
};

StatState& State() {
    static StatState st;
    return st;
}

TagSlot* Find(StatState& st, const char* tag, int published) {
    for (int i = 0; i < published; ++i)
        if (std::strcmp(st.slots[i].name.c_str(), tag) == 0)
            return &st.slots[i];
    return nullptr;
}

TagSlot& Slot(const char* tag) {
    StatState& st = State();
    const char* name = tag ? tag : "";
    if (TagSlot* s = Find(st, name, st.published.load(std::memory_order_acquire)))
        return *s;
    std::lock_guard<std::mutex> lock(st.adding);
    const int n = st.published.load(std::memory_order_relaxed);
    if (TagSlot* s = Find(st, name, n))
        return *s;
    if (n == kMaxTags)
        return st.slots[kMaxTags - 1];
    TagSlot& s = st.slots[n];
    s.name = n == kMaxTags - 1 ? "(other tags)" : name;
    st.published.store(n + 1, std::memory_order_release);
    return s;
}

} // namespace

IArray::IArray() = default;
IArray::~IArray() = default;

void IArray::AddMemStat(std::size_t bytes, void* p, const char* tag) {
    TagSlot& c = Slot(tag);
    if (!p) {
        c.failed.fetch_add(1, std::memory_order_relaxed);
        MemStats::RecordFailure();
        return;
    }
    const auto b = static_cast<long long>(bytes);
    c.bytesOutstanding.fetch_add(b, std::memory_order_relaxed);
    c.blocksOutstanding.fetch_add(1, std::memory_order_relaxed);
    c.bytesTotal.fetch_add(b, std::memory_order_relaxed);
    c.blocksTotal.fetch_add(1, std::memory_order_relaxed);
}

void IArray::DelMemStat(std::size_t bytes, void* p, const char* tag) {
    if (!p)
        return;
    TagSlot& c = Slot(tag);
    c.bytesOutstanding.fetch_sub(static_cast<long long>(bytes), std::memory_order_relaxed);
    c.blocksOutstanding.fetch_sub(1, std::memory_order_relaxed);
}

namespace MemStats {
MemStatCounts Get(const char* tag) {
    StatState& st = State();
    const TagSlot* c = Find(st, tag ? tag : "", st.published.load(std::memory_order_acquire));
    if (!c)
        return MemStatCounts{};
    MemStatCounts r;
    r.bytesOutstanding = c->bytesOutstanding.load();
    r.blocksOutstanding = c->blocksOutstanding.load();
    r.bytesTotal = c->bytesTotal.load();
    r.blocksTotal = c->blocksTotal.load();
    r.failed = c->failed.load();
    return r;
}
void ResetTotals(const char* tag) {
    TagSlot& c = Slot(tag);
    c.bytesTotal.store(0);
    c.blocksTotal.store(0);
    c.failed.store(0);
}

namespace {
thread_local long long tFailures = 0;
} // namespace

long long FailuresOnThisThread() {
    return tFailures;
}
void RecordFailure() {
    ++tFailures;
}
} // namespace MemStats

} // namespace Korvane
