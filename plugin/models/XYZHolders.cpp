// XYZModel: the holders of XYZ colours that the model makes (those of RGBModel<Unpolarized>).
#include "plugin/models/XYZModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

Holder<ILgtColor>* XYZModel::NewLgtColorHold() const {
    return NotAvailable<Holder<ILgtColor>*>(ClassName(), "NewLgtColorHold");
}

ArrayLgtColorHolder* XYZModel::NewArrayLgtColorHold(int) const {
    return NotAvailable<ArrayLgtColorHolder*>(ClassName(), "NewArrayLgtColorHold");
}

MatrixLgtColorHolder* XYZModel::NewMatrixLgtColorHold() const {
    return NotAvailable<MatrixLgtColorHolder*>(ClassName(), "NewMatrixLgtColorHold");
}

Holder<IRayColor>* XYZModel::NewRayColorHold() const {
    return NotAvailable<Holder<IRayColor>*>(ClassName(), "NewRayColorHold");
}

ArrayRayColorHolder* XYZModel::NewArrayRayColorHold() const {
    return NotAvailable<ArrayRayColorHolder*>(ClassName(), "NewArrayRayColorHold");
}

Holder<IScalarColor>* XYZModel::NewScalarColorHold() const {
    return NotAvailable<Holder<IScalarColor>*>(ClassName(), "NewScalarColorHold");
}

Holder<ISurfColor>* XYZModel::NewSurfColorHold() const {
    return NotAvailable<Holder<ISurfColor>*>(ClassName(), "NewSurfColorHold");
}

Holder<IDualLgtColor>* XYZModel::NewDualLgtColorHold() const {
    return NotAvailable<Holder<IDualLgtColor>*>(ClassName(), "NewDualLgtColorHold");
}

} // namespace Korvane
