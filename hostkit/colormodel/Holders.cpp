#include "hostkit/colormodel/Holders.h"

#include <iterator>

namespace Korvane {

PlugType* TArrayLgtColorHolder = nullptr;
PlugType* TMatrixLgtColorHolder = nullptr;
PlugType* TArrayRayColorHolder = nullptr;

namespace {

PlugType* gLgtColorHolder = nullptr;
PlugType* gRayColorHolder = nullptr;
PlugType* gSurfColorHolder = nullptr;
PlugType* gScalarColorHolder = nullptr;
PlugType* gDualLgtColorHolder = nullptr;

struct HolderTypeSlot {
    PlugType** type;
    const char* ident;
};

constexpr HolderTypeSlot kHolderTypeSlots[] = {
    {&gLgtColorHolder, "LgtColorHolder"},
    {&gRayColorHolder, "RayColorHolder"},
    {&gSurfColorHolder, "SurfColorHolder"},
    {&gScalarColorHolder, "ScalarColorHolder"},
    {&gDualLgtColorHolder, "DualLgtColorHolder"},
    {&TArrayLgtColorHolder, "ArrayLgtColorHolder"},
    {&TMatrixLgtColorHolder, "MatrixLgtColorHolder"},
    {&TArrayRayColorHolder, "ArrayRayColorHolder"},
};

// The holder base types: abstract (no parent, nothing to create or serialize), made while the
// host library is initialised, before any plug-in can load, and deleted, in reverse, when the
// host library is finalised after every plug-in is gone.
struct HolderTypes {
    HolderTypes() {
        for (const HolderTypeSlot& s : kHolderTypeSlots)
            *s.type = new PlugType(s.ident, nullptr, false, nullptr);
    }
    ~HolderTypes() {
        for (auto it = std::rbegin(kHolderTypeSlots); it != std::rend(kHolderTypeSlots); ++it)
            DeleteType(*it->type);
    }
    HolderTypes(const HolderTypes&) = delete;
    HolderTypes& operator=(const HolderTypes&) = delete;
};

const HolderTypes gHolderTypes;

} // namespace

template <>
PlugType* Holder<ILgtColor>::ClassType() {
    return gLgtColorHolder;
}
template <>
PlugType* Holder<IRayColor>::ClassType() {
    return gRayColorHolder;
}
template <>
PlugType* Holder<ISurfColor>::ClassType() {
    return gSurfColorHolder;
}
template <>
PlugType* Holder<IScalarColor>::ClassType() {
    return gScalarColorHolder;
}
template <>
PlugType* Holder<IDualLgtColor>::ClassType() {
    return gDualLgtColorHolder;
}

PlugType* ArrayRayColorHolder::ObjType() const {
    return TArrayRayColorHolder;
}

} // namespace Korvane
