// RGBModel<Pol>: the holders of RGB colours that the model makes, each handed out without a
// reference (HolderFactory). Included by RGBModel.cpp.
#pragma once

#include "plugin/holders/HolderFactory.h"

namespace Korvane {

template <class Pol>
Holder<ILgtColor>* RGBModel<Pol>::NewLgtColorHold() const {
    return HolderFactory::NewLgtColorHold<RGBModel<Pol>>();
}

template <class Pol>
ArrayLgtColorHolder* RGBModel<Pol>::NewArrayLgtColorHold(int n) const {
    return HolderFactory::NewArrayLgtColorHold<RGBModel<Pol>>(n);
}

template <class Pol>
MatrixLgtColorHolder* RGBModel<Pol>::NewMatrixLgtColorHold() const {
    return HolderFactory::NewMatrixLgtColorHold<RGBModel<Pol>>();
}

template <class Pol>
Holder<IRayColor>* RGBModel<Pol>::NewRayColorHold() const {
    return HolderFactory::NewRayColorHold<RGBModel<Pol>>();
}

template <class Pol>
ArrayRayColorHolder* RGBModel<Pol>::NewArrayRayColorHold() const {
    return HolderFactory::NewArrayRayColorHold<RGBModel<Pol>>();
}

template <class Pol>
Holder<IScalarColor>* RGBModel<Pol>::NewScalarColorHold() const {
    return HolderFactory::NewScalarColorHold<RGBModel<Pol>>();
}

template <class Pol>
Holder<ISurfColor>* RGBModel<Pol>::NewSurfColorHold() const {
    return HolderFactory::NewSurfColorHold<RGBModel<Pol>>();
}

template <class Pol>
Holder<IDualLgtColor>* RGBModel<Pol>::NewDualLgtColorHold() const {
    return HolderFactory::NewDualLgtColorHold<RGBModel<Pol>>();
}

} // namespace Korvane
