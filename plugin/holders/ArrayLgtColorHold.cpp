// ArrayLgtColorHold<M> and its type, and the one place where the six of each are instantiated.
#include "plugin/holders/ArrayLgtColorHold.h"

#include "hostkit/base/User.h"
#include "plugin/holders/ColourArchive.h"
#include "plugin/holders/HolderIdents.h"
#include "plugin/holders/WholeCopy.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"

#include <cstdint>

namespace Korvane {
namespace {
constexpr const char* kDataGroup = "Data";
} // namespace

template <class M>
ArrayLgtColorHold<M>::ArrayLgtColorHold() {
    SetName("ArrayLgtColorHold<CM>");
}

template <class M>
ArrayLgtColorHold<M>::ArrayLgtColorHold(const ArrayLgtColorHold& other)
    : ArrayLgtColorHolder(other), colours_(other.colours_) {}

template <class M>
ArrayLgtColorHold<M>::~ArrayLgtColorHold() = default;

template <class M>
TArray<typename ArrayLgtColorHold<M>::Colour>& ArrayLgtColorHold<M>::Colours() {
    return colours_;
}

template <class M>
const TArray<typename ArrayLgtColorHold<M>::Colour>& ArrayLgtColorHold<M>::Colours() const {
    return colours_;
}

template <class M>
PlugType* ArrayLgtColorHold<M>::ClassType() {
    return ArrayLgtColorHoldType<M>::Slot();
}

template <class M>
PlugType* ArrayLgtColorHold<M>::ObjType() const {
    return ClassType();
}

template <class M>
Plug* ArrayLgtColorHold<M>::Clone() const {
    return CloneWhole(*this, &ArrayLgtColorHold::Colours);
}

template <class M>
int ArrayLgtColorHold<M>::Resize(int n) {
    if (colours_.Alloc(n) != 0)
        return User()->ErrorNoMemory(-1);
    return 0;
}

template <class M>
ILgtColor* ArrayLgtColorHold<M>::Element(int i) {
    return colours_.Data() + i;
}

template <class M>
bool ArrayLgtColorHold<M>::IsEqual(const ArrayLgtColorHolder& other) const {
    const auto* o = dynamic_cast<const ArrayLgtColorHold*>(&other);
    return o && colours_.IsEqual(o->colours_);
}

template <class M>
bool ArrayLgtColorHold<M>::IsNotEqual(const ArrayLgtColorHolder& other) const {
    return !ArrayLgtColorHold::IsEqual(other);
}

template <class M>
ArrayLgtColorHoldType<M>::ArrayLgtColorHoldType()
    : PlugType(HolderIdents::FromModel<M>("ArrayLgtColorHold").c_str(), TArrayLgtColorHolder, true,
               nullptr) {}

template <class M>
ArrayLgtColorHoldType<M>::~ArrayLgtColorHoldType() = default;

template <class M>
Plug* ArrayLgtColorHoldType<M>::NewInstance() {
    return new ArrayLgtColorHold<M>();
}

template <class M>
int ArrayLgtColorHoldType<M>::SerializeInstance(Plug* plug, Serializer& s) {
    auto* holder = dynamic_cast<ArrayLgtColorHold<M>*>(plug);
    if (!holder)
        return User()->InternalError("%s: SerializeInstance() of a plug that is not its holder",
                                     Ident().c_str());
    using Colour = typename ArrayLgtColorHold<M>::Colour;
    TArray<Colour>& colours = holder->Colours();
    s.OpenGroup(kDataGroup);
    if (s.IsReading()) {
        colours.Alloc(0);
        std::int32_t n = 0;
        s.Serialize(n);
        if (ColourArchive::CanHoldColours<Colour>(s, n) && colours.Alloc(n) != 0)
            s.SetAllocError();
    } else if (colours.Count() > 0) {
        std::int32_t n = colours.Count();
        s.Serialize(n);
    }
    for (Colour& c : colours)
        ColourArchive::Exchange(s, c);
    return s.CloseGroup();
}

template <class M>
PlugType*& ArrayLgtColorHoldType<M>::Slot() {
    static PlugType* type = nullptr;
    return type;
}

KORVANE_ARRAY_LGT_HOLDS_OF(template class, BWModel<Unpolarized>)
KORVANE_ARRAY_LGT_HOLDS_OF(template class, BWModel<StokesPolarization>)
KORVANE_ARRAY_LGT_HOLDS_OF(template class, RGBModel<Unpolarized>)
KORVANE_ARRAY_LGT_HOLDS_OF(template class, RGBModel<StokesPolarization>)
KORVANE_ARRAY_LGT_HOLDS_OF(template class, SpectralModel<Unpolarized>)
KORVANE_ARRAY_LGT_HOLDS_OF(template class, SpectralModel<StokesPolarization>)

} // namespace Korvane
