// XYYModel: the holders of xyY colours that the model makes. xyY colours are kept in the
// three-value holders of RGBModel<Unpolarized>; each holder is handed out without a reference
// (HolderFactory).
#include "plugin/models/XYYModel.h"

#include "plugin/holders/HolderFactory.h"
#include "plugin/models/RGBModel.h"

namespace Korvane {

Holder<ILgtColor>* XYYModel::NewLgtColorHold() const {
    return HolderFactory::NewLgtColorHold<RGBModel<Unpolarized>>();
}

ArrayLgtColorHolder* XYYModel::NewArrayLgtColorHold(int n) const {
    return HolderFactory::NewArrayLgtColorHold<RGBModel<Unpolarized>>(n);
}

MatrixLgtColorHolder* XYYModel::NewMatrixLgtColorHold() const {
    return HolderFactory::NewMatrixLgtColorHold<RGBModel<Unpolarized>>();
}

Holder<IRayColor>* XYYModel::NewRayColorHold() const {
    return HolderFactory::NewRayColorHold<RGBModel<Unpolarized>>();
}

ArrayRayColorHolder* XYYModel::NewArrayRayColorHold() const {
    return HolderFactory::NewArrayRayColorHold<RGBModel<Unpolarized>>();
}

Holder<IScalarColor>* XYYModel::NewScalarColorHold() const {
    return HolderFactory::NewScalarColorHold<RGBModel<Unpolarized>>();
}

Holder<ISurfColor>* XYYModel::NewSurfColorHold() const {
    return HolderFactory::NewSurfColorHold<RGBModel<Unpolarized>>();
}

Holder<IDualLgtColor>* XYYModel::NewDualLgtColorHold() const {
    return HolderFactory::NewDualLgtColorHold<RGBModel<Unpolarized>>();
}

} // namespace Korvane
