// XYYModel: xyY colours for display and as XYZ, and their chromaticity. Every RGB is M applied
// to the colour's XYZ (xyY to XYZ without clamping).
#include "plugin/models/XYYModel.h"

#include "plugin/models/CIETriple.h"

namespace Korvane {
namespace {

template <class I>
TVect3<double> XYZOf(const I& c) {
    return ColourMath::XYYToXYZ(CIETriple::Get(c));
}

} // namespace

void XYYModel::SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::ApplyM(XYZOf(c));
    CIEConv::ClipRGBScale(rgb);
}

void XYYModel::ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::ApplyM(XYZOf(c));
}

int XYYModel::LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const {
    rgb = CIETriple::DisplayRGB(XYZOf(c));
    return 0;
}

void XYYModel::LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves&,
                                     TVect3<double>& rgb) const {
    LgtColorToDisplayRGB(c, rgb);
}

int XYYModel::LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                            bool clampNegative) const {
    rgb = CIETriple::FlaggedRGB(XYZOf(c), normalize, clampNegative);
    return 0;
}

int XYYModel::LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const {
    xyz = XYZOf(c);
    return 0;
}

void XYYModel::GetChromaticity(const ILgtColor& c, double& luminance, TVect2<double>& xy) const {
    const TVect3<double> t = CIETriple::Get(c);
    xy = TVect2<double>(t.x, t.y);
    luminance = t.z;
}

} // namespace Korvane
