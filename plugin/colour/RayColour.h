// RayColour: the colour carried on a ray. It begins with the model's light colour L, which the
// host reaches at the ray colour's own address (LightPart). A polarized ray colour adds its X
// orientation, the direction that fixes the Q and U axes of its Stokes vectors, as three
// doubles right after the light values. A new polarized ray colour has the X orientation
// (1, 0, 0), so every ray colour has a valid frame; its light part starts as a new light colour
// does. Equality is exact over the light values and the X orientation.
#pragma once

#include "hostkit/base/Vectors.h"
#include "hostkit/colormodel/ColorInterfaces.h"

namespace Korvane {

// The unpolarized ray colour: the light colour alone.
template <class M, class L, bool kPolarized = false>
class RayColour : public IRayColor {
public:
    using Model = M;
    using Interface = IRayColor;
    using LightColour = L;
    static constexpr bool kHasXOrt = false;

    L& Light() { return light_; }
    const L& Light() const { return light_; }

    friend bool operator==(const RayColour& a, const RayColour& b) { return a.light_ == b.light_; }
    friend bool operator!=(const RayColour& a, const RayColour& b) { return !(a == b); }

private:
    L light_;
};

// The polarized ray colour: the same light part, then the X orientation.
template <class M, class L>
class RayColour<M, L, true> : public RayColour<M, L, false> {
public:
    static constexpr bool kHasXOrt = true;

    TVect3<double>& XOrt() { return xOrt_; }
    const TVect3<double>& XOrt() const { return xOrt_; }

    friend bool operator==(const RayColour& a, const RayColour& b) {
        return a.Light() == b.Light() && a.xOrt_ == b.xOrt_;
    }
    friend bool operator!=(const RayColour& a, const RayColour& b) { return !(a == b); }

private:
    TVect3<double> xOrt_{1.0, 0.0, 0.0};
};

} // namespace Korvane
