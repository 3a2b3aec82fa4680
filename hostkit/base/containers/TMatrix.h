// TMatrix<T>: a row-major matrix on the plain heap; element (r, c) is data[r * columns + c].
// Its storage is not counted in the memory statistics.
#pragma once

#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"

#include <cstdint>
#include <new>
#include <utility>

namespace Korvane {

template <class T>
class TMatrix {
public:
    TMatrix() = default;
    TMatrix(const TMatrix& from) {
        if (from.data_ && Alloc(from.rows_, from.cols_) == 0)
            for (long long i = 0, n = Elements(); i < n; ++i)
                data_[i] = from.data_[i];
    }
    TMatrix& operator=(const TMatrix&) = delete;
    virtual ~TMatrix() { delete[] data_; }

    // Sizes to rows x cols. When the element count stays the same (and storage exists, or the
    // count is 0) only the dimensions change and the elements keep their bytes. 0 or -1.
    int Alloc(int rows, int cols) {
        if (rows < 0 || cols < 0)
            return -1;
        if (Overflows(rows, cols)) {
            Clear();
            return -1;
        }
        const long long n = static_cast<long long>(rows) * cols;
        if (n == Elements() && (n == 0 || data_)) {
            rows_ = rows;
            cols_ = cols;
            return 0;
        }
        delete[] data_;
        data_ = nullptr;
        T* block = FaultInjection::ShouldFail(FaultInjection::MatrixStorage)
                       ? nullptr
                       : new (std::nothrow) T[static_cast<std::size_t>(n)];
        if (!block) {
            MemStats::RecordFailure();
            rows_ = cols_ = 0;
            return -1;
        }
        data_ = block;
        rows_ = rows;
        cols_ = cols;
        return 0;
    }

    // Sizes to rows x cols keeping the overlapping block; on failure unchanged. 0 or -1.
    int Resize(int rows, int cols) {
        if (rows == rows_ && cols == cols_)
            return 0;
        if (rows < 0 || cols < 0)
            return -1;
        if (Overflows(rows, cols)) {
            Clear();
            return -1;
        }
        if (data_ && Elements() > 0) {
            TMatrix tmp;
            if (tmp.Alloc(rows, cols) != 0)
                return -1;
            const int r = rows < rows_ ? rows : rows_;
            const int c = cols < cols_ ? cols : cols_;
            for (int i = 0; i < r; ++i)
                for (int j = 0; j < c; ++j)
                    tmp.data_[i * cols + j] = data_[i * cols_ + j];
            Swap(tmp);
            return 0;
        }
        return Alloc(rows, cols);
    }

    void Swap(TMatrix& o) {
        std::swap(data_, o.data_);
        std::swap(rows_, o.rows_);
        std::swap(cols_, o.cols_);
    }

    int Rows() const { return rows_; }
    int Cols() const { return cols_; }
    long long Elements() const { return static_cast<long long>(rows_) * cols_; }
    T* Data() { return data_; }
    const T* Data() const { return data_; }
    T& operator()(int r, int c) { return data_[r * cols_ + c]; }
    const T& operator()(int r, int c) const { return data_[r * cols_ + c]; }

private:
    static bool Overflows(int rows, int cols) {
        return rows >= 1 && cols >= 1 &&
               static_cast<std::size_t>(INT64_MAX) / static_cast<std::size_t>(rows) /
                       static_cast<std::size_t>(cols) <
                   sizeof(T);
    }
    void Clear() {
        delete[] data_;
        data_ = nullptr;
        rows_ = cols_ = 0;
    }

    T* data_ = nullptr;
    int rows_ = 0;
    int cols_ = 0;
};

} // namespace Korvane
