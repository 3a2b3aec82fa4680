// SpectralModel<Pol>: the holders of spectral colours that the model makes, each handed out
// without a reference (HolderFactory). A holder made by the model holds colours of the model's
// length, one zero component per wavelength (light colours banded over the whole grid), so that
// conversions and arithmetic into it fill every wavelength. (A holder made by its type alone
// knows no model and starts empty; reading it from an archive sizes it.) When the colours cannot
// be sized the slot reports ErrorNoMemory(-1) and returns null, as for the holder itself.
// Included by SpectralModel.cpp.
#pragma once

#include "plugin/holders/HolderFactory.h"

namespace Korvane {
namespace SpectralHolders {

// Sizes a spectral colour to n zero components; false when out of memory.
template <class Colour>
bool SizeTo(Colour& colour, int n) {
    auto& d = colour.Distr();
    if (d.SetLength(n) != 0)
        return false;
    for (int i = 0; i < n; ++i)
        d[i] = typename Colour::Component{};
    return true;
}

// The light part of a ray colour, or the colour itself.
template <class C>
auto& Sized(C& colour) {
    if constexpr (std::is_base_of_v<IRayColor, C>)
        return colour.Light();
    else
        return colour;
}

// Sizes the colour of a new holder of model M; hands the holder out, or null after the report.
template <class M, class I>
Holder<I>* WithModelLength(Holder<I>* made, int n) {
    TPlugRef<Holder<I>> holder = made;
    if (!holder.Get())
        return nullptr;
    if (!SizeTo(Sized(ColourAccess::Value<M>(holder->Color())), n)) {
        User()->ErrorNoMemory(-1);
        return nullptr;
    }
    return holder.ReturnObjNoDelete();
}

} // namespace SpectralHolders

template <class Pol>
Holder<ILgtColor>* SpectralModel<Pol>::NewLgtColorHold() const {
    return SpectralHolders::WithModelLength<SpectralModel>(
        HolderFactory::NewLgtColorHold<SpectralModel<Pol>>(), NWaves());
}

template <class Pol>
ArrayLgtColorHolder* SpectralModel<Pol>::NewArrayLgtColorHold(int n) const {
    TPlugRef<ArrayLgtColorHolder> holder = HolderFactory::NewArrayLgtColorHold<SpectralModel>(n);
    if (!holder.Get())
        return nullptr;
    for (int i = 0; i < n; ++i) {
        if (!SpectralHolders::SizeTo(ColourAccess::Value<SpectralModel>(*holder->Element(i)),
                                     NWaves())) {
            User()->ErrorNoMemory(-1);
            return nullptr;
        }
    }
    return holder.ReturnObjNoDelete();
}

template <class Pol>
MatrixLgtColorHolder* SpectralModel<Pol>::NewMatrixLgtColorHold() const {
    return HolderFactory::NewMatrixLgtColorHold<SpectralModel<Pol>>();
}

template <class Pol>
Holder<IRayColor>* SpectralModel<Pol>::NewRayColorHold() const {
    return SpectralHolders::WithModelLength<SpectralModel>(
        HolderFactory::NewRayColorHold<SpectralModel<Pol>>(), NWaves());
}

template <class Pol>
ArrayRayColorHolder* SpectralModel<Pol>::NewArrayRayColorHold() const {
    return HolderFactory::NewArrayRayColorHold<SpectralModel<Pol>>();
}

template <class Pol>
Holder<IScalarColor>* SpectralModel<Pol>::NewScalarColorHold() const {
    return SpectralHolders::WithModelLength<SpectralModel>(
        HolderFactory::NewScalarColorHold<SpectralModel<Pol>>(), NWaves());
}

template <class Pol>
Holder<ISurfColor>* SpectralModel<Pol>::NewSurfColorHold() const {
    return SpectralHolders::WithModelLength<SpectralModel>(
        HolderFactory::NewSurfColorHold<SpectralModel<Pol>>(), NWaves());
}

template <class Pol>
Holder<IDualLgtColor>* SpectralModel<Pol>::NewDualLgtColorHold() const {
    return SpectralHolders::WithModelLength<SpectralModel>(
        HolderFactory::NewDualLgtColorHold<SpectralModel<Pol>>(), NWaves());
}

} // namespace Korvane
