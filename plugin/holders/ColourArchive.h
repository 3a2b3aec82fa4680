// How one colour value is exchanged with an archive. One routine reads and writes; the archive
// decides the direction. A value goes out as its doubles in layout order:
//
//   fixed-size colour    every double, one exchange each (a Stokes RGB light: S0..S3 of r, then
//                        of g, then of b; a Mueller matrix row by row)
//   polarized ray colour the light colour, then the X orientation as one array of 3 doubles
//   spectral colour      the sample count (int), then every double of every sample, sample by
//                        sample
//
// A spectral colour goes out as it is stored, light colours too: every stored sample, inside its
// band or not, exchanged in place. The archive keeps no band. Reading sizes the colour to the
// stored count as the distribution's SetLength does: a colour of another count gets new samples
// and a light colour the band [0, count - 1]; a colour that already has that count keeps its
// storage and its band, and the samples read land in place.
#pragma once

#include "hostkit/base/Serializer.h"
#include "plugin/colour/ColourValues.h"

#include <cstdint>

namespace Korvane::ColourArchive {

template <class M, class I, class Comp, int N>
void Exchange(Serializer& s, FixedColour<M, I, Comp, N>& c) {
    for (int k = 0; k < FixedColour<M, I, Comp, N>::kDoubles; ++k)
        s.Serialize(c[k]);
}

// A count read from a damaged archive never reaches the allocation: SerializeCount refuses one
// that the rest of the input cannot hold. When the samples cannot be allocated the archive is
// marked out of memory and the colour stays empty.
template <class M, class I, class D>
void Exchange(Serializer& s, SpctrlColour<M, I, D>& c) {
    using Comp = typename D::Component;
    D& d = c.Distr();
    std::int32_t n = d.Count();
    s.SerializeCount(n, Comp::kSize);
    if (s.IsReading() && d.SetLength(n) != 0)
        s.SetAllocError();
    double* values = d.Values();
    const int doubles = d.Count() * Comp::kSize;
    for (int k = 0; k < doubles; ++k)
        s.Serialize(values[k]);
}

template <class M, class L, bool kPolarized>
void Exchange(Serializer& s, RayColour<M, L, kPolarized>& c) {
    Exchange(s, c.Light());
    if constexpr (kPolarized) {
        TVect3<double>& xort = c.XOrt();
        double values[3] = {xort.x, xort.y, xort.z};
        s.Serialize(values, 3);
        xort = TVect3<double>(values[0], values[1], values[2]);
    }
}

// The room that one element of an array of colours V takes at least, counted in doubles, for
// checking a stored element count against what the rest of the input can hold. A fixed-size
// colour is its doubles. A spectral colour may be empty: its sample count alone, an int, which
// takes at least half the room of a double in either archive; that is expressed by halving
// the element count (CanHoldColours) and asking for one double per element.
template <class V>
struct MinimumRoom {
    static constexpr int kDoubles = 1;
    static constexpr bool kHalfPerElement = true;
};
template <class M, class I, class Comp, int N>
struct MinimumRoom<FixedColour<M, I, Comp, N>> {
    static constexpr int kDoubles = FixedColour<M, I, Comp, N>::kDoubles;
    static constexpr bool kHalfPerElement = false;
};
template <class M, class L, bool kPolarized>
struct MinimumRoom<RayColour<M, L, kPolarized>> : MinimumRoom<L> {};

// Reading: whether the rest of the input can hold `elements` colours V, and whether it can
// justify their memory (Serializer::CanAllocate: an element of an empty spectral colour takes
// a few bytes of input and far more of memory); the archive fails when not (a negative count
// included). Writing: true.
template <class V>
bool CanHoldColours(Serializer& s, std::int64_t elements) {
    using Room = MinimumRoom<V>;
    const std::int64_t checked =
        Room::kHalfPerElement && elements > 0 ? (elements + 1) / 2 : elements;
    return s.CanHold(checked, Room::kDoubles) && s.CanAllocate(elements, sizeof(V));
}

} // namespace Korvane::ColourArchive
