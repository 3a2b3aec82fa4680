// ArrayLgtColorHold<M>: a host plug that keeps a one-dimensional array of light colours of model
// M, the renderer's per-element colour buffer. The colours lie contiguously and are reached by
// address without checks, so that they can be read and written in place. ArrayLgtColorHoldType<M>
// is its plug type: identifier "<model>ArrayLgtColorHold" (e.g. "UBWArrayLgtColorHold"), parent
// the host's TArrayLgtColorHolder.
//
// In an archive the holder is one group "Data": the element count (an int) when the array is not
// empty, then every colour in order (ColourArchive.h). An empty array writes nothing inside the
// group, while reading always asks for the count; the archive answers 0 at the end of a group.
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "hostkit/colormodel/Holders.h"
#include "plugin/PluginExport.h"
#include "plugin/colour/ColourValues.h"

namespace Korvane {

template <class M>
class KOR_PLUGIN_API ArrayLgtColorHold : public ArrayLgtColorHolder {
public:
    using Colour = LgtColor<M>;

    // Empty; the plug's name is "ArrayLgtColorHold<CM>".
    ArrayLgtColorHold();
    // Copies every colour (a spectral colour gets samples of its own).
    ArrayLgtColorHold(const ArrayLgtColorHold& other);
    ~ArrayLgtColorHold() override;

    // The holder's ArrayLgtColorHoldType<M>, null while the library is not registered.
    static PlugType* ClassType();

    PlugType* ObjType() const override;
    // A copy of this holder, or null when memory runs out.
    Plug* Clone() const override;
    // Makes the count n (Alloc of the array: storage grows to exactly n, never shrinks). 0, or
    // the code of the no-memory report when the array cannot be sized.
    int Resize(int n) override;
    ILgtColor* Element(int i) override;
    // Same count and every stored double equal (a NaN never is); two empty arrays are equal. An
    // array of another model's holder is never equal.
    bool IsEqual(const ArrayLgtColorHolder& other) const override;
    bool IsNotEqual(const ArrayLgtColorHolder& other) const override;

    TArray<Colour>& Colours();
    const TArray<Colour>& Colours() const;

private:
    TArray<Colour> colours_{10};
};

template <class M>
class KOR_PLUGIN_API ArrayLgtColorHoldType : public PlugType {
public:
    ArrayLgtColorHoldType();
    ~ArrayLgtColorHoldType() override;

    // A new empty holder, or null when memory runs out (nothing reported).
    Plug* NewInstance() override;
    // The group "Data" as above; a count that cannot be allocated marks the archive out of
    // memory. The result of closing the group; an internal error for a plug of another class.
    int SerializeInstance(Plug* plug, Serializer& s) override;

    // The library-wide pointer to the type object.
    static PlugType*& Slot();
};

#define KORVANE_ARRAY_LGT_HOLDS_OF(declare, M)                                                     \
    declare ArrayLgtColorHold<M>;                                                                  \
    declare ArrayLgtColorHoldType<M>;

KORVANE_ARRAY_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, BWModel<Unpolarized>)
KORVANE_ARRAY_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, BWModel<StokesPolarization>)
KORVANE_ARRAY_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, RGBModel<Unpolarized>)
KORVANE_ARRAY_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, RGBModel<StokesPolarization>)
KORVANE_ARRAY_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, SpectralModel<Unpolarized>)
KORVANE_ARRAY_LGT_HOLDS_OF(extern template class KOR_PLUGIN_API, SpectralModel<StokesPolarization>)

} // namespace Korvane
