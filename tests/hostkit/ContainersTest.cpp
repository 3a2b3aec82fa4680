// The owning arrays, the view and the matrix: exact growth, storage modes, memory statistics,
// element lifetimes, error reports and every allocation failure.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"
#include "hostkit/base/Vectors.h"
#include "hostkit/base/containers/BArray.h"
#include "hostkit/base/containers/TArray.h"
#include "hostkit/base/containers/TMatrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <thread>
#include <type_traits>
#include <vector>

using namespace Korvane;
using FaultInjection::ScopedFailure;

namespace {

// An element that counts its constructions, destructions and assignments.
struct Counted {
    static inline int constructed = 0;
    static inline int destroyed = 0;
    static inline int assigned = 0;
    static void Reset() { constructed = destroyed = assigned = 0; }

    int value = -1;
    Counted() { ++constructed; }
    Counted(const Counted& o) : value(o.value) { ++constructed; }
    Counted& operator=(const Counted& o) {
        value = o.value;
        ++assigned;
        return *this;
    }
    ~Counted() { ++destroyed; }
};

// Aligned storage is refused at compile time for elements that need construction.
static_assert(!std::is_constructible_v<TArray<Counted>, int, int>);
static_assert(!std::is_constructible_v<GArray<Counted>, int, int>);
static_assert(std::is_constructible_v<TArray<double>, int, int>);
static_assert(std::is_constructible_v<GArray<TVect3<double>>, int, int>);

MemStatCounts Stats() {
    return MemStats::Get(kArrayMemTag);
}

template <class A>
std::vector<double> Values(const A& a) {
    return std::vector<double>(a.begin(), a.end());
}

template <class A>
void Set(A& a, std::vector<double> values) {
    ASSERT_EQ(a.Alloc(static_cast<int>(values.size())), 0);
    for (int i = 0; i < a.Count(); ++i)
        a[i] = values[static_cast<std::size_t>(i)];
}

bool IsAligned(const void* p, std::size_t alignment) {
    return reinterpret_cast<std::uintptr_t>(p) % alignment == 0;
}

// A rows x cols matrix whose element (r, c) holds 10 r + c.
TMatrix<double> Numbered(int rows, int cols) {
    TMatrix<double> m;
    EXPECT_EQ(m.Alloc(rows, cols), 0);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < cols; ++c)
            m(r, c) = 10 * r + c;
    return m;
}

std::vector<double> Elements(const TMatrix<double>& m) {
    return std::vector<double>(m.Data(), m.Data() + m.Elements());
}

} // namespace

TEST(TArrayGrowth, AllocGrowsExactlyAndNeverShrinks) {
    MArray<double> a(10);
    ASSERT_EQ(a.Alloc(5), 0);
    EXPECT_EQ(a.Capacity(), 5);
    for (int i = 0; i < 5; ++i)
        a[i] = i;
    ASSERT_EQ(a.Alloc(3), 0);
    EXPECT_EQ(a.Capacity(), 5);
    EXPECT_EQ(a.Count(), 3);

    const long long blocks = Stats().blocksTotal;
    const double* storage = a.Data();
    ASSERT_EQ(a.Alloc(5), 0); // within capacity: no new block
    EXPECT_EQ(Stats().blocksTotal, blocks);
    EXPECT_EQ(a.Data(), storage);
    EXPECT_EQ(Values(a), (std::vector<double>{0, 1, 2, 3, 4}));

    ASSERT_EQ(a.Alloc(7), 0); // exactly 7, not a growth step more; the values travel
    EXPECT_EQ(a.Capacity(), 7);
    EXPECT_EQ(Stats().blocksTotal, blocks + 1);
    EXPECT_EQ(std::vector<double>(a.begin(), a.begin() + 5), (std::vector<double>{0, 1, 2, 3, 4}));
}

