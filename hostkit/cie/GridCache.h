// GridCache: a converter's per-grid tables (GridTables), built the first time a grid is seen and
// kept, unchanged, for the life of the converter.
//
// Bounds: at most kMaxCachedGrids grids and kMaxCachedBytes bytes of tables (GridTablesBytes) are
// kept; the tables of a grid beyond either bound are built for the call (or the CIEGrid) that
// needs them and freed with it. The converter's own 1 nm grid (471 points, 64 KB) counts as one.
//
// Threads: a lookup reads the kept entries without a lock and writes nothing: it loads the number
// of entries published (acquire) and compares the grid with each entry (count, then the bytes of
// the wavelengths). Entries are published by a release store after they are complete and are
// never changed or freed while the converter lives. A grid not found is built under the lock
// (after a second look, so it is built once).
//
// A caller that converts on one grid again and again resolves it once (Resolve, through
// CIEConv::ResolveGrid) and keeps the tables, so that its calls compare nothing at all.
#pragma once

#include "hostkit/cie/GridTables.h"

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>

namespace Korvane::Cie {

inline constexpr int kMaxCachedGrids = 16;
inline constexpr std::size_t kMaxCachedBytes = std::size_t{8} << 20; // 8 MiB: ~60,000 points

// Tables handed out by the cache: a cached entry, or tables owned by this reference when the
// cache is full.
class GridTablesRef {
public:
    GridTablesRef() = default;
    explicit GridTablesRef(const GridTables* cached) : tables_(cached) {}
    explicit GridTablesRef(std::shared_ptr<const GridTables> owned)
        : tables_(owned.get()), owned_(std::move(owned)) {}

    explicit operator bool() const { return tables_ != nullptr; }
    const GridTables& operator*() const { return *tables_; }
    const GridTables* operator->() const { return tables_; }

private:
    const GridTables* tables_ = nullptr;
    std::shared_ptr<const GridTables> owned_;
};

class GridCache {
public:
    GridCache(const CmfTable& cmf, const TMatrix3& xyz2rgb) : cmf_(cmf), xyz2rgb_(xyz2rgb) {}
    GridCache(const GridCache&) = delete;
    GridCache& operator=(const GridCache&) = delete;

    // The tables of the grid (n >= 1); empty, with the status, when the grid is not strictly
    // increasing and finite or memory runs out.
    GridTablesRef Get(const double* waves, int n, GridStatus& status) const {
        if (const GridTables* t = Lookup(waves, n)) {
            status = GridStatus::Ok;
            return GridTablesRef(t);
        }
        return Find(waves, n, status);
    }

    // The same, shared with the caller for as long as it keeps them (a kept entry, or tables of
    // their own beyond the bounds). Null with the status as for Get.
    std::shared_ptr<const GridTables> Resolve(const double* waves, int n, GridStatus& status) const;

    // Number of grids kept, and the bytes of their tables.
    int Count() const { return published_.load(std::memory_order_acquire); }
    std::size_t Bytes() const;

private:
    const GridTables* Lookup(const double* waves, int n) const {
        const int count = published_.load(std::memory_order_acquire);
        const auto bytes = static_cast<std::size_t>(n) * sizeof(double);
        for (int k = 0; k < count; ++k) {
            const GridTables* t = entries_[k].get();
            if (t->n == n && std::memcmp(t->waves, waves, bytes) == 0)
                return t;
        }
        return nullptr;
    }
    // Under the lock: the kept entry of the grid, or a new one kept when the bounds allow (else
    // owned by the result alone), or null with the status.
    std::shared_ptr<const GridTables> FindOrBuild(const double* waves, int n,
                                                  GridStatus& status) const;
    GridTablesRef Find(const double* waves, int n, GridStatus& status) const;

    const CmfTable& cmf_;
    TMatrix3 xyz2rgb_;
    mutable std::mutex mutex_; // serialises additions; lookups take no lock
    mutable std::shared_ptr<const GridTables> entries_[kMaxCachedGrids];
    mutable std::atomic<int> published_{0};
    mutable std::size_t bytes_ = 0; // guarded by mutex_
};

} // namespace Korvane::Cie
