#include "hostkit/base/GlobTr.h"

#include <list>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace Korvane {
namespace {

using Key = std::pair<std::string, std::string>;

struct TrState {
    std::mutex mutex;
    std::map<Key, std::string> table;
    std::map<Key, int> lookups;
    std::list<std::string> withdrawn; // translations handed out once stay alive for the process
};

TrState& State() {
    static TrState st;
    return st;
}

} // namespace

const char* GlobTr(const char* context, const char* text, const void* /*reserved*/) {
    if (!text)
        return text;
    TrState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    Key key{context ? context : "", text};
    ++st.lookups[key];
    auto it = st.table.find(key);
    // A withdrawn entry's text is kept (Withdraw), so the returned pointer stays valid for the
    // process.
    return it == st.table.end() ? text : it->second.c_str();
}

namespace Translations {
void Add(const char* context, const char* text, const char* translation) {
    TrState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    auto& slot = st.table[Key{context ? context : "", text ? text : ""}];
    // Replacing would invalidate pointers already handed out; the first translation stays.
    if (slot.empty())
        slot = translation ? translation : "";
}
void Withdraw(const char* context, const char* text) {
    TrState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    auto it = st.table.find(Key{context ? context : "", text ? text : ""});
    if (it == st.table.end())
        return;
    st.withdrawn.push_back(std::move(it->second)); // a moved string may keep its buffer: keep it
    st.table.erase(it);
}
void Clear() {
    TrState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    st.lookups.clear();
}
int LookupCount(const char* context, const char* text) {
    TrState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    auto it = st.lookups.find(Key{context ? context : "", text ? text : ""});
    return it == st.lookups.end() ? 0 : it->second;
}
} // namespace Translations

} // namespace Korvane
