#include "hostkit/cie/GridCache.h"

namespace Korvane::Cie {

GridCache::~GridCache() {
    for (GridTables* t = head_; t;) {
        GridTables* next = t->next;
        delete t;
        t = next;
    }
}

int GridCache::Count() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return count_;
}

GridTablesRef GridCache::Find(const double* waves, int n, GridStatus& status) const {
    const auto bytes = static_cast<std::size_t>(n) * sizeof(double);
    std::lock_guard<std::mutex> lock(mutex_);
    for (const GridTables* t = head_; t; t = t->next) {
        if (t->n == n && std::memcmp(t->waves, waves, bytes) == 0) {
            last_.store(t, std::memory_order_release);
            status = GridStatus::Ok;
            return GridTablesRef(t);
        }
    }
    std::unique_ptr<GridTables> built(BuildGridTables(waves, n, cmf_, xyz2rgb_, status));
    if (!built || count_ >= kMaxCachedGrids)
        return GridTablesRef(std::move(built));
    built->next = head_;
    head_ = built.release();
    ++count_;
    last_.store(head_, std::memory_order_release);
    return GridTablesRef(head_);
}

} // namespace Korvane::Cie
