// XYZModel: the holders of XYZ colours that the model makes. XYZ colours are kept in the
// three-value holders of RGBModel<Unpolarized>; each holder is handed out without a reference
// (HolderFactory).
#include "plugin/models/XYZModel.h"

#include "plugin/holders/HolderFactory.h"
#include "plugin/models/RGBModel.h"

namespace Korvane {

Holder<ILgtColor>* XYZModel::NewLgtColorHold() const {
    return HolderFactory::NewLgtColorHold<RGBModel<Unpolarized>>();
}

ArrayLgtColorHolder* XYZModel::NewArrayLgtColorHold(int n) const {
    return HolderFactory::NewArrayLgtColorHold<RGBModel<Unpolarized>>(n);
}

MatrixLgtColorHolder* XYZModel::NewMatrixLgtColorHold() const {
    return HolderFactory::NewMatrixLgtColorHold<RGBModel<Unpolarized>>();
}

Holder<IRayColor>* XYZModel::NewRayColorHold() const {
    return HolderFactory::NewRayColorHold<RGBModel<Unpolarized>>();
}

ArrayRayColorHolder* XYZModel::NewArrayRayColorHold() const {
    return HolderFactory::NewArrayRayColorHold<RGBModel<Unpolarized>>();
}

Holder<IScalarColor>* XYZModel::NewScalarColorHold() const {
    return HolderFactory::NewScalarColorHold<RGBModel<Unpolarized>>();
}

Holder<ISurfColor>* XYZModel::NewSurfColorHold() const {
    return HolderFactory::NewSurfColorHold<RGBModel<Unpolarized>>();
}

Holder<IDualLgtColor>* XYZModel::NewDualLgtColorHold() const {
    return HolderFactory::NewDualLgtColorHold<RGBModel<Unpolarized>>();
}

} // namespace Korvane
