// The colour values of every model: LgtColor<M>, RayColor<M>, SurfColor<M>, ScalarColor<M> and
// DualLgtColor<M>. ColourLayout<M> names the value class of each kind; the aliases read it.
//
//   BW     one component per colour      (polarized: Stokes light, Mueller surface)
//   RGB    three components, r, g, b     (polarized: three Stokes vectors, three matrices)
//   Spectral  one distribution of components over the model's grid
//
// Scalar colours are never polarized. A polarized ray colour is the light colour followed by
// its X orientation. XYZ and xyY colours live in the holders of RGBModel<Unpolarized>, so their
// values are the very types of RGBModel<Unpolarized>: (X, Y, Z) and (x, y, Y) in the places of
// (r, g, b), and Model is RGBModel<Unpolarized>.
#pragma once

#include "plugin/colour/FixedColour.h"
#include "plugin/colour/RayColour.h"
#include "plugin/colour/SpctrlColour.h"
#include "plugin/frame/Polarization.h"
#include "plugin/models/ModelsFwd.h"

#include <cstddef>
#include <type_traits>

namespace Korvane {

template <class M>
struct ColourLayout;

// Fixed-size values of a model with N channels.
template <class M, class Pol, int N>
struct FixedColourLayout {
    using Lgt = FixedColour<M, ILgtColor, typename Pol::LightComp, N>;
    using Ray = RayColour<M, Lgt, Pol::kIsPolarized>;
    using Surf = FixedColour<M, ISurfColor, typename Pol::SurfComp, N>;
    using Scalar = FixedColour<M, IScalarColor, ScalarComp, N>;
    using DualLgt = FixedColour<M, IDualLgtColor, typename Pol::DualLgtComp, N>;
};

template <class Pol>
struct ColourLayout<BWModel<Pol>> : FixedColourLayout<BWModel<Pol>, Pol, 1> {};

template <class Pol>
struct ColourLayout<RGBModel<Pol>> : FixedColourLayout<RGBModel<Pol>, Pol, 3> {};

template <class Pol>
struct ColourLayout<SpectralModel<Pol>> {
    using M = SpectralModel<Pol>;
    using Lgt = SpctrlColour<M, ILgtColor, ExtSpctrlColourDistr<typename Pol::LightComp>>;
    using Ray = RayColour<M, Lgt, Pol::kIsPolarized>;
    using Surf = SpctrlColour<M, ISurfColor, SpctrlColourDistr<typename Pol::SurfComp>>;
    using Scalar = SpctrlColour<M, IScalarColor, SpctrlColourDistr<ScalarComp>>;
    using DualLgt = SpctrlColour<M, IDualLgtColor, SpctrlColourDistr<typename Pol::DualLgtComp>>;
};

template <>
struct ColourLayout<XYZModel> : ColourLayout<RGBModel<Unpolarized>> {};
template <>
struct ColourLayout<XYYModel> : ColourLayout<RGBModel<Unpolarized>> {};

template <class M>
using LgtColor = typename ColourLayout<M>::Lgt;
template <class M>
using RayColor = typename ColourLayout<M>::Ray;
template <class M>
using SurfColor = typename ColourLayout<M>::Surf;
template <class M>
using ScalarColor = typename ColourLayout<M>::Scalar;
template <class M>
using DualLgtColor = typename ColourLayout<M>::DualLgt;

// The fixed layouts are observable by the host (holders, serialized colours, arrays).
namespace ColourLayoutCheck {
constexpr std::size_t D = sizeof(double);
using BWU = BWModel<Unpolarized>;
using BWS = BWModel<StokesPolarization>;
using RGBU = RGBModel<Unpolarized>;
using RGBS = RGBModel<StokesPolarization>;
static_assert(sizeof(LgtColor<BWU>) == D && sizeof(RayColor<BWU>) == D &&
              sizeof(SurfColor<BWU>) == D && sizeof(ScalarColor<BWU>) == D &&
              sizeof(DualLgtColor<BWU>) == D);
static_assert(sizeof(LgtColor<BWS>) == 4 * D && sizeof(RayColor<BWS>) == 7 * D &&
              sizeof(SurfColor<BWS>) == 16 * D && sizeof(ScalarColor<BWS>) == D &&
              sizeof(DualLgtColor<BWS>) == 4 * D);
static_assert(sizeof(LgtColor<RGBU>) == 3 * D && sizeof(RayColor<RGBU>) == 3 * D &&
              sizeof(SurfColor<RGBU>) == 3 * D && sizeof(ScalarColor<RGBU>) == 3 * D &&
              sizeof(DualLgtColor<RGBU>) == 3 * D);
static_assert(sizeof(LgtColor<RGBS>) == 12 * D && sizeof(RayColor<RGBS>) == 15 * D &&
              sizeof(SurfColor<RGBS>) == 48 * D && sizeof(ScalarColor<RGBS>) == 3 * D &&
              sizeof(DualLgtColor<RGBS>) == 12 * D);
static_assert(std::is_trivially_copyable_v<RayColor<RGBS>> &&
              std::is_trivially_copyable_v<SurfColor<RGBS>> && std::is_trivial_v<LgtColor<RGBS>>);
} // namespace ColourLayoutCheck

} // namespace Korvane
