// BWModel<Pol>: the holders of BW colours that the model makes, each handed out without a
// reference (HolderFactory). Included by BWModel.cpp.
#pragma once

#include "plugin/holders/HolderFactory.h"

namespace Korvane {

template <class Pol>
Holder<ILgtColor>* BWModel<Pol>::NewLgtColorHold() const {
    return HolderFactory::NewLgtColorHold<BWModel<Pol>>();
}

template <class Pol>
ArrayLgtColorHolder* BWModel<Pol>::NewArrayLgtColorHold(int n) const {
    return HolderFactory::NewArrayLgtColorHold<BWModel<Pol>>(n);
}

template <class Pol>
MatrixLgtColorHolder* BWModel<Pol>::NewMatrixLgtColorHold() const {
    return HolderFactory::NewMatrixLgtColorHold<BWModel<Pol>>();
}

template <class Pol>
Holder<IRayColor>* BWModel<Pol>::NewRayColorHold() const {
    return HolderFactory::NewRayColorHold<BWModel<Pol>>();
}

template <class Pol>
ArrayRayColorHolder* BWModel<Pol>::NewArrayRayColorHold() const {
    return HolderFactory::NewArrayRayColorHold<BWModel<Pol>>();
}

template <class Pol>
Holder<IScalarColor>* BWModel<Pol>::NewScalarColorHold() const {
    return HolderFactory::NewScalarColorHold<BWModel<Pol>>();
}

template <class Pol>
Holder<ISurfColor>* BWModel<Pol>::NewSurfColorHold() const {
    return HolderFactory::NewSurfColorHold<BWModel<Pol>>();
}

template <class Pol>
Holder<IDualLgtColor>* BWModel<Pol>::NewDualLgtColorHold() const {
    return HolderFactory::NewDualLgtColorHold<BWModel<Pol>>();
}

} // namespace Korvane
