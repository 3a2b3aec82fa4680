// CIETriple: an XYZ or xyY colour seen as the triple of doubles it is (the values of
// RGBModel<Unpolarized>), and what the XYZ and xyY models compute alike from such triples:
// the channel-wise slots they answer as the unpolarized RGB model does, and RGB for display
// from XYZ through M = XYZ2RGB() of the current converter.
#pragma once

#include "hostkit/cie/CIEConv.h"
#include "hostkit/colormodel/ColorModel.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/ColourMath.h"

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

// -- channel-wise slots, as in the unpolarized RGB model ---------------------------------------

// Value c times factors[c].
inline void MulByArray(ILgtColor& c, const double* factors) {
    auto& v = ColourAccess::Value<XYZModel>(c);
    for (int k = 0; k < 3; ++k)
        v[k] *= factors[k];
}

// Value c times a[c] / b[c] where b[c] > 0, else unchanged.
inline void MulByRatio(ILgtColor& c, const double* a, const double* b) {
    auto& v = ColourAccess::Value<XYZModel>(c);
    for (int k = 0; k < 3; ++k)
        if (b[k] > 0.0)
            v[k] *= a[k] / b[k];
}

// -- RGB from XYZ ---------------------------------------------------------------------------------

inline TVect3<double> ToRGB(const TVect3<double>& xyz) {
    return ColorModel::GetCIEConv()->XYZ2RGB() * xyz;
}

// The display triple: M xyz divided by its largest magnitude ((1, 1, 1) when that is 0), then
// every negative channel 0.
inline TVect3<double> DisplayRGB(const TVect3<double>& xyz) {
    TVect3<double> rgb = ToRGB(xyz);
    ColourMath::NormalizeMaxMagnitude(rgb);
    return ColourMath::ClampNegative(rgb);
}

// M xyz; with clampNegative every negative channel becomes 0, then with normalize the triple is
// divided by its sum when that is not 0.
inline TVect3<double> FlaggedRGB(const TVect3<double>& xyz, bool normalize, bool clampNegative) {
    TVect3<double> rgb = ToRGB(xyz);
    if (clampNegative)
        rgb = ColourMath::ClampNegative(rgb);
    const double s = Sum(rgb);
    if (normalize && s != 0.0)
        rgb = {rgb.x / s, rgb.y / s, rgb.z / s};
    return rgb;
}

} // namespace Korvane::CIETriple
