// Colour components: the values of one wavelength of a spectral distribution, or of one channel
// of a BW or RGB colour. A component is a plain array of doubles: one intensity, reflectance or
// factor; a Stokes vector (I, Q, U, V); or a 4x4 Mueller matrix stored row by row, element
// (0,0), the unpolarized reflectance, first.
//
// Components are trivial types: allocating them leaves them uninitialised, so a buffer of
// thousands of components costs no zero-fill. Value-initialisation (Comp{}) gives the zero
// component.
#pragma once

#include "plugin/PluginExport.h"

#include <type_traits>

namespace Korvane {

// N doubles of one kind; the kind only keeps components of equal size apart as types. Both are
// exported so that the distributions instantiated on them can be.
template <int N, class Kind>
struct KOR_PLUGIN_API Component {
    static constexpr int kSize = N;
    double v[N];

    double& operator[](int i) { return v[i]; }
    const double& operator[](int i) const { return v[i]; }
};

// Exact: every double equal by == (a NaN never matches).
template <int N, class Kind>
bool operator==(const Component<N, Kind>& a, const Component<N, Kind>& b) {
    for (int i = 0; i < N; ++i)
        if (!(a.v[i] == b.v[i]))
            return false;
    return true;
}
template <int N, class Kind>
bool operator!=(const Component<N, Kind>& a, const Component<N, Kind>& b) {
    return !(a == b);
}

struct KOR_PLUGIN_API ScalarKind {};
struct KOR_PLUGIN_API UnpLightKind {};
struct KOR_PLUGIN_API UnpSurfKind {};
struct KOR_PLUGIN_API UnpDualLgtKind {};
struct KOR_PLUGIN_API StkLightKind {};
struct KOR_PLUGIN_API StkSurfKind {};
struct KOR_PLUGIN_API StkDualLgtKind {};

using ScalarComp = Component<1, ScalarKind>;         // a factor
using UnpLightComp = Component<1, UnpLightKind>;     // intensity
using UnpSurfComp = Component<1, UnpSurfKind>;       // reflectance or transmittance
using UnpDualLgtComp = Component<1, UnpDualLgtKind>; // intensity
using StkLightComp = Component<4, StkLightKind>;     // Stokes vector I, Q, U, V
using StkDualLgtComp = Component<4, StkDualLgtKind>; // Stokes vector I, Q, U, V
using StkSurfComp = Component<16, StkSurfKind>;      // Mueller matrix, row by row

// Positions of the Stokes parameters in a Stokes component.
enum StokesIndex : int { kStokesI = 0, kStokesQ = 1, kStokesU = 2, kStokesV = 3 };

// Position of Mueller element (row, col) in a StkSurfComp.
constexpr int MuellerIndex(int row, int col) {
    return 4 * row + col;
}

static_assert(std::is_trivial_v<StkSurfComp> && std::is_standard_layout_v<StkSurfComp>);
static_assert(sizeof(StkSurfComp) == 16 * sizeof(double), "components carry no padding");
static_assert(sizeof(StkLightComp) == 4 * sizeof(double), "components carry no padding");
static_assert(sizeof(ScalarComp) == sizeof(double), "components carry no padding");

} // namespace Korvane