TEST(TArrayGrowth, ReallocSetsCapacityExactlyAndZeroReleases) {
    const MemStatCounts before = Stats();
    TArray<double> a(10);
    Set(a, {1, 2, 3, 4, 5});
    ASSERT_EQ(a.Realloc(8), 0);
    EXPECT_EQ(a.Capacity(), 8);
    EXPECT_EQ(Values(a), (std::vector<double>{1, 2, 3, 4, 5}));
    ASSERT_EQ(a.Realloc(3), 0); // shrinking cuts the count
    EXPECT_EQ(a.Capacity(), 3);
    EXPECT_EQ(Values(a), (std::vector<double>{1, 2, 3}));
    const double* storage = a.Data();
    ASSERT_EQ(a.Realloc(3), 0);
    EXPECT_EQ(a.Data(), storage);

    ASSERT_EQ(a.Realloc(0), 0);
    EXPECT_EQ(a.Data(), nullptr);
    EXPECT_EQ(a.Count(), 0);
    EXPECT_EQ(a.Capacity(), 0);
    EXPECT_EQ(Stats().blocksOutstanding, before.blocksOutstanding);
    EXPECT_EQ(Stats().bytesOutstanding, before.bytesOutstanding);
}

TEST(TArrayErrors, NegativeSizesReportInternalErrorAndChangeNothing) {
    TArray<double> a(10);
    Set(a, {1, 2});
    EXPECT_EQ(a.Realloc(-1), kInternalErrorCode);
    EXPECT_EQ(a.Alloc(-1), kInternalErrorCode);
    EXPECT_EQ(Values(a), (std::vector<double>{1, 2}));
    EXPECT_EQ(a.Capacity(), 2);

    const std::vector<Report> log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].kind, ReportKind::InternalError);
    EXPECT_EQ(log[0].text, "TArray: new_size=-1 < 0 (32 bit overflow?)");
    EXPECT_EQ(log[1].kind, ReportKind::InternalError);
    EXPECT_EQ(log[1].text, "TArray::Alloc(): 32 bit overflow?");
}

TEST(TArrayAssign, TakesCapacityAndCopiesCount) {
    TArray<double> from(10);
    ASSERT_EQ(from.Realloc(10), 0);
    Set(from, {1, 2, 3});
    TArray<double> to(10);
    Set(to, {9, 9, 9, 9});

    ASSERT_EQ(to.Assign(from), 0);
    EXPECT_EQ(to.Capacity(), 10);
    EXPECT_EQ(Values(to), (std::vector<double>{1, 2, 3}));
    ASSERT_EQ(to.Assign(to), 0);
    EXPECT_EQ(Values(to), (std::vector<double>{1, 2, 3}));

    TArray<double> empty(10);
    ASSERT_EQ(to.Assign(empty), 0);
    EXPECT_EQ(to.Capacity(), 0);
    EXPECT_EQ(to.Data(), nullptr);
}

TEST(TArrayCompare, EqualityIsElementwiseAndNaNNeverMatches) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    TArray<double> a(10), b(10);
    EXPECT_TRUE(a.IsEqual(b)); // both empty
    Set(a, {1, nan});
    EXPECT_FALSE(a.IsEqual(a));
    EXPECT_FALSE(a == a);

    Set(a, {0.0, 2});
    ASSERT_EQ(b.Realloc(6), 0); // capacity does not take part
    Set(b, {-0.0, 2});
    EXPECT_TRUE(a == b);
    Set(b, {0.0, 2, 3});
    EXPECT_TRUE(a != b);
}

TEST(TArrayFill, SetsOnlyTheElementsInUse) {
    TArray<double> a(10);
    Set(a, {1, 2, 3, 4});
    ASSERT_EQ(a.Alloc(2), 0);
    a.Fill(7);
    ASSERT_EQ(a.Alloc(4), 0);
    EXPECT_EQ(Values(a), (std::vector<double>{7, 7, 3, 4}));
}

