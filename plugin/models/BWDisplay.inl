// BWModel<Pol>: BW colours as RGB and XYZ for display. Included by BWModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
void BWModel<Pol>::SurfColorToRGB(const ISurfColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "SurfColorToRGB");
}

template <class Pol>
void BWModel<Pol>::ScalarColorToRGB(const IScalarColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "ScalarColorToRGB");
}

template <class Pol>
int BWModel<Pol>::LgtColorToDisplayRGB(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToDisplayRGB");
}

template <class Pol>
void BWModel<Pol>::LgtColorToRGBByCurves(const ILgtColor&, const ColorCurves&,
                                         TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "LgtColorToRGBByCurves");
}

template <class Pol>
int BWModel<Pol>::LgtColorToRGB(const ILgtColor&, TVect3<double>&, bool, bool) const {
    return NotAvailable(ClassName(), "LgtColorToRGB");
}

template <class Pol>
int BWModel<Pol>::LgtColorToXYZ(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToXYZ");
}

} // namespace Korvane
