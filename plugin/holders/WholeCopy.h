// Whether a copy of a colour value, or of a container of them, is whole. Copying a spectral
// colour allocates samples of its own, and when that fails the copy is left empty; a container
// copy whose storage cannot be allocated is left empty too. Holders test their copies with
// IsWholeCopy, so that a clone is either a true copy or none at all (CloneWhole).
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "hostkit/base/containers/TMatrix.h"
#include "hostkit/plugsys/Plug.h"
#include "plugin/colour/ColourValues.h"

namespace Korvane {

template <class M, class I, class Comp, int N>
bool IsWholeCopy(const FixedColour<M, I, Comp, N>&, const FixedColour<M, I, Comp, N>&) {
    return true; // the values live in the colour itself
}

template <class M, class I, class D>
bool IsWholeCopy(const SpctrlColour<M, I, D>& from, const SpctrlColour<M, I, D>& copy) {
    return copy.Count() == from.Count();
}

template <class M, class L, bool kPolarized>
bool IsWholeCopy(const RayColour<M, L, kPolarized>& from, const RayColour<M, L, kPolarized>& copy) {
    return IsWholeCopy(from.Light(), copy.Light());
}

template <class V>
bool IsWholeCopy(const TArray<V>& from, const TArray<V>& copy) {
    if (copy.Count() != from.Count())
        return false;
    for (int i = 0; i < from.Count(); ++i)
        if (!IsWholeCopy(from[i], copy[i]))
            return false;
    return true;
}

template <class V>
bool IsWholeCopy(const TMatrix<V>& from, const TMatrix<V>& copy) {
    if (copy.Rows() != from.Rows() || copy.Cols() != from.Cols())
        return false;
    const long long n = from.Elements();
    if (n > 0 && !copy.Data())
        return false;
    for (long long i = 0; i < n; ++i)
        if (!IsWholeCopy(from.Data()[i], copy.Data()[i]))
            return false;
    return true;
}

// A copy of holder `h` made by its copy constructor, or null when memory runs out for the plug
// or for the values that it holds, reached through `held`.
template <class H, class V>
Plug* CloneWhole(const H& h, const V& (H::*held)() const) {
    H* copy = new H(h);
    if (copy && !IsWholeCopy((h.*held)(), (copy->*held)())) {
        delete copy;
        return nullptr;
    }
    return copy;
}

} // namespace Korvane
