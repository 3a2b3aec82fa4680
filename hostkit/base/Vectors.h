// Small value types of doubles: 2- and 3-vectors, a 3x3 matrix, intervals.
#pragma once

namespace Korvane {

template <class T>
struct TVect2 {
    T x, y;
    TVect2() = default;
    constexpr TVect2(T x_, T y_) : x(x_), y(y_) {}
    T& operator[](int i) { return i == 0 ? x : y; }
    const T& operator[](int i) const { return i == 0 ? x : y; }
};

template <class T>
struct TVect3 {
    T x, y, z;
    TVect3() = default;
    constexpr TVect3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    T& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
    const T& operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }
    bool operator==(const TVect3& o) const { return x == o.x && y == o.y && z == o.z; }
    bool operator!=(const TVect3& o) const { return !(*this == o); }
};

// Row-major 3x3 matrix: m[r][c].
struct TMatrix3 {
    double m[3][3];

    TVect3<double> operator*(const TVect3<double>& v) const {
        return {m[0][0] * v.x + m[0][1] * v.y + m[0][2] * v.z,
                m[1][0] * v.x + m[1][1] * v.y + m[1][2] * v.z,
                m[2][0] * v.x + m[2][1] * v.y + m[2][2] * v.z};
    }
    const double* operator[](int r) const { return m[r]; }
    double* operator[](int r) { return m[r]; }
};

// A closed interval [lo, hi].
template <class T>
struct BBox1 {
    T lo, hi;
};

// Three values of one type, one per channel.
template <class T>
struct BVect3 {
    T v[3];
    T& operator[](int i) { return v[i]; }
    const T& operator[](int i) const { return v[i]; }
};

} // namespace Korvane