TEST(TArrayAligned, StorageIsAlignedAndCountedAtElementSize) {
    for (int alignment : {32, 64}) {
        const MemStatCounts before = Stats();
        TArray<double> a(10, alignment);
        Set(a, {1, 2, 3, 4, 5});
        EXPECT_TRUE(IsAligned(a.Data(), static_cast<std::size_t>(alignment)));
        EXPECT_EQ(Stats().bytesOutstanding - before.bytesOutstanding, 5 * 8); // not rounded up
        ASSERT_EQ(a.Alloc(9), 0);
        EXPECT_TRUE(IsAligned(a.Data(), static_cast<std::size_t>(alignment)));
        EXPECT_EQ(std::vector<double>(a.begin(), a.begin() + 5),
                  (std::vector<double>{1, 2, 3, 4, 5}));
        EXPECT_EQ(Stats().bytesOutstanding - before.bytesOutstanding, 9 * 8);
    }
    TArray<TVect3<double>> v(10, 64);
    const long long bytes = Stats().bytesOutstanding;
    ASSERT_EQ(v.Alloc(3), 0);
    EXPECT_EQ(Stats().bytesOutstanding - bytes, 3 * 24);

    // An alignment below 1 falls back to pointer alignment instead of dividing by it.
    TArray<double> zero(10, 0);
    ASSERT_EQ(zero.Alloc(3), 0);
    EXPECT_TRUE(IsAligned(zero.Data(), sizeof(void*)));
}

TEST(TArrayMemStats, BlocksBalanceUnderTheArrayTag) {
    const MemStatCounts before = Stats();
    {
        TArray<double> a(10);
        ASSERT_EQ(a.Alloc(4), 0);
        ASSERT_EQ(a.Alloc(6), 0);
        const MemStatCounts now = Stats();
        EXPECT_EQ(now.blocksOutstanding - before.blocksOutstanding, 1);
        EXPECT_EQ(now.bytesOutstanding - before.bytesOutstanding, 6 * 8);
        EXPECT_EQ(now.blocksTotal - before.blocksTotal, 2);
        EXPECT_EQ(now.bytesTotal - before.bytesTotal, (4 + 6) * 8);
    }
    EXPECT_EQ(Stats().blocksOutstanding, before.blocksOutstanding);
    EXPECT_EQ(Stats().bytesOutstanding, before.bytesOutstanding);
}

// Counters are kept per thread: what threads report, while they run and after they ended, adds
// up exactly in every read, and a reset of the totals counts from that moment on every thread.
TEST(TArrayMemStats, ThreadsCountApartAndTheSumsStayExact) {
    constexpr int kPerThread = 2000;
    const MemStatCounts before = Stats();
    const auto churn = [] {
        for (int k = 0; k < kPerThread; ++k) {
            TArray<double> a(10);
            a.Alloc(3);
        }
    };
    TArray<double> held(10);
    ASSERT_EQ(held.Alloc(5), 0);
    std::thread t1(churn), t2(churn);
    t1.join();
    t2.join();
    MemStatCounts now = Stats();
    EXPECT_EQ(now.blocksTotal - before.blocksTotal, 2 * kPerThread + 1);
    EXPECT_EQ(now.bytesTotal - before.bytesTotal, (2 * kPerThread * 3 + 5) * 8);
    EXPECT_EQ(now.blocksOutstanding - before.blocksOutstanding, 1);
    MemStats::ResetTotals("TArray");
    std::thread t3(churn);
    t3.join();
    now = Stats();
    EXPECT_EQ(now.blocksTotal, kPerThread);
    EXPECT_EQ(now.failed, 0);
    held.Realloc(0);
    EXPECT_EQ(Stats().blocksOutstanding, before.blocksOutstanding);
}

TEST(TArrayElements, ArrayNewConstructsAndDeleteDestroysTheWholeCapacity) {
    Counted::Reset();
    {
        TArray<Counted> a(10);
        ASSERT_EQ(a.Alloc(4), 0);
        EXPECT_EQ(Counted::constructed, 4);
        a[0].value = 10;
        a[1].value = 11;
        ASSERT_EQ(a.Alloc(2), 0);
        ASSERT_EQ(a.Alloc(6), 0);
        EXPECT_EQ(Counted::constructed, 4 + 6);
        EXPECT_EQ(Counted::destroyed, 4); // the old block, beyond the count in use too
        EXPECT_EQ(Counted::assigned, 2);  // only the count in use travels
        EXPECT_EQ(a[0].value, 10);
        EXPECT_EQ(a[1].value, 11);

        TArray<Counted> copy(a);
        EXPECT_EQ(Counted::constructed, 10 + 6);
        EXPECT_EQ(copy[1].value, 11);
        ASSERT_EQ(a.Realloc(0), 0);
        EXPECT_EQ(Counted::destroyed, 4 + 6);
    }
    EXPECT_EQ(Counted::destroyed, Counted::constructed);

    Counted::Reset();
    {
        TMatrix<Counted> m;
        ASSERT_EQ(m.Alloc(2, 3), 0);
        ASSERT_EQ(m.Resize(3, 3), 0);
        EXPECT_EQ(Counted::constructed, 6 + 9);
        EXPECT_EQ(Counted::destroyed, 6);
    }
    EXPECT_EQ(Counted::destroyed, Counted::constructed);
}

