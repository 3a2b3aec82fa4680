// SpectralModel<Pol>: the holders of spectral colours that the model makes, each handed out
// without a reference (HolderFactory). A holder's colours start empty, whether the model or the
// holder's type made it: the caller sizes them (the distribution's SetLength, by copying a sized
// colour, or by reading the holder from an archive). Included by SpectralModel.cpp.
#pragma once

#include "plugin/holders/HolderFactory.h"

namespace Korvane {

template <class Pol>
Holder<ILgtColor>* SpectralModel<Pol>::NewLgtColorHold() const {
    return HolderFactory::NewLgtColorHold<SpectralModel<Pol>>();
}

template <class Pol>
ArrayLgtColorHolder* SpectralModel<Pol>::NewArrayLgtColorHold(int n) const {
    return HolderFactory::NewArrayLgtColorHold<SpectralModel<Pol>>(n);
}

template <class Pol>
MatrixLgtColorHolder* SpectralModel<Pol>::NewMatrixLgtColorHold() const {
    return HolderFactory::NewMatrixLgtColorHold<SpectralModel<Pol>>();
}

template <class Pol>
Holder<IRayColor>* SpectralModel<Pol>::NewRayColorHold() const {
    return HolderFactory::NewRayColorHold<SpectralModel<Pol>>();
}

template <class Pol>
ArrayRayColorHolder* SpectralModel<Pol>::NewArrayRayColorHold() const {
    return HolderFactory::NewArrayRayColorHold<SpectralModel<Pol>>();
}

template <class Pol>
Holder<IScalarColor>* SpectralModel<Pol>::NewScalarColorHold() const {
    return HolderFactory::NewScalarColorHold<SpectralModel<Pol>>();
}

template <class Pol>
Holder<ISurfColor>* SpectralModel<Pol>::NewSurfColorHold() const {
    return HolderFactory::NewSurfColorHold<SpectralModel<Pol>>();
}

template <class Pol>
Holder<IDualLgtColor>* SpectralModel<Pol>::NewDualLgtColorHold() const {
    return HolderFactory::NewDualLgtColorHold<SpectralModel<Pol>>();
}

} // namespace Korvane
