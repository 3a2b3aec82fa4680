// BArray<T>: a view on storage that it does not own (data and count). The base of the spectral
// distributions, which add ownership.
#pragma once

#include <cstring>
#include <type_traits>

namespace Korvane {

template <class T>
class BArray {
public:
    BArray() = default;
    BArray(T* data, int count) : data_(data), count_(count) {}
    BArray(const BArray&) = default;
    BArray& operator=(const BArray&) = default;
    virtual ~BArray() = default; // the storage is not this object's

    // Copies the first min(count, from.count) elements, bitwise, when `from` is another object
    // and both have storage.
    virtual void CopyValues(const BArray<T>& from) {
        if (&from == this || !data_ || !from.data_)
            return;
        const int n = count_ < from.count_ ? count_ : from.count_;
        if (n > 0) {
            static_assert(std::is_trivially_copyable_v<T>, "views copy their elements bitwise");
            std::memcpy(static_cast<void*>(data_), static_cast<const void*>(from.data_),
                        static_cast<std::size_t>(n) * sizeof(T));
        }
    }

    int Count() const { return count_; }
    T* Data() { return data_; }
    const T* Data() const { return data_; }
    T& operator[](int i) { return data_[i]; }
    const T& operator[](int i) const { return data_[i]; }

protected:
    T* data_ = nullptr;
    int count_ = 0;
};

} // namespace Korvane