TEST(TArrayCopy, CopyTakesGrowthStepAlignmentAndCapacity) {
    TArray<double> from(7, 64);
    ASSERT_EQ(from.Realloc(9), 0);
    Set(from, {1, 2, 3, 4});
    const TArray<double> copy(from);
    EXPECT_EQ(copy.GrowthStep(), 7);
    EXPECT_EQ(copy.Alignment(), 64);
    EXPECT_EQ(copy.Capacity(), 9);
    EXPECT_NE(copy.Data(), from.Data());
    EXPECT_TRUE(IsAligned(copy.Data(), 64));
    EXPECT_TRUE(copy == from);

    MArray<double> grid(3);
    Set(grid, {390, 400});
    const MArray<double> gridCopy(grid);
    EXPECT_EQ(gridCopy.GrowthStep(), 3);
    EXPECT_EQ(gridCopy.Alignment(), 1);
    EXPECT_EQ(Values(gridCopy), (std::vector<double>{390, 400}));
}

TEST(TArrayFailures, FailedStorageLeavesEverythingAsItWas) {
    for (int alignment : {1, 32}) {
        TArray<double> a(10, alignment);
        Set(a, {1, 2, 3});
        TArray<double> target(10, alignment);
        Set(target, {8, 9});
        const double* storage = a.Data();
        const MemStatCounts before = Stats();
        {
            ScopedFailure fail(FaultInjection::ArrayStorage, 1, true);
            EXPECT_EQ(a.Alloc(8), -1);
            EXPECT_EQ(a.Realloc(2), -1); // shrinking needs a new block too
            EXPECT_EQ(target.Assign(a), -1);
            const TArray<double> copy(a); // cannot fail loudly: it comes out empty
            EXPECT_EQ(copy.Capacity(), 0);
            EXPECT_EQ(copy.Data(), nullptr);
        }
        EXPECT_EQ(a.Data(), storage);
        EXPECT_EQ(a.Capacity(), 3);
        EXPECT_EQ(Values(a), (std::vector<double>{1, 2, 3}));
        EXPECT_EQ(Values(target), (std::vector<double>{8, 9}));
        EXPECT_EQ(target.Capacity(), 2);
        const MemStatCounts after = Stats();
        EXPECT_EQ(after.failed - before.failed, 4); // recorded with a null block
        EXPECT_EQ(after.blocksTotal, before.blocksTotal);
        EXPECT_EQ(after.blocksOutstanding, before.blocksOutstanding);
        EXPECT_EQ(after.bytesOutstanding, before.bytesOutstanding);
        EXPECT_TRUE(ReportLog::Entries().empty()); // out of memory is the caller's to report
    }

    Counted::Reset();
    TArray<Counted> c(10);
    {
        ScopedFailure fail(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(c.Alloc(4), -1);
    }
    EXPECT_EQ(Counted::constructed, 0);
    EXPECT_EQ(c.Count(), 0);
}

TEST(TMatrix, AllocReshapesInPlaceWhenTheElementCountStays) {
    TMatrix<double> m = Numbered(3, 2);
    const double* storage = m.Data();
    {
        ScopedFailure watch(FaultInjection::MatrixStorage, 0); // counts, never fails
        ASSERT_EQ(m.Alloc(2, 3), 0);
        EXPECT_EQ(FaultInjection::Counted(), 0);
    }
    EXPECT_EQ(m.Rows(), 2);
    EXPECT_EQ(m.Cols(), 3);
    EXPECT_EQ(m.Data(), storage);
    EXPECT_EQ(Elements(m), (std::vector<double>{0, 1, 10, 11, 20, 21}));
    EXPECT_EQ(m(1, 0), 11);

    ASSERT_EQ(m.Alloc(4, 2), 0);
    EXPECT_EQ(m.Elements(), 8);
}

TEST(TMatrix, NegativeDimensionsAreRefused) {
    TMatrix<double> m = Numbered(2, 2);
    EXPECT_EQ(m.Alloc(-1, 2), -1);
    EXPECT_EQ(m.Alloc(2, -1), -1);
    EXPECT_EQ(m.Resize(-1, 2), -1);
    EXPECT_EQ(m.Resize(2, -1), -1);
    EXPECT_EQ(m.Rows(), 2);
    EXPECT_EQ(m.Cols(), 2);
    EXPECT_EQ(Elements(m), (std::vector<double>{0, 1, 10, 11}));
}

TEST(TMatrix, ResizeKeepsTheOverlappingBlock) {
    TMatrix<double> shrink = Numbered(2, 2);
    ASSERT_EQ(shrink.Resize(1, 1), 0);
    EXPECT_EQ(Elements(shrink), (std::vector<double>{0}));

    TMatrix<double> grow = Numbered(2, 2);
    ASSERT_EQ(grow.Resize(3, 4), 0);
    for (int r = 0; r < 2; ++r)
        for (int c = 0; c < 2; ++c)
            EXPECT_EQ(grow(r, c), 10 * r + c) << r << "," << c;

    TMatrix<double> turn = Numbered(2, 3); // the same count, another shape: block, not bytes
    ASSERT_EQ(turn.Resize(3, 2), 0);
    EXPECT_EQ(turn(0, 1), 1);
    EXPECT_EQ(turn(1, 0), 10);
    EXPECT_EQ(turn(1, 1), 11);

    TMatrix<double> empty;
    ASSERT_EQ(empty.Resize(2, 2), 0);
    EXPECT_EQ(empty.Elements(), 4);
}

TEST(TMatrix, SwapExchangesStorageAndDimensions) {
    TMatrix<double> a, b;
    ASSERT_EQ(a.Alloc(1, 3), 0);
    ASSERT_EQ(b.Alloc(2, 2), 0);
    const double* storageA = a.Data();
    a.Swap(b);
    EXPECT_EQ(b.Data(), storageA);
    EXPECT_EQ(b.Rows(), 1);
    EXPECT_EQ(b.Cols(), 3);
    EXPECT_EQ(a.Rows(), 2);
    EXPECT_EQ(a.Cols(), 2);
}

TEST(TMatrix, FailedStorage) {
    TMatrix<double> m = Numbered(2, 2);
    const double* storage = m.Data();
    {
        ScopedFailure fail(FaultInjection::MatrixStorage, 1, true);
        EXPECT_EQ(m.Resize(3, 3), -1); // Resize leaves the matrix as it was
        EXPECT_EQ(m.Data(), storage);
        EXPECT_EQ(Elements(m), (std::vector<double>{0, 1, 10, 11}));
        const TMatrix<double> copy(m);
        EXPECT_EQ(copy.Elements(), 0);
        EXPECT_EQ(m.Alloc(3, 3), -1); // Alloc has released the old storage first
    }
    EXPECT_EQ(m.Rows(), 0);
    EXPECT_EQ(m.Cols(), 0);
    EXPECT_EQ(m.Data(), nullptr);
}

TEST(BArray, CopyValuesCopiesTheOverlapBetweenTwoStorages) {
    double a[3] = {1, 2, 3};
    double b[5] = {0, 0, 0, 0, 0};
    BArray<double> va(a, 3), vb(b, 5), none;
    vb.CopyValues(va);
    EXPECT_EQ(std::vector<double>(b, b + 5), (std::vector<double>{1, 2, 3, 0, 0}));
    b[0] = 7;
    va.CopyValues(vb);
    EXPECT_EQ(std::vector<double>(a, a + 3), (std::vector<double>{7, 2, 3}));
    none.CopyValues(va); // no storage on either side: nothing happens
    va.CopyValues(none);
    va.CopyValues(va);
    EXPECT_EQ(std::vector<double>(a, a + 3), (std::vector<double>{7, 2, 3}));
}
