// BWModel<Pol>: the holders of BW colours that the model makes. Included by BWModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
Holder<ILgtColor>* BWModel<Pol>::NewLgtColorHold() const {
    return NotAvailable<Holder<ILgtColor>*>(ClassName(), "NewLgtColorHold");
}

template <class Pol>
ArrayLgtColorHolder* BWModel<Pol>::NewArrayLgtColorHold(int) const {
    return NotAvailable<ArrayLgtColorHolder*>(ClassName(), "NewArrayLgtColorHold");
}

template <class Pol>
MatrixLgtColorHolder* BWModel<Pol>::NewMatrixLgtColorHold() const {
    return NotAvailable<MatrixLgtColorHolder*>(ClassName(), "NewMatrixLgtColorHold");
}

template <class Pol>
Holder<IRayColor>* BWModel<Pol>::NewRayColorHold() const {
    return NotAvailable<Holder<IRayColor>*>(ClassName(), "NewRayColorHold");
}

template <class Pol>
ArrayRayColorHolder* BWModel<Pol>::NewArrayRayColorHold() const {
    return NotAvailable<ArrayRayColorHolder*>(ClassName(), "NewArrayRayColorHold");
}

template <class Pol>
Holder<IScalarColor>* BWModel<Pol>::NewScalarColorHold() const {
    return NotAvailable<Holder<IScalarColor>*>(ClassName(), "NewScalarColorHold");
}

template <class Pol>
Holder<ISurfColor>* BWModel<Pol>::NewSurfColorHold() const {
    return NotAvailable<Holder<ISurfColor>*>(ClassName(), "NewSurfColorHold");
}

template <class Pol>
Holder<IDualLgtColor>* BWModel<Pol>::NewDualLgtColorHold() const {
    return NotAvailable<Holder<IDualLgtColor>*>(ClassName(), "NewDualLgtColorHold");
}

} // namespace Korvane
