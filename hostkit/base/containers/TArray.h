// TArray<T>: the host's owning, growable array with exact growth and memory accounting.
//
// Capacity changes only through Realloc, to exactly the size asked for; Alloc grows to the
// requested count and never shrinks storage. Storage is either array-new on the plain heap
// (alignment 1: elements default-constructed and destroyed) or Envi::AlignedMalloc (any other
// alignment: no construction at all). Aligned storage is only offered for element types that
// need no construction, copy or destruction; for any other type the aligned constructor does not
// exist, so the combination is refused at compile time. Every block is reported to the memory
// statistics under "TArray" (capacity x element size).
#pragma once

#include "hostkit/base/Envi.h"
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

namespace Korvane {

inline constexpr const char* kArrayMemTag = "TArray";

// True for element types that may live in aligned, unconstructed storage.
template <class T>
inline constexpr bool kIsAlignableElement = std::is_trivially_default_constructible_v<T>&&
    std::is_trivially_copyable_v<T>&& std::is_trivially_destructible_v<T>;

template <class T>
class TArray : public IArray {
public:
    // Plain-heap storage, for every element type.
    explicit TArray(int growthStep) : growthStep_(growthStep), alignment_(1) {}

    // Plain (alignment 1) or aligned storage; only for element types without construction.
    template <class U = T,
              std::enable_if_t<std::is_same_v<U, T> && kIsAlignableElement<U>, int> = 0>
    TArray(int growthStep, int alignment) : growthStep_(growthStep), alignment_(alignment) {}

    // Takes the source's growth step and alignment, then copies it with Assign.
    TArray(const TArray& from) : growthStep_(from.growthStep_), alignment_(from.alignment_) {
        Assign(from);
    }
    TArray& operator=(const TArray&) = delete; // copies are explicit: Assign

    ~TArray() override {
        if (data_) {
            DelMemStat(Bytes(capacity_), data_, kArrayMemTag);
            ReleaseBlock(data_);
        }
    }

    // Reallocates to a capacity of exactly newCapacity. 0 on success, -1 when out of memory (the
    // array unchanged), or the code of the InternalError report for a negative or overflowing size.
    int Realloc(int newCapacity);

    // Makes the count n, reallocating (to exactly n) only when n exceeds the capacity.
    int Alloc(int n) {
        if (n < 0)
            return User()->InternalError("TArray::Alloc(): 32 bit overflow?");
        if (n > capacity_) {
            const int r = Realloc(n);
            if (r != 0)
                return r;
        }
        count_ = n;
        return 0;
    }

    // Reallocates to the source's capacity and copies its count elements; -1 and unchanged when
    // out of memory.
    int Assign(const TArray& from) {
        if (&from == this)
            return 0;
        if (Realloc(from.capacity_) != 0)
            return -1;
        count_ = from.count_;
        CopyElements(data_, from.data_, count_);
        return 0;
    }

    void Fill(const T& v) {
        for (int i = 0; i < count_; ++i)
            data_[i] = v;
    }

    // Same count and every pair equal by == (a NaN never matches); two empty arrays are equal.
    bool IsEqual(const TArray& o) const {
        if (count_ != o.count_)
            return false;
        for (int i = 0; i < count_; ++i)
            if (!(data_[i] == o.data_[i]))
                return false;
        return true;
    }
    bool operator==(const TArray& o) const { return IsEqual(o); }
    bool operator!=(const TArray& o) const { return !IsEqual(o); }

    int Count() const { return count_; }
    int Capacity() const { return capacity_; }
    int GrowthStep() const { return growthStep_; }
    int Alignment() const { return alignment_; }
    T* Data() { return data_; }
    const T* Data() const { return data_; }
    T& operator[](int i) { return data_[i]; }
    const T& operator[](int i) const { return data_[i]; }
    T* begin() { return data_; }
    T* end() { return data_ + count_; }
    const T* begin() const { return data_; }
    const T* end() const { return data_ + count_; }

private:
    static std::size_t Bytes(int n) { return static_cast<std::size_t>(n) * sizeof(T); }

