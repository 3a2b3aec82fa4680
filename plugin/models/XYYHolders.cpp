// XYYModel: the holders of xyY colours that the model makes (those of RGBModel<Unpolarized>).
#include "plugin/models/XYYModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

Holder<ILgtColor>* XYYModel::NewLgtColorHold() const {
    return NotAvailable<Holder<ILgtColor>*>(ClassName(), "NewLgtColorHold");
}

ArrayLgtColorHolder* XYYModel::NewArrayLgtColorHold(int) const {
    return NotAvailable<ArrayLgtColorHolder*>(ClassName(), "NewArrayLgtColorHold");
}

MatrixLgtColorHolder* XYYModel::NewMatrixLgtColorHold() const {
    return NotAvailable<MatrixLgtColorHolder*>(ClassName(), "NewMatrixLgtColorHold");
}

Holder<IRayColor>* XYYModel::NewRayColorHold() const {
    return NotAvailable<Holder<IRayColor>*>(ClassName(), "NewRayColorHold");
}

ArrayRayColorHolder* XYYModel::NewArrayRayColorHold() const {
    return NotAvailable<ArrayRayColorHolder*>(ClassName(), "NewArrayRayColorHold");
}

Holder<IScalarColor>* XYYModel::NewScalarColorHold() const {
    return NotAvailable<Holder<IScalarColor>*>(ClassName(), "NewScalarColorHold");
}

Holder<ISurfColor>* XYYModel::NewSurfColorHold() const {
    return NotAvailable<Holder<ISurfColor>*>(ClassName(), "NewSurfColorHold");
}

Holder<IDualLgtColor>* XYYModel::NewDualLgtColorHold() const {
    return NotAvailable<Holder<IDualLgtColor>*>(ClassName(), "NewDualLgtColorHold");
}

} // namespace Korvane
