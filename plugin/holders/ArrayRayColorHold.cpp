// ArrayRayColorHold<M>, and the one place where the six are instantiated.
#include "plugin/holders/ArrayRayColorHold.h"

#include "plugin/holders/WholeCopy.h"

namespace Korvane {

template <class M>
ArrayRayColorHold<M>::ArrayRayColorHold() {
    SetName("ArrayRayColorHold<CM>");
}

template <class M>
ArrayRayColorHold<M>::ArrayRayColorHold(const ArrayRayColorHold& other)
    : ArrayRayColorHolder(other), colours_(other.colours_) {}

template <class M>
ArrayRayColorHold<M>::~ArrayRayColorHold() = default;

template <class M>
TArray<typename ArrayRayColorHold<M>::Colour>& ArrayRayColorHold<M>::Colours() {
    return colours_;
}

template <class M>
const TArray<typename ArrayRayColorHold<M>::Colour>& ArrayRayColorHold<M>::Colours() const {
    return colours_;
}

template <class M>
Plug* ArrayRayColorHold<M>::Clone() const {
    return CloneWhole(*this, &ArrayRayColorHold::Colours);
}

template <class M>
IArray& ArrayRayColorHold<M>::Array() {
    return colours_;
}

template <class M>
const IArray& ArrayRayColorHold<M>::Array() const {
    return colours_;
}

template class ArrayRayColorHold<BWModel<Unpolarized>>;
template class ArrayRayColorHold<BWModel<StokesPolarization>>;
template class ArrayRayColorHold<RGBModel<Unpolarized>>;
template class ArrayRayColorHold<RGBModel<StokesPolarization>>;
template class ArrayRayColorHold<SpectralModel<Unpolarized>>;
template class ArrayRayColorHold<SpectralModel<StokesPolarization>>;

} // namespace Korvane
