// GridCache: a converter's per-grid tables (GridTables), built the first time a grid is seen and
// kept, unchanged, for the life of the converter.
//
// A lookup compares the grid with the entry used last (one atomic load and one comparison of the
// wavelengths' bytes) before it searches the list under a lock; a grid not found is built under
// that lock, so it is built once. Entries are never changed or freed while the converter lives,
// so a thread may read an entry while another adds one. At most kMaxCachedGrids grids are kept;
// tables of a further grid are built for the one call that needs them.
#pragma once

#include "hostkit/cie/GridTables.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>

namespace Korvane::Cie {

inline constexpr int kMaxCachedGrids = 64;

// Tables handed out by the cache: a cached entry, or tables owned by this reference when the
// cache is full.
class GridTablesRef {
public:
    GridTablesRef() = default;
    explicit GridTablesRef(const GridTables* cached) : tables_(cached) {}
    explicit GridTablesRef(std::unique_ptr<GridTables> owned)
        : tables_(owned.get()), owned_(std::move(owned)) {}

    explicit operator bool() const { return tables_ != nullptr; }
    const GridTables& operator*() const { return *tables_; }
    const GridTables* operator->() const { return tables_; }

private:
    const GridTables* tables_ = nullptr;
    std::unique_ptr<GridTables> owned_;
};

class GridCache {
public:
    GridCache(const CmfTable& cmf, const TMatrix3& xyz2rgb) : cmf_(cmf), xyz2rgb_(xyz2rgb) {}
    ~GridCache();
    GridCache(const GridCache&) = delete;
    GridCache& operator=(const GridCache&) = delete;

    // The tables of the grid (n >= 1); empty, with the status, when the grid is not strictly
    // increasing and finite or memory runs out.
    GridTablesRef Get(const double* waves, int n, GridStatus& status) const {
        const GridTables* t = last_.load(std::memory_order_acquire);
        if (t && t->n == n &&
            std::memcmp(t->waves, waves, static_cast<std::size_t>(n) * sizeof(double)) == 0) {
            status = GridStatus::Ok;
            return GridTablesRef(t);
        }
        return Find(waves, n, status);
    }

    // Number of grids kept.
    int Count() const;

private:
    GridTablesRef Find(const double* waves, int n, GridStatus& status) const;

    const CmfTable& cmf_;
    TMatrix3 xyz2rgb_;
    mutable std::atomic<const GridTables*> last_{nullptr};
    mutable std::mutex mutex_;
    mutable GridTables* head_ = nullptr;
    mutable int count_ = 0;
};

} // namespace Korvane::Cie
