// BWModel<Pol>: identity and construction, and the one place where both instantiations are made.
// The operations are grouped by theme in the BW*.inl files included below.
#include "plugin/models/BWModel.h"

#include "plugin/frame/LibraryObjects.h"

namespace Korvane {
namespace {

constexpr int kBWKindBit = 16;

template <class Pol>
constexpr ModelKind kBWKind = Pol::kIsPolarized ? ModelKind::StkBW : ModelKind::UBW;

} // namespace

const char* BBWModel::Tag() {
    return "BW";
}

template <class Pol>
BWModel<Pol>::BWModel() {
    if (PlugType* type = ClassType())
        this->SetName(type->Ident().c_str());
}

template <class Pol>
BWModel<Pol>::BWModel(const BWModel& other)
    : BBWModel(other), FixedColourModel<BWModel<Pol>>(other) {}

template <class Pol>
BWModel<Pol>::~BWModel() = default;

template <class Pol>
PlugType* BWModel<Pol>::ClassType() {
    return Library::Slot(kBWKind<Pol>).type;
}

template <class Pol>
BWModel<Pol>* BWModel<Pol>::GetModel() {
    return static_cast<BWModel*>(Library::Slot(kBWKind<Pol>).model.Get());
}

template <class Pol>
PlugType* BWModel<Pol>::ObjType() const {
    return ClassType();
}

template <class Pol>
const char* BWModel<Pol>::ClassName() {
    return Pol::kIsPolarized ? "BWModel<StokesPolarization>" : "BWModel<Unpolarized>";
}

template <class Pol>
int BWModel<Pol>::GetModelCode() const {
    return kBWKindBit + Pol::kPolarizationBit;
}

template <class Pol>
bool BWModel<Pol>::HasPolarization() const {
    return Pol::kIsPolarized;
}

template <class Pol>
bool BWModel<Pol>::IsBW() const {
    return true;
}

template <class Pol>
int BWModel<Pol>::NWaves() const {
    return 1;
}

template <class Pol>
void BWModel<Pol>::SetRangedColor(ILgtColor&, const double*) const {}

} // namespace Korvane

#include "plugin/models/BWArithmetic.inl"
#include "plugin/models/BWConversions.inl"
#include "plugin/models/BWDisplay.inl"
#include "plugin/models/BWHolders.inl"

namespace Korvane {

template class BWModel<Unpolarized>;
template class BWModel<StokesPolarization>;

} // namespace Korvane
