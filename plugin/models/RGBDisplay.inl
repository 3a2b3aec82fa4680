// RGBModel<Pol>: RGB colours for display and as XYZ. Included by RGBModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
void RGBModel<Pol>::SurfColorToRGB(const ISurfColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "SurfColorToRGB");
}

template <class Pol>
void RGBModel<Pol>::ScalarColorToRGB(const IScalarColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "ScalarColorToRGB");
}

template <class Pol>
int RGBModel<Pol>::LgtColorToDisplayRGB(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToDisplayRGB");
}

template <class Pol>
void RGBModel<Pol>::LgtColorToRGBByCurves(const ILgtColor&, const ColorCurves&,
                                          TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "LgtColorToRGBByCurves");
}

template <class Pol>
int RGBModel<Pol>::LgtColorToRGB(const ILgtColor&, TVect3<double>&, bool, bool) const {
    return NotAvailable(ClassName(), "LgtColorToRGB");
}

template <class Pol>
int RGBModel<Pol>::LgtColorToXYZ(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToXYZ");
}

} // namespace Korvane
