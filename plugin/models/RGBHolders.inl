// RGBModel<Pol>: the holders of RGB colours that the model makes. Included by RGBModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
Holder<ILgtColor>* RGBModel<Pol>::NewLgtColorHold() const {
    return NotAvailable<Holder<ILgtColor>*>(ClassName(), "NewLgtColorHold");
}

template <class Pol>
ArrayLgtColorHolder* RGBModel<Pol>::NewArrayLgtColorHold(int) const {
    return NotAvailable<ArrayLgtColorHolder*>(ClassName(), "NewArrayLgtColorHold");
}

template <class Pol>
MatrixLgtColorHolder* RGBModel<Pol>::NewMatrixLgtColorHold() const {
    return NotAvailable<MatrixLgtColorHolder*>(ClassName(), "NewMatrixLgtColorHold");
}

template <class Pol>
Holder<IRayColor>* RGBModel<Pol>::NewRayColorHold() const {
    return NotAvailable<Holder<IRayColor>*>(ClassName(), "NewRayColorHold");
}

template <class Pol>
ArrayRayColorHolder* RGBModel<Pol>::NewArrayRayColorHold() const {
    return NotAvailable<ArrayRayColorHolder*>(ClassName(), "NewArrayRayColorHold");
}

template <class Pol>
Holder<IScalarColor>* RGBModel<Pol>::NewScalarColorHold() const {
    return NotAvailable<Holder<IScalarColor>*>(ClassName(), "NewScalarColorHold");
}

template <class Pol>
Holder<ISurfColor>* RGBModel<Pol>::NewSurfColorHold() const {
    return NotAvailable<Holder<ISurfColor>*>(ClassName(), "NewSurfColorHold");
}

template <class Pol>
Holder<IDualLgtColor>* RGBModel<Pol>::NewDualLgtColorHold() const {
    return NotAvailable<Holder<IDualLgtColor>*>(ClassName(), "NewDualLgtColorHold");
}

} // namespace Korvane
