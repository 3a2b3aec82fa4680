// ColorHold<K>: a host plug that owns one colour value K, a light, ray, surface, scalar or dual
// light colour of one model, so that the host can keep a colour as a named, cloneable,
// serialisable object (the colour of a light or a material). ColorHoldType<K> is its plug type:
// it names the holder, makes new ones and exchanges their colour with archives.
//
// Type identifier: the identifier of the model's type, the kind word ("Lgt", "Ray", "Surf",
// "Scalar", "DualLgt") and "ColorHold", e.g. "UBWLgtColorHold", "StkSpectrDualLgtColorHold"; its
// parent is the host's holder type of the same kind (Holder<ILgtColor>::ClassType(), ...). In an
// archive a holder is one group "Color" holding its value (ColourArchive.h).
//
// XYZ and xyY colours live in the holders of RGBModel<Unpolarized>: there are 30 holder classes,
// five kinds of the BW, RGB and spectral models of either polarization.
#pragma once

#include "hostkit/colormodel/Holders.h"
#include "plugin/PluginExport.h"
#include "plugin/colour/ColourValues.h"

namespace Korvane {

template <class K>
class KOR_PLUGIN_API ColorHold : public Holder<typename K::Interface> {
public:
    using Interface = typename K::Interface;
    using Model = typename K::Model;

    // A new holder's colour reads zero (a spectral colour is empty); a polarized ray colour has
    // the X orientation (1, 0, 0).
    ColorHold();
    // Copies the colour; a spectral colour gets samples of its own.
    ColorHold(const ColorHold& other);
    ~ColorHold() override;

    // The holder's ColorHoldType<K>, null while the library is not registered.
    static PlugType* ClassType();

    PlugType* ObjType() const override;
    // A copy of this holder, or null when memory runs out (for the plug or for the samples).
    Plug* Clone() const override;
    Interface& Color() override;
    const Interface& Color() const override;

    K& Value();
    const K& Value() const;

private:
    K colour_{};
};

template <class K>
class KOR_PLUGIN_API ColorHoldType : public PlugType {
public:
    // Identifier and parent as above; flag 1, no display name of its own.
    ColorHoldType();
    ~ColorHoldType() override;

    // A new holder, or null when memory runs out (nothing reported).
    Plug* NewInstance() override;
    // The group "Color" with the holder's colour; the result of closing the group. An internal
    // error for a plug that is not a ColorHold<K>.
    int SerializeInstance(Plug* plug, Serializer& s) override;

    // The library-wide pointer to the type object: filled by registration, deleted and nulled
    // by termination.
    static PlugType*& Slot();
};

// The holder and its type for the five kinds of model M.
#define KORVANE_COLOR_HOLDS_OF(declare, M)                                                         \
    declare ColorHold<LgtColor<M>>;                                                                \
    declare ColorHold<RayColor<M>>;                                                                \
    declare ColorHold<SurfColor<M>>;                                                               \
    declare ColorHold<ScalarColor<M>>;                                                             \
    declare ColorHold<DualLgtColor<M>>;                                                            \
    declare ColorHoldType<LgtColor<M>>;                                                            \
    declare ColorHoldType<RayColor<M>>;                                                            \
    declare ColorHoldType<SurfColor<M>>;                                                           \
    declare ColorHoldType<ScalarColor<M>>;                                                         \
    declare ColorHoldType<DualLgtColor<M>>;

KORVANE_COLOR_HOLDS_OF(extern template class KOR_PLUGIN_API, BWModel<Unpolarized>)
KORVANE_COLOR_HOLDS_OF(extern template class KOR_PLUGIN_API, BWModel<StokesPolarization>)
KORVANE_COLOR_HOLDS_OF(extern template class KOR_PLUGIN_API, RGBModel<Unpolarized>)
KORVANE_COLOR_HOLDS_OF(extern template class KOR_PLUGIN_API, RGBModel<StokesPolarization>)
KORVANE_COLOR_HOLDS_OF(extern template class KOR_PLUGIN_API, SpectralModel<Unpolarized>)
KORVANE_COLOR_HOLDS_OF(extern template class KOR_PLUGIN_API, SpectralModel<StokesPolarization>)

} // namespace Korvane