    T* AllocateBlock(int n) const;
    void ReleaseBlock(T* block) const;
    static void CopyElements(T* to, const T* from, int n);

    T* data_ = nullptr;
    int count_ = 0;
    int capacity_ = 0;
    int growthStep_;
    int alignment_;
};

// Derived arrays with the same layout and behaviour; MArray is the type of every wave grid and
// weight vector, SArray a further member of the family kept for the host.
template <class T>
class GArray : public TArray<T> {
public:
    using TArray<T>::TArray;
    GArray(const GArray& from) : TArray<T>(from) {}
    GArray& operator=(const GArray&) = delete;
};

template <class T>
class MArray : public GArray<T> {
public:
    explicit MArray(int growthStep = 10) : GArray<T>(growthStep) {}
    MArray(const MArray& from) : GArray<T>(from) {}
    MArray& operator=(const MArray&) = delete;
};

template <class T>
class SArray : public MArray<T> {
public:
    using MArray<T>::MArray;
};

// ---- implementation -------------------------------------------------------------------------

template <class T>
int TArray<T>::Realloc(int newCapacity) {
    if (newCapacity < 0)
        return User()->InternalError("TArray: new_size=%d < 0 (32 bit overflow?)", newCapacity);
    if (newCapacity == capacity_)
        return 0;
    if (newCapacity == 0) {
        if (data_) {
            DelMemStat(Bytes(capacity_), data_, kArrayMemTag);
            ReleaseBlock(data_);
        }
        data_ = nullptr;
        count_ = 0;
        capacity_ = 0;
        return 0;
    }
    if (static_cast<std::size_t>(INT64_MAX) / static_cast<std::size_t>(newCapacity) < sizeof(T))
        return User()->InternalError("TArray: new_size=%d * %d (32 bit overflow?)", newCapacity,
                                     static_cast<int>(sizeof(T)));
    T* block = AllocateBlock(newCapacity);
    // The attempt is recorded before the null test: a failed allocation shows as a null block.
    AddMemStat(Bytes(newCapacity), block, kArrayMemTag);
    if (!block)
        return -1;
    if (data_)
        DelMemStat(Bytes(capacity_), data_, kArrayMemTag);
    capacity_ = newCapacity;
    if (count_ > newCapacity)
        count_ = newCapacity;
    if (data_) {
        CopyElements(block, data_, count_);
        ReleaseBlock(data_);
    }
    data_ = block;
    return 0;
}

template <class T>
T* TArray<T>::AllocateBlock(int n) const {
    if (FaultInjection::ShouldFail(FaultInjection::ArrayStorage))
        return nullptr;
    if constexpr (kIsAlignableElement<T>) {
        if (alignment_ != 1) {
            // Rounded up to a whole number of alignment units; an alignment below 1 leaves the
            // size alone (Envi raises such an alignment to the pointer size).
            std::size_t bytes = Bytes(n);
            if (alignment_ > 1) {
                const auto a = static_cast<std::size_t>(alignment_);
                bytes = (bytes + a - 1) / a * a;
            }
            return static_cast<T*>(Envi::AlignedMalloc(bytes, alignment_));
        }
    }
    return new (std::nothrow) T[static_cast<std::size_t>(n)];
}

template <class T>
void TArray<T>::ReleaseBlock(T* block) const {
    if constexpr (kIsAlignableElement<T>) {
        if (alignment_ != 1) {
            Envi::AlignedFree(block);
            return;
        }
    }
    delete[] block;
}

template <class T>
void TArray<T>::CopyElements(T* to, const T* from, int n) {
    if (n <= 0)
        return;
    if constexpr (std::is_trivially_copyable_v<T>) {
        std::memcpy(static_cast<void*>(to), static_cast<const void*>(from), Bytes(n));
    } else {
        for (int i = 0; i < n; ++i)
            to[i] = from[i];
    }
}

} // namespace Korvane
