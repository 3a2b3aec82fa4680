// SpectralModel<Pol>: the holders of spectral colours that the model makes. Included by
// SpectralModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
Holder<ILgtColor>* SpectralModel<Pol>::NewLgtColorHold() const {
    return NotAvailable<Holder<ILgtColor>*>(ClassName(), "NewLgtColorHold");
}

template <class Pol>
ArrayLgtColorHolder* SpectralModel<Pol>::NewArrayLgtColorHold(int) const {
    return NotAvailable<ArrayLgtColorHolder*>(ClassName(), "NewArrayLgtColorHold");
}

template <class Pol>
MatrixLgtColorHolder* SpectralModel<Pol>::NewMatrixLgtColorHold() const {
    return NotAvailable<MatrixLgtColorHolder*>(ClassName(), "NewMatrixLgtColorHold");
}

template <class Pol>
Holder<IRayColor>* SpectralModel<Pol>::NewRayColorHold() const {
    return NotAvailable<Holder<IRayColor>*>(ClassName(), "NewRayColorHold");
}

template <class Pol>
ArrayRayColorHolder* SpectralModel<Pol>::NewArrayRayColorHold() const {
    return NotAvailable<ArrayRayColorHolder*>(ClassName(), "NewArrayRayColorHold");
}

template <class Pol>
Holder<IScalarColor>* SpectralModel<Pol>::NewScalarColorHold() const {
    return NotAvailable<Holder<IScalarColor>*>(ClassName(), "NewScalarColorHold");
}

template <class Pol>
Holder<ISurfColor>* SpectralModel<Pol>::NewSurfColorHold() const {
    return NotAvailable<Holder<ISurfColor>*>(ClassName(), "NewSurfColorHold");
}

template <class Pol>
Holder<IDualLgtColor>* SpectralModel<Pol>::NewDualLgtColorHold() const {
    return NotAvailable<Holder<IDualLgtColor>*>(ClassName(), "NewDualLgtColorHold");
}

} // namespace Korvane
