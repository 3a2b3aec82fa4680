#include "hostkit/base/MemStat.h"

#include <map>
#include <mutex>

namespace Korvane {
namespace {

struct StatState {
    std::mutex mutex;
    std::map<std::string, MemStatCounts> tags;
};

StatState& State() {
    static StatState st;
    return st;
}

} // namespace

IArray::IArray() = default;
IArray::~IArray() = default;

void IArray::AddMemStat(std::size_t bytes, void* p, const char* tag) {
    StatState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    MemStatCounts& c = st.tags[tag ? tag : ""];
    if (!p) {
        ++c.failed;
        return;
    }
    c.bytesOutstanding += static_cast<long long>(bytes);
    c.blocksOutstanding += 1;
    c.bytesTotal += static_cast<long long>(bytes);
    c.blocksTotal += 1;
}

void IArray::DelMemStat(std::size_t bytes, void* p, const char* tag) {
    if (!p)
        return;
    StatState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    MemStatCounts& c = st.tags[tag ? tag : ""];
    c.bytesOutstanding -= static_cast<long long>(bytes);
    c.blocksOutstanding -= 1;
}

namespace MemStats {
MemStatCounts Get(const char* tag) {
    StatState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    auto it = st.tags.find(tag ? tag : "");
    return it == st.tags.end() ? MemStatCounts{} : it->second;
}
void ResetTotals(const char* tag) {
    StatState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    MemStatCounts& c = st.tags[tag ? tag : ""];
    c.bytesTotal = c.blocksTotal = c.failed = 0;
}
} // namespace MemStats

} // namespace Korvane
