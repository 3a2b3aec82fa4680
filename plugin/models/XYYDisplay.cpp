// XYYModel: xyY colours for display and as XYZ, and their chromaticity.
#include "plugin/models/XYYModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

void XYYModel::SurfColorToRGB(const ISurfColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "SurfColorToRGB");
}

void XYYModel::ScalarColorToRGB(const IScalarColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "ScalarColorToRGB");
}

int XYYModel::LgtColorToDisplayRGB(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToDisplayRGB");
}

void XYYModel::LgtColorToRGBByCurves(const ILgtColor&, const ColorCurves&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "LgtColorToRGBByCurves");
}

int XYYModel::LgtColorToRGB(const ILgtColor&, TVect3<double>&, bool, bool) const {
    return NotAvailable(ClassName(), "LgtColorToRGB");
}

int XYYModel::LgtColorToXYZ(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToXYZ");
}

void XYYModel::GetChromaticity(const ILgtColor&, double&, TVect2<double>&) const {
    NotAvailable<void>(ClassName(), "GetChromaticity");
}

} // namespace Korvane
