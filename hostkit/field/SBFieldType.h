// SBFieldType<T>: the type of a bounded field, a quantity whose values lie in a closed interval
// [BottomLimit(), TopLimit()] (for example a wavelength in nanometres). It is a plug type like any
// other, registered under its identifier; the limits are fixed when it is made.
#pragma once

#include "hostkit/plugsys/PlugType.h"

namespace Korvane {

template <class T>
class KOR_HOST_API SBFieldType : public PlugType {
public:
    // A field type with identifier `ident` and the interval [bottom, top]; no parent, and no
    // plugs of its own to create or serialize.
    SBFieldType(const char* ident, T bottom, T top)
        : PlugType(ident, nullptr, false, nullptr), bottom_(bottom), top_(top) {}

    T BottomLimit() const { return bottom_; }
    T TopLimit() const { return top_; }

private:
    T bottom_;
    T top_;
};

// Instantiated once, in the host kit.
extern template class SBFieldType<double>;

} // namespace Korvane
