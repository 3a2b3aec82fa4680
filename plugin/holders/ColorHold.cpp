// ColorHold<K> and ColorHoldType<K>, and the one place where the 30 of each are instantiated.
#include "plugin/holders/ColorHold.h"

#include "hostkit/base/User.h"
#include "plugin/holders/ColourArchive.h"
#include "plugin/holders/HolderIdents.h"
#include "plugin/holders/WholeCopy.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"

#include <string>

namespace Korvane {
namespace {

constexpr const char* kColorGroup = "Color";

// The word of each colour kind in holder type identifiers.
template <class I>
const char* KindWord();
template <>
const char* KindWord<ILgtColor>() {
    return "Lgt";
}
template <>
const char* KindWord<IRayColor>() {
    return "Ray";
}
template <>
const char* KindWord<ISurfColor>() {
    return "Surf";
}
template <>
const char* KindWord<IScalarColor>() {
    return "Scalar";
}
template <>
const char* KindWord<IDualLgtColor>() {
    return "DualLgt";
}

// The model type's identifier, the kind word and "ColorHold".
template <class K>
std::string HolderIdent() {
    return HolderIdents::FromClassType<typename K::Model>(
        std::string(KindWord<typename K::Interface>()) + "ColorHold");
}

} // namespace

template <class K>
ColorHold<K>::ColorHold() = default;

template <class K>
ColorHold<K>::ColorHold(const ColorHold& other)
    : Holder<Interface>(other), colour_(other.colour_) {}

template <class K>
ColorHold<K>::~ColorHold() = default;

template <class K>
PlugType* ColorHold<K>::ClassType() {
    return ColorHoldType<K>::Slot();
}

template <class K>
PlugType* ColorHold<K>::ObjType() const {
    return ClassType();
}

template <class K>
Plug* ColorHold<K>::Clone() const {
    return CloneWhole(*this, &ColorHold::Value);
}

template <class K>
typename ColorHold<K>::Interface& ColorHold<K>::Color() {
    return colour_;
}

template <class K>
const typename ColorHold<K>::Interface& ColorHold<K>::Color() const {
    return colour_;
}

template <class K>
K& ColorHold<K>::Value() {
    return colour_;
}

template <class K>
const K& ColorHold<K>::Value() const {
    return colour_;
}

template <class K>
ColorHoldType<K>::ColorHoldType()
    : PlugType(HolderIdent<K>().c_str(), Holder<typename K::Interface>::ClassType(), true,
               nullptr) {}

template <class K>
ColorHoldType<K>::~ColorHoldType() = default;

template <class K>
Plug* ColorHoldType<K>::NewInstance() {
    return new ColorHold<K>();
}

template <class K>
int ColorHoldType<K>::SerializeInstance(Plug* plug, Serializer& s) {
    auto* holder = dynamic_cast<ColorHold<K>*>(plug);
    if (!holder)
        return User()->InternalError("%s: SerializeInstance() of a plug that is not its holder",
                                     Ident().c_str());
    s.OpenGroup(kColorGroup);
    ColourArchive::Exchange(s, holder->Value());
    return s.CloseGroup();
}

template <class K>
PlugType*& ColorHoldType<K>::Slot() {
    static PlugType* type = nullptr;
    return type;
}

KORVANE_COLOR_HOLDS_OF(template class, BWModel<Unpolarized>)
KORVANE_COLOR_HOLDS_OF(template class, BWModel<StokesPolarization>)
KORVANE_COLOR_HOLDS_OF(template class, RGBModel<Unpolarized>)
KORVANE_COLOR_HOLDS_OF(template class, RGBModel<StokesPolarization>)
KORVANE_COLOR_HOLDS_OF(template class, SpectralModel<Unpolarized>)
KORVANE_COLOR_HOLDS_OF(template class, SpectralModel<StokesPolarization>)

} // namespace Korvane
