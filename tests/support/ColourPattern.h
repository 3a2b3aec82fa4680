// Colour values filled with a recognisable pattern, for the holder tests and the fuzz seeds:
// distinct values, none zero, that start at `seed` and rise by 0.25; a spectral colour gets three
// samples and a polarized ray colour the X orientation (0, seed, 1).
#pragma once

#include "plugin/colour/ColourValues.h"

namespace Korvane::Testing {

// False when a spectral colour cannot be sized (its values are then left as they were).
template <class M, class I, class Comp, int N>
bool FillPattern(FixedColour<M, I, Comp, N>& c, double seed) {
    for (int k = 0; k < FixedColour<M, I, Comp, N>::kDoubles; ++k)
        c[k] = seed + 0.25 * k;
    return true;
}
template <class M, class I, class D>
bool FillPattern(SpctrlColour<M, I, D>& c, double seed) {
    if (c.Distr().SetLength(3) != 0)
        return false;
    for (int k = 0; k < 3 * D::Component::kSize; ++k)
        c.Values()[k] = seed + 0.25 * k;
    return true;
}
template <class M, class L, bool kPolarized>
bool FillPattern(RayColour<M, L, kPolarized>& c, double seed) {
    if constexpr (kPolarized)
        c.XOrt() = TVect3<double>(0.0, seed, 1.0);
    return FillPattern(c.Light(), seed);
}

} // namespace Korvane::Testing
