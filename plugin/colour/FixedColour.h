// FixedColour: the colour value of a model with a fixed number of channels (BW one, RGB, XYZ
// and xyY three). It holds N components one after the other and nothing else, so copying it
// copies exactly its N x Comp::kSize doubles, and Values() sees them in layout order: for a
// Stokes RGB light colour the Stokes vectors of r, g and b; for a Stokes surface the three
// Mueller matrices. Like its components it is left uninitialised by default construction.
//
// M is the model the value belongs to, I the colour interface the host passes it as; a model
// turns an interface reference back into its value with static_cast.
#pragma once

namespace Korvane {

template <class M, class I, class Comp, int N>
class FixedColour : public I {
public:
    using Model = M;
    using Interface = I;
    using Component = Comp;
    static constexpr int kChannels = N;
    static constexpr int kDoubles = N * Comp::kSize;

    Comp& Channel(int c) { return channels_[c]; }
    const Comp& Channel(int c) const { return channels_[c]; }

    // The kDoubles values in layout order.
    double* Values() { return channels_[0].v; }
    const double* Values() const { return channels_[0].v; }
    double& operator[](int k) { return Values()[k]; }
    const double& operator[](int k) const { return Values()[k]; }

    // Exact: every value equal by == (a NaN never matches).
    friend bool operator==(const FixedColour& a, const FixedColour& b) {
        for (int k = 0; k < kDoubles; ++k)
            if (!(a[k] == b[k]))
                return false;
        return true;
    }
    friend bool operator!=(const FixedColour& a, const FixedColour& b) { return !(a == b); }

private:
    Comp channels_[N];
};

} // namespace Korvane
