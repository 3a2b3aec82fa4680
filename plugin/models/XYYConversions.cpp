// XYYModel: conversions of colours of any model into xyY colours. Every source but an xyY one is
// read as XYZ first and turned into xyY (XYZSources.h); an xyY colour is copied.
#include "plugin/models/XYYModel.h"

#include "hostkit/cie/CIEConv.h"
#include "plugin/models/CIETriple.h"
#include "plugin/models/XYZSources.h"

namespace Korvane {

using XYZSource::Target;

int XYYModel::ConvertColor(const ColorModel* src, const ISurfColor& from, ISurfColor& to) const {
    TVect3<double> xyY(0.0, 0.0, 0.0);
    const int status =
        XYZSource::Read(src, from, Target::XYY, "Not supported XYY surface color conversion", xyY);
    if (status == 0)
        CIETriple::Set(to, xyY);
    return status;
}

int XYYModel::ConvertColor(const ColorModel* src, const IScalarColor& from,
                           IScalarColor& to) const {
    TVect3<double> xyY(0.0, 0.0, 0.0);
    const int status = XYZSource::Read(src, from, Target::XYY, xyY);
    if (status == 0)
        CIETriple::Set(to, xyY);
    return status;
}

int XYYModel::ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const {
    TVect3<double> xyY(0.0, 0.0, 0.0);
    const int status =
        XYZSource::Read(src, from, Target::XYY, "Not supported XYY light color conversion", xyY);
    if (status != 0)
        return status;
    CIETriple::Set(to, xyY);
    ClampLgtColor(to);
    return 0;
}

int XYYModel::ConvertToRayColor(const ColorModel* src, const ILgtColor& from, IRayColor& to) const {
    if (!src || !src->IsSpectral())
        return ColorModel::ConvertToRayColor(src, from, to);
    return XYZSource::SpectralRay(*this, *src, from, Target::XYY,
                                  "Not supported light to XYY ray color conversion", to);
}

void XYYModel::RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const {
    CIETriple::Set(LightPart(to), ColourMath::XYZToXYY(GetCIEConv()->RGB2XYZ() * rgb));
}

void XYYModel::RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const {
    CIETriple::Set(to, ColourMath::XYZToXYY(GetCIEConv()->RGB2XYZ() * rgb));
}

int XYYModel::SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                        IRayColor& to) const {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    CIEConv::spectrum2xyz(src->GetWaveLengths(), spectrum, xyz);
    CIETriple::Set(LightPart(to), ColourMath::XYZToXYY(xyz));
    ClampLgtColor(LightPart(to));
    return 0;
}

} // namespace Korvane
