#include "hostkit/cie/GridCache.h"

#include <new>

namespace Korvane::Cie {

std::size_t GridCache::Bytes() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return bytes_;
}

std::shared_ptr<const GridTables> GridCache::FindOrBuild(const double* waves, int n,
                                                         GridStatus& status) const {
    const int count = published_.load(std::memory_order_relaxed);
    const auto bytes = static_cast<std::size_t>(n) * sizeof(double);
    for (int k = 0; k < count; ++k)
        if (entries_[k]->n == n && std::memcmp(entries_[k]->waves, waves, bytes) == 0) {
            status = GridStatus::Ok;
            return entries_[k];
        }
    GridTables* raw = BuildGridTables(waves, n, cmf_, xyz2rgb_, status);
    if (!raw)
        return nullptr;
    std::shared_ptr<const GridTables> built;
    try {
        built.reset(raw); // deletes raw when the count cannot be allocated
    } catch (const std::bad_alloc&) {
        status = GridStatus::NoMemory;
        return nullptr;
    }
    const std::size_t size = GridTablesBytes(n);
    if (count >= kMaxCachedGrids || size > kMaxCachedBytes - bytes_)
        return built;
    entries_[count] = built;
    bytes_ += size;
    published_.store(count + 1, std::memory_order_release);
    return built;
}

GridTablesRef GridCache::Find(const double* waves, int n, GridStatus& status) const {
    std::lock_guard<std::mutex> lock(mutex_);
    std::shared_ptr<const GridTables> t = FindOrBuild(waves, n, status);
    const int count = published_.load(std::memory_order_relaxed);
    for (int k = 0; k < count; ++k)
        if (entries_[k] == t)
            return GridTablesRef(t.get());
    return GridTablesRef(std::move(t)); // beyond the bounds (or null)
}

std::shared_ptr<const GridTables> GridCache::Resolve(const double* waves, int n,
                                                     GridStatus& status) const {
    std::lock_guard<std::mutex> lock(mutex_);
    return FindOrBuild(waves, n, status);
}

} // namespace Korvane::Cie
