// CIETriple: an XYZ or xyY colour seen as the triple of doubles it is (the values of
// RGBModel<Unpolarized>), and what the XYZ and xyY models compute alike from such triples. What
// they do exactly as the RGB model does (M applied, the display form, per-channel factors) is
// RGBOps's.
#pragma once

#include "hostkit/cie/CIEConv.h"
#include "hostkit/colormodel/ColorModel.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/ColourMath.h"
#include "plugin/models/RGBOps.h"

namespace Korvane::CIETriple {

// The three values of a light, surface or scalar colour (a ray colour through LightPart).
template <class I>
TVect3<double> Get(const I& c) {
    const auto& v = ColourAccess::Value<XYZModel>(c);
    return {v[0], v[1], v[2]};
}

template <class I>
void Set(I& c, const TVect3<double>& t) {
    auto& v = ColourAccess::Value<XYZModel>(c);
    v[0] = t.x;
    v[1] = t.y;
    v[2] = t.z;
}

inline TVect3<double> Add(const TVect3<double>& a, const TVect3<double>& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline double Sum(const TVect3<double>& t) {
    return t.x + t.y + t.z;
}

// -- RGB from XYZ ---------------------------------------------------------------------------------

// The display triple of an XYZ: M xyz in its display form (RGBOps::DisplayRGB).
inline TVect3<double> DisplayRGB(const TVect3<double>& xyz) {
    return RGBOps::DisplayRGB(RGBOps::ApplyM(xyz));
}

// M xyz; with clampNegative every negative channel becomes 0, then with normalize the triple is
// divided by its sum when that is not 0.
inline TVect3<double> FlaggedRGB(const TVect3<double>& xyz, bool normalize, bool clampNegative) {
    TVect3<double> rgb = RGBOps::ApplyM(xyz);
    if (clampNegative)
        rgb = ColourMath::ClampNegative(rgb);
    const double s = Sum(rgb);
    if (normalize && s != 0.0)
        rgb = {rgb.x / s, rgb.y / s, rgb.z / s};
    return rgb;
}

} // namespace Korvane::CIETriple
