// XYZModel: XYZ colours for display and as XYZ, and their chromaticity.
#include "plugin/models/XYZModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

void XYZModel::SurfColorToRGB(const ISurfColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "SurfColorToRGB");
}

void XYZModel::ScalarColorToRGB(const IScalarColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "ScalarColorToRGB");
}

int XYZModel::LgtColorToDisplayRGB(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToDisplayRGB");
}

void XYZModel::LgtColorToRGBByCurves(const ILgtColor&, const ColorCurves&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "LgtColorToRGBByCurves");
}

int XYZModel::LgtColorToRGB(const ILgtColor&, TVect3<double>&, bool, bool) const {
    return NotAvailable(ClassName(), "LgtColorToRGB");
}

int XYZModel::LgtColorToXYZ(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToXYZ");
}

void XYZModel::GetChromaticity(const ILgtColor&, double&, TVect2<double>&) const {
    NotAvailable<void>(ClassName(), "GetChromaticity");
}

} // namespace Korvane
