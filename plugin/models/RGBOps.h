// RGBOps: what the RGB model does to three-channel colour values, as free functions, so that the
// XYZ and xyY models, which keep their colours in the values of RGBModel<Unpolarized>, answer the
// slots they share with it in exactly the same way. A value is any fixed-size colour of three
// channels (ColourValues.h); the intensity of a channel is its first double: the value itself,
// S0 of a Stokes vector, element (0,0) of a Mueller matrix.
//
// Operations that change a light act on the whole component of a channel (a Stokes vector is
// scaled or added as a whole, so it stays a Stokes vector); operations that read one number per
// channel read intensities. Every test against 0 is exact.
//
//   M = CIEConv::XYZ2RGB():  (R, G, B) = M (X, Y, Z),  R = M00 X + M01 Y + M02 Z, ...
//   N = CIEConv::RGB2XYZ():  (X, Y, Z) = N (R, G, B)
#pragma once

#include "hostkit/base/Vectors.h"
#include "hostkit/cie/CIEConv.h"
#include "hostkit/colormodel/ColorModel.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/ColourMath.h"

namespace Korvane::RGBOps {

// M applied to (X, Y, Z), with M of the current converter. No clamp.
inline TVect3<double> ApplyM(const TVect3<double>& xyz) {
    return ColorModel::GetCIEConv()->XYZ2RGB() * xyz;
}

// N applied to (R, G, B), with N of the current converter. No clamp.
inline TVect3<double> ApplyN(const TVect3<double>& rgb) {
    return ColorModel::GetCIEConv()->RGB2XYZ() * rgb;
}

// The three channel intensities.
template <class V>
TVect3<double> Intensities(const V& c) {
    static_assert(V::kChannels == 3, "three-channel values only");
    return {c.Channel(0)[0], c.Channel(1)[0], c.Channel(2)[0]};
}

// Channel c gets intensity v[c]; the other doubles of its component (Q, U, V of a Stokes vector,
// the rest of a Mueller matrix) become 0.
template <class V>
void SetIntensities(V& c, const TVect3<double>& v) {
    static_assert(V::kChannels == 3, "three-channel values only");
    for (int ch = 0; ch < 3; ++ch) {
        c.Channel(ch) = typename V::Component{};
        c.Channel(ch)[0] = v[ch];
    }
}

// R + G + B of the intensities.
template <class V>
double SumIntensities(const V& c) {
    return c.Channel(0)[0] + c.Channel(1)[0] + c.Channel(2)[0];
}

// Every double times f.
template <class V>
void Scale(V& c, double f) {
    for (int k = 0; k < V::kDoubles; ++k)
        c[k] *= f;
}

// Channel c (its whole component) times factors[c].
template <class V>
void MulChannels(V& c, const double* factors) {
    for (int ch = 0; ch < V::kChannels; ++ch)
        for (int j = 0; j < V::Component::kSize; ++j)
            c.Channel(ch)[j] *= factors[ch];
}

// Channel c (its whole component) times a[c] / b[c] where b[c] > 0; otherwise left as it is
// (a b that is 0, negative or NaN means factor 1).
template <class V>
void MulChannelsByRatio(V& c, const double* a, const double* b) {
    for (int ch = 0; ch < V::kChannels; ++ch) {
        if (!(b[ch] > 0.0))
            continue;
        const double ratio = a[ch] / b[ch];
        for (int j = 0; j < V::Component::kSize; ++j)
            c.Channel(ch)[j] *= ratio;
    }
}

// to += f * from, double by double.
template <class V>
void AddScaled(const V& from, double f, V& to) {
    for (int k = 0; k < V::kDoubles; ++k)
        to[k] += f * from[k];
}

// Scales the colour so that its intensities sum to 1. With s = R + G + B: a colour with s exactly
// 0 first becomes intensity 1 in every channel (Q, U, V 0), whose sum 3 is then taken as s; a
// colour with s exactly 1 is left as it is; otherwise every double is multiplied by 1 / s.
template <class V>
void NormalizeToUnitSum(V& c) {
    constexpr double kTarget = 1.0;
    double s = SumIntensities(c);
    if (s == 0.0) {
        ColourAccess::FillIntensities(c, 1.0);
        s = SumIntensities(c);
    }
    if (s == kTarget)
        return;
    Scale(c, kTarget / s);
}

// The display form of a triple: divided by its largest magnitude (all 1.0 when that is 0), then
// negatives set to 0.
inline TVect3<double> DisplayRGB(TVect3<double> rgb) {
    ColourMath::NormalizeMaxMagnitude(rgb);
    return ColourMath::ClampNegative(rgb);
}

} // namespace Korvane::RGBOps
