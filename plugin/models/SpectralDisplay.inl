// SpectralModel<Pol>: spectral colours for display, as XYZ, and their chromaticity. Included by
// SpectralModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
void SpectralModel<Pol>::SurfColorToRGB(const ISurfColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "SurfColorToRGB");
}

template <class Pol>
void SpectralModel<Pol>::ScalarColorToRGB(const IScalarColor&, TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "ScalarColorToRGB");
}

template <class Pol>
int SpectralModel<Pol>::LgtColorToDisplayRGB(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToDisplayRGB");
}

template <class Pol>
void SpectralModel<Pol>::LgtColorToRGBByCurves(const ILgtColor&, const ColorCurves&,
                                               TVect3<double>&) const {
    NotAvailable<void>(ClassName(), "LgtColorToRGBByCurves");
}

template <class Pol>
int SpectralModel<Pol>::LgtColorToRGB(const ILgtColor&, TVect3<double>&, bool, bool) const {
    return NotAvailable(ClassName(), "LgtColorToRGB");
}

template <class Pol>
int SpectralModel<Pol>::LgtColorToXYZ(const ILgtColor&, TVect3<double>&) const {
    return NotAvailable(ClassName(), "LgtColorToXYZ");
}

template <class Pol>
void SpectralModel<Pol>::GetChromaticity(const ILgtColor&, double&, TVect2<double>&) const {
    NotAvailable<void>(ClassName(), "GetChromaticity");
}

template <class Pol>
int SpectralModel<Pol>::SpectrumToRGB(const double*, TVect3<double>&, bool, bool) const {
    return NotAvailable(ClassName(), "SpectrumToRGB");
}

} // namespace Korvane
