// XYZModel: conversions of colours of any model into XYZ colours.
#include "plugin/models/XYZModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

int XYZModel::ConvertColor(const ColorModel*, const ISurfColor&, ISurfColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(surface)");
}

int XYZModel::ConvertColor(const ColorModel*, const IScalarColor&, IScalarColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(scalar)");
}

int XYZModel::ConvertColor(const ColorModel*, const ILgtColor&, ILgtColor&) const {
    return NotAvailable(ClassName(), "ConvertColor(light)");
}

int XYZModel::ConvertToRayColor(const ColorModel*, const ILgtColor&, IRayColor&) const {
    return NotAvailable(ClassName(), "ConvertToRayColor");
}

void XYZModel::RGBConvertToRayColor(const TVect3<double>&, IRayColor&) const {
    NotAvailable<void>(ClassName(), "RGBConvertToRayColor");
}

void XYZModel::RGBConvertToSurfaceColor(const TVect3<double>&, ISurfColor&) const {
    NotAvailable<void>(ClassName(), "RGBConvertToSurfaceColor");
}

int XYZModel::SpectralConvertToRayColor(const ColorModel*, const MArray<double>&,
                                        IRayColor&) const {
    return NotAvailable(ClassName(), "SpectralConvertToRayColor");
}

} // namespace Korvane
