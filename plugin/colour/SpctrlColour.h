// SpctrlColour: a colour value of the spectral model, exactly one distribution D with one
// component per wavelength of the model's grid (light colours: a banded ExtSpctrlColourDistr;
// surface, scalar and dual light colours: a SpctrlColourDistr). A new value is empty. Copying
// it copies the distribution into storage of its own (with the band, for light colours).
// Equality compares the stored components exactly; the band is not a value and is not compared.
#pragma once

#include "plugin/spectral/ExtSpctrlColourDistr.h"
#include "plugin/spectral/SpctrlColourDistr.h"

namespace Korvane {

template <class M, class I, class D>
class SpctrlColour : public I {
public:
    using Model = M;
    using Interface = I;
    using Distribution = D;
    using Component = typename D::Component;

    D& Distr() { return distr_; }
    const D& Distr() const { return distr_; }
    int Count() const { return distr_.Count(); }
    // Count() x Component::kSize doubles in layout order; null without storage.
    double* Values() { return distr_.Values(); }
    const double* Values() const { return distr_.Values(); }

    friend bool operator==(const SpctrlColour& a, const SpctrlColour& b) {
        return SameComponents(a.distr_, b.distr_);
    }
    friend bool operator!=(const SpctrlColour& a, const SpctrlColour& b) { return !(a == b); }

private:
    D distr_;
};

} // namespace Korvane
