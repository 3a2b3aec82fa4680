#include "hostkit/base/MemStat.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <new>
#include <string>

namespace Korvane {
namespace {

// Counters are kept per thread and summed when read, so that threads allocating at once write
// nothing in common: each thread owns a block of counters (one row per tag) that only it writes
// (relaxed atomic stores of its own load plus the change: no read-modify-write, no shared cache
// line). Readers take the registry's lock and add up the blocks of live threads and the totals
// left by threads that ended. A tag's row is found by a scan of the published tag names (tags are
// few), after a check of the tag pointer used last by the thread; only a new tag takes the lock.
// ResetTotals records the current sums as a baseline that reads subtract, so that it writes into
// no thread's block.

// Tags beyond this many share the last slot, named "(other tags)".
constexpr int kMaxTags = 32;
constexpr int kFields = 5; // bytes and blocks outstanding, bytes and blocks total, failures

struct Counts {
    long long v[kFields] = {0, 0, 0, 0, 0};
};

struct alignas(64) ThreadBlock {
    std::atomic<long long> v[kMaxTags][kFields] = {};
    ThreadBlock* next = nullptr;
    ThreadBlock* prev = nullptr;
};

struct StatState {
    std::string names[kMaxTags]; // written once, before the name is published
    std::atomic<int> published{0};
    std::mutex lock;               // guards the list of blocks, retired and baseline
    ThreadBlock* blocks = nullptr; // the blocks of live threads
    Counts retired[kMaxTags];      // what threads that ended left
    Counts baseline[kMaxTags];     // totals at the last ResetTotals
    ThreadBlock shared;            // for a thread whose block could not be allocated
};

StatState& State() {
    static StatState* st = new StatState; // never destroyed: threads may report at exit
    return *st;
}

int Find(StatState& st, const char* tag, int published) {
    for (int i = 0; i < published; ++i)
        if (std::strcmp(st.names[i].c_str(), tag) == 0)
            return i;
    return -1;
}

int TagIndex(const char* tag) {
    thread_local const char* lastTag = nullptr;
    thread_local int lastIndex = -1;
    StatState& st = State();
    if (tag && tag == lastTag && std::strcmp(st.names[lastIndex].c_str(), tag) == 0)
        return lastIndex;
    const char* name = tag ? tag : "";
    int i = Find(st, name, st.published.load(std::memory_order_acquire));
    if (i < 0) {
        std::lock_guard<std::mutex> guard(st.lock);
        const int n = st.published.load(std::memory_order_relaxed);
        i = Find(st, name, n);
        if (i < 0 && n == kMaxTags) {
            i = kMaxTags - 1;
        } else if (i < 0) {
            st.names[n] = n == kMaxTags - 1 ? "(other tags)" : name;
            st.published.store(n + 1, std::memory_order_release);
            i = n;
        }
    }
    lastTag = tag;
    lastIndex = i;
    return i;
}

// The calling thread's block, registered on first use and folded into the retired totals when the
// thread ends. The pointer and the flag are plain thread-local values (no destructor of their
// own), so that reports made after the thread's thread-local objects were destroyed (objects
// released by static destructors on the main thread) still find them, and go to the shared
// block.
thread_local ThreadBlock* tBlock = nullptr;
thread_local bool tRetired = false;

struct BlockRetirer {
    ~BlockRetirer() {
        ThreadBlock* block = tBlock;
        tBlock = nullptr;
        tRetired = true;
        if (!block)
            return;
        StatState& st = State();
        std::lock_guard<std::mutex> guard(st.lock);
        for (int t = 0; t < kMaxTags; ++t)
            for (int f = 0; f < kFields; ++f)
                st.retired[t].v[f] += block->v[t][f].load(std::memory_order_relaxed);
        (block->prev ? block->prev->next : st.blocks) = block->next;
        if (block->next)
            block->next->prev = block->prev;
        delete block;
    }
};

ThreadBlock* Register() {
    thread_local BlockRetirer retirer; // constructed here, destroyed when the thread ends
    (void)retirer;
    auto* block = new (std::nothrow) ThreadBlock;
    if (!block) {
        tRetired = true; // the shared block from now on
        return nullptr;
    }
    StatState& st = State();
    std::lock_guard<std::mutex> guard(st.lock);
    block->next = st.blocks;
    if (st.blocks)
        st.blocks->prev = block;
    st.blocks = block;
    return block;
}

// Adds `delta` to field f of tag t for this thread.
void Add(int t, int f, long long delta) {
    if (!tBlock && !tRetired)
        tBlock = Register();
    if (!tBlock) { // no block of its own (none left, or none could be made): the shared one
        State().shared.v[t][f].fetch_add(delta, std::memory_order_relaxed);
        return;
    }
    std::atomic<long long>& c = tBlock->v[t][f];
    c.store(c.load(std::memory_order_relaxed) + delta, std::memory_order_relaxed);
}

// The sums of tag t over every block, the retired totals, less the baseline of the totals.
Counts Sum(StatState& st, int t) {
    Counts r = st.retired[t];
    for (int f = 0; f < kFields; ++f)
        r.v[f] += st.shared.v[t][f].load(std::memory_order_relaxed);
    for (const ThreadBlock* b = st.blocks; b; b = b->next)
        for (int f = 0; f < kFields; ++f)
            r.v[f] += b->v[t][f].load(std::memory_order_relaxed);
    return r;
}

enum Field { kBytesOut, kBlocksOut, kBytesTotal, kBlocksTotal, kFailed };

} // namespace

IArray::IArray() = default;
IArray::~IArray() = default;

void IArray::AddMemStat(std::size_t bytes, void* p, const char* tag) {
    const int t = TagIndex(tag);
    if (!p) {
        Add(t, kFailed, 1);
        MemStats::RecordFailure();
        return;
    }
    const auto b = static_cast<long long>(bytes);
    Add(t, kBytesOut, b);
    Add(t, kBlocksOut, 1);
    Add(t, kBytesTotal, b);
    Add(t, kBlocksTotal, 1);
}

void IArray::DelMemStat(std::size_t bytes, void* p, const char* tag) {
    if (!p)
        return;
    const int t = TagIndex(tag);
    Add(t, kBytesOut, -static_cast<long long>(bytes));
    Add(t, kBlocksOut, -1);
}

namespace MemStats {
MemStatCounts Get(const char* tag) {
    StatState& st = State();
    const int t = Find(st, tag ? tag : "", st.published.load(std::memory_order_acquire));
    if (t < 0)
        return MemStatCounts{};
    std::lock_guard<std::mutex> guard(st.lock);
    const Counts c = Sum(st, t);
    const Counts& base = st.baseline[t];
    MemStatCounts r;
    r.bytesOutstanding = c.v[kBytesOut];
    r.blocksOutstanding = c.v[kBlocksOut];
    r.bytesTotal = c.v[kBytesTotal] - base.v[kBytesTotal];
    r.blocksTotal = c.v[kBlocksTotal] - base.v[kBlocksTotal];
    r.failed = c.v[kFailed] - base.v[kFailed];
    return r;
}
void ResetTotals(const char* tag) {
    const int t = TagIndex(tag);
    StatState& st = State();
    std::lock_guard<std::mutex> guard(st.lock);
    st.baseline[t] = Sum(st, t);
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
