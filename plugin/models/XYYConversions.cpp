// XYYModel: conversions of colours of any model into xyY colours.
#include "plugin/models/XYYModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

int XYYModel::ConvertColor(const ColorModel*, const ISurfColor&, ISurfColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(surface)");
}

int XYYModel::ConvertColor(const ColorModel*, const IScalarColor&, IScalarColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(scalar)");
}

int XYYModel::ConvertColor(const ColorModel*, const ILgtColor&, ILgtColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(light)");
}

int XYYModel::ConvertToRayColor(const ColorModel*, const ILgtColor&, IRayColor&) const {
    return NotAvailable(ClassName(), "ConvertToRayColor");
}

void XYYModel::RGBConvertToRayColor(const TVect3<double>&, IRayColor&) const {
    NotAvailable<void>(ClassName(), "RGBConvertToRayColor");
}

void XYYModel::RGBConvertToSurfaceColor(const TVect3<double>&, ISurfColor&) const {
    NotAvailable<void>(ClassName(), "RGBConvertToSurfaceColor");
}

int XYYModel::SpectralConvertToRayColor(const ColorModel*, const MArray<double>&,
                                        IRayColor&) const {
    return NotAvailable(ClassName(), "SpectralConvertToRayColor");
}

} // namespace Korvane
