// ValueRanges: the three (low, high) value ranges that the BW, RGB, XYZ and xyY models keep, one
// per channel, each (0, 1) in a new model and copied with the model. No operation of the library
// reads them; the model's Wavelengths slot hands them to the host.
#pragma once

#include "hostkit/base/Vectors.h"

namespace Korvane {

struct ValueRanges {
    static constexpr int kCount = 3;
    BBox1<double> range[kCount] = {{0.0, 1.0}, {0.0, 1.0}, {0.0, 1.0}};

    // Points `out` at the ranges and returns how many there are.
    int Get(const BBox1<double>*& out) const {
        out = range;
        return kCount;
    }
};

} // namespace Korvane
