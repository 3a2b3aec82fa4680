// Polarization policies: how the BW, RGB and spectral models carry light. A policy is a class
// without data, used only as a template argument. It names the component types of light,
// surface and dual light values (one double each, or a Stokes vector and a Mueller matrix),
// says at compile time whether they are polarized, so that code forks with `if constexpr` and
// the unpolarized path pays nothing, and gives the polarization bit of the model code.
// Scalar colours are never polarized: both policies use ScalarComp.
//
// Only the functions are exported, not the classes (see KOR_PLUGIN_VISIBLE): the constants are
// inline variables that each user of the header holds itself. Imported, they would be looked up
// in the DLL, which exports them only if its own code happens to take their address.
#pragma once

#include "plugin/PluginExport.h"
#include "plugin/colour/Components.h"

namespace Korvane {

class KOR_PLUGIN_VISIBLE Unpolarized {
public:
    static constexpr bool kIsPolarized = false;
    static constexpr int kPolarizationBit = 1;
    using LightComp = UnpLightComp;
    using SurfComp = UnpSurfComp;
    using DualLgtComp = UnpDualLgtComp;

    // "U", the start of every unpolarized model identifier.
    KOR_PLUGIN_API static const char* Tag();
    // "Unpolarized", the first word of the display names.
    KOR_PLUGIN_API static const char* PolarName();
};

class KOR_PLUGIN_VISIBLE StokesPolarization {
public:
    static constexpr bool kIsPolarized = true;
    static constexpr int kPolarizationBit = 2;
    using LightComp = StkLightComp;
    using SurfComp = StkSurfComp;
    using DualLgtComp = StkDualLgtComp;

    KOR_PLUGIN_API static const char* Tag();       // "Stk"
    KOR_PLUGIN_API static const char* PolarName(); // "Polarized"
};

} // namespace Korvane
