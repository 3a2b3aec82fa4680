// RGBModel<Pol>: RGB colours for display and as XYZ. Included by RGBModel.cpp. Every conversion
// reads the channel intensities (S0, or element (0,0) of a Mueller matrix, when polarized).
#pragma once

namespace Korvane {

template <class Pol>
void RGBModel<Pol>::SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::Intensities(ColourAccess::Value<RGBModel>(c));
}

template <class Pol>
void RGBModel<Pol>::ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::Intensities(ColourAccess::Value<RGBModel>(c));
}

template <class Pol>
int RGBModel<Pol>::LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const {
    rgb = RGBOps::DisplayRGB(RGBOps::Intensities(ColourAccess::Value<RGBModel>(c)));
    return 0;
}

template <class Pol>
void RGBModel<Pol>::LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves&,
                                          TVect3<double>& rgb) const {
    LgtColorToDisplayRGB(c, rgb);
}

template <class Pol>
int RGBModel<Pol>::LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                                 bool clampNegative) const {
    rgb = RGBOps::Intensities(ColourAccess::Value<RGBModel>(c));
    if (clampNegative)
        rgb = ColourMath::ClampNegative(rgb);
    const double s = rgb.x + rgb.y + rgb.z;
    if (normalize && s != 0.0) {
        rgb.x /= s;
        rgb.y /= s;
        rgb.z /= s;
    }
    return 0;
}

template <class Pol>
int RGBModel<Pol>::LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const {
    TVect3<double> rgb(0.0, 0.0, 0.0);
    LgtColorToRGB(c, rgb, false, false);
    xyz = RGBOps::ApplyN(rgb);
    return 0;
}

} // namespace Korvane
