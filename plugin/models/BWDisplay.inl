// BWModel<Pol>: BW colours as RGB and XYZ for display. Included by BWModel.cpp.
//
// A grey v (I of a Stokes vector, element (0,0) of a Mueller matrix) shows as (v, v, v) for
// surfaces and scalars. A light colour shows either as a black-or-white mark (display RGB) or as
// the equal split (v/3, v/3, v/3) of its intensity over three channels, which N turns into XYZ.
#pragma once

#include "hostkit/cie/CIEConv.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"

namespace Korvane {

template <class Pol>
void BWModel<Pol>::SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const {
    const double v = ColourAccess::Value<BWModel>(c)[0];
    rgb = TVect3<double>(v, v, v);
}

template <class Pol>
void BWModel<Pol>::ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const {
    const double v = ColourAccess::Value<BWModel>(c)[0];
    rgb = TVect3<double>(v, v, v);
}

// White (1, 1, 1) for a light above 0, black otherwise (a NaN included); non-zero for white.
template <class Pol>
int BWModel<Pol>::LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const {
    const double s = ColourAccess::Value<BWModel>(c)[0] > 0.0 ? 1.0 : 0.0;
    rgb = TVect3<double>(s, s, s);
    return s != 0.0;
}

// A grey needs no response curves: the display mark.
template <class Pol>
void BWModel<Pol>::LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves&,
                                         TVect3<double>& rgb) const {
    LgtColorToDisplayRGB(c, rgb);
}

// (v/3, v/3, v/3); normalized, each third divided by the sum of the three unless that is exactly
// 0. The clamp flag is not used: a negative intensity, which the light conversions never leave,
// passes as it is.
template <class Pol>
int BWModel<Pol>::LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                                bool) const {
    const double third = ColourAccess::Value<BWModel>(c)[0] / 3.0;
    rgb = TVect3<double>(third, third, third);
    if (normalize) {
        const double sum = rgb.x + rgb.y + rgb.z;
        if (sum != 0.0)
            rgb = TVect3<double>(rgb.x / sum, rgb.y / sum, rgb.z / sum);
    }
    return 0;
}

// The unnormalized RGB of the model's own LgtColorToRGB, then N.
template <class Pol>
int BWModel<Pol>::LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const {
    TVect3<double> rgb(0.0, 0.0, 0.0);
    LgtColorToRGB(c, rgb, false, false);
    xyz = ColorModel::GetCIEConv()->RGB2XYZ() * rgb;
    return 0;
}

} // namespace Korvane
