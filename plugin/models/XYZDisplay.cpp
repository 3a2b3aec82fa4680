// XYZModel: XYZ colours for display and as XYZ, and their chromaticity. RGB is M applied to
// (X, Y, Z); a display triple is scaled by its largest magnitude and loses its negatives.
#include "plugin/models/XYZModel.h"

#include "plugin/models/CIETriple.h"

namespace Korvane {

void XYZModel::SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::ApplyM(CIETriple::Get(c));
    CIEConv::ClipRGBScale(rgb);
}

void XYZModel::ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::ApplyM(CIETriple::Get(c));
}

int XYZModel::LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const {
    rgb = CIETriple::DisplayRGB(CIETriple::Get(c));
    return 0;
}

void XYZModel::LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves&,
                                     TVect3<double>& rgb) const {
    LgtColorToDisplayRGB(c, rgb);
}

int XYZModel::LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                            bool clampNegative) const {
    rgb = CIETriple::FlaggedRGB(CIETriple::Get(c), normalize, clampNegative);
    return 0;
}

int XYZModel::LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const {
    xyz = CIETriple::Get(c);
    return 0;
}

void XYZModel::GetChromaticity(const ILgtColor& c, double& luminance, TVect2<double>& xy) const {
    const TVect3<double> t = CIETriple::Get(c);
    const double s = CIETriple::Sum(t);
    if (s == 0.0)
        xy = TVect2<double>(0.0, 0.0);
    else
        xy = TVect2<double>(t.x / s, t.y / s);
    luminance = t.y;
}

} // namespace Korvane
