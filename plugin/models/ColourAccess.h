// Moving values in and out of colour values, for the colour-access slots of the models, which
// decide nothing but layout. A fixed-size value (BW, RGB, XYZ, xyY) holds kChannels components
// of Comp::kSize doubles, kDoubles in all, in layout order; the intensity of a channel is its
// first double (the value itself, S0 of a Stokes vector, element (0,0) of a Mueller matrix). The
// X orientation helpers serve every ray colour, spectral ones too.
#pragma once

#include "hostkit/base/Vectors.h"
#include "plugin/colour/ColourValues.h"

namespace Korvane::ColourAccess {

// The model's own value behind an interface reference: Value<M>(c) is the light, ray, surface,
// scalar or dual light colour of model M that the host passed as c.
template <class M>
LgtColor<M>& Value(ILgtColor& c) {
    return static_cast<LgtColor<M>&>(c);
}
template <class M>
const LgtColor<M>& Value(const ILgtColor& c) {
    return static_cast<const LgtColor<M>&>(c);
}
template <class M>
RayColor<M>& Value(IRayColor& c) {
    return static_cast<RayColor<M>&>(c);
}
template <class M>
const RayColor<M>& Value(const IRayColor& c) {
    return static_cast<const RayColor<M>&>(c);
}
template <class M>
SurfColor<M>& Value(ISurfColor& c) {
    return static_cast<SurfColor<M>&>(c);
}
template <class M>
const SurfColor<M>& Value(const ISurfColor& c) {
    return static_cast<const SurfColor<M>&>(c);
}
template <class M>
ScalarColor<M>& Value(IScalarColor& c) {
    return static_cast<ScalarColor<M>&>(c);
}
template <class M>
const ScalarColor<M>& Value(const IScalarColor& c) {
    return static_cast<const ScalarColor<M>&>(c);
}
template <class M>
DualLgtColor<M>& Value(IDualLgtColor& c) {
    return static_cast<DualLgtColor<M>&>(c);
}
template <class M>
const DualLgtColor<M>& Value(const IDualLgtColor& c) {
    return static_cast<const DualLgtColor<M>&>(c);
}

// All kDoubles values from a plain array, in layout order.
template <class V>
void SetValues(V& c, const double* values) {
    for (int k = 0; k < V::kDoubles; ++k)
        c[k] = values[k];
}

// All kDoubles values from single-precision values, widened.
template <class V>
void SetValues(V& c, const float* values) {
    for (int k = 0; k < V::kDoubles; ++k)
        c[k] = static_cast<double>(values[k]);
}

// All kDoubles values into a plain array, in layout order.
template <class V>
void GetValues(const V& c, double* out) {
    for (int k = 0; k < V::kDoubles; ++k)
        out[k] = c[k];
}

// The intensity of each channel, one double per channel.
template <class V>
void GetIntensities(const V& c, double* out) {
    for (int ch = 0; ch < V::kChannels; ++ch)
        out[ch] = c.Channel(ch)[0];
}

// Every channel gets intensity `value`; the other doubles of a component (Q, U, V of a Stokes
// vector) become 0.
template <class V>
void FillIntensities(V& c, double value) {
    for (int ch = 0; ch < V::kChannels; ++ch) {
        c.Channel(ch) = typename V::Component{};
        c.Channel(ch)[0] = value;
    }
}

// The X orientation of a ray colour: false when the colour has none.
template <class R>
bool GetXOrt(const R& ray, TVect3<double>& xort) {
    if constexpr (R::kHasXOrt) {
        xort = ray.XOrt();
        return true;
    } else {
        (void)ray;
        (void)xort;
        return false;
    }
}

// Stores the X orientation of a ray colour; nothing for a colour without one.
template <class R>
void SetXOrt(R& ray, const TVect3<double>& xort) {
    if constexpr (R::kHasXOrt)
        ray.XOrt() = xort;
    else {
        (void)ray;
        (void)xort;
    }
}

} // namespace Korvane::ColourAccess
