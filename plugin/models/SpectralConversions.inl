// SpectralModel<Pol>: conversions of colours of any model into spectral colours. Included by
// SpectralModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
int SpectralModel<Pol>::ConvertColor(const ColorModel*, const ISurfColor&, ISurfColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(surface)");
}

template <class Pol>
int SpectralModel<Pol>::ConvertColor(const ColorModel*, const IScalarColor&, IScalarColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(scalar)");
}

template <class Pol>
int SpectralModel<Pol>::ConvertColor(const ColorModel*, const ILgtColor&, ILgtColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(light)");
}

template <class Pol>
int SpectralModel<Pol>::ConvertToRayColor(const ColorModel*, const ILgtColor&, IRayColor&) const {
    return NotAvailable(ClassName(), "ConvertToRayColor");
}

template <class Pol>
void SpectralModel<Pol>::RGBConvertToRayColor(const TVect3<double>&, IRayColor&) const {
    NotAvailable<void>(ClassName(), "RGBConvertToRayColor");
}

template <class Pol>
void SpectralModel<Pol>::RGBConvertToSurfaceColor(const TVect3<double>&, ISurfColor&) const {
    NotAvailable<void>(ClassName(), "RGBConvertToSurfaceColor");
}

template <class Pol>
int SpectralModel<Pol>::SpectralConvertToRayColor(const ColorModel*, const MArray<double>&,
                                                  IRayColor&) const {
    return NotAvailable(ClassName(), "SpectralConvertToRayColor");
}

} // namespace Korvane
