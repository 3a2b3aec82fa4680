// ConvertColours: many colours of one model converted into another, one after the other,
// through the target model's ConvertColor, the same path a host's renderer takes for one colour.
// The loop runs in C++ over plain rows of doubles: no Python object per colour.
#pragma once

#include "python/src/ColourSlot.h"

#include <cstddef>

namespace Korvane::Py {

// Row i of `in` (the source slot's Doubles() values) becomes row i of `out` (the target's): the
// source model's Set...Color, the target model's ConvertColor, the target model's ...ToArray.
// The first conversion that fails throws LibraryError with the report's text and code and the
// row; the rows before it are converted, the rest of `out` is untouched.
void ConvertColours(const ColorModel& source, const ColorModel& target, Kind kind, const double* in,
                    std::size_t count, double* out);

} // namespace Korvane::Py
