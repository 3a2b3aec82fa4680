// ArrayRayColorHold<M>: a host plug that keeps a one-dimensional array of ray colours of model M.
// The host reaches the colours through the array itself. The class has no plug type of its own
// in this library: its type is the host-wide TArrayRayColorHolder, and it is made only by the
// models (NewArrayRayColorHold) and by Clone.
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "hostkit/colormodel/Holders.h"
#include "plugin/PluginExport.h"
#include "plugin/colour/ColourValues.h"

namespace Korvane {

template <class M>
class KOR_PLUGIN_API ArrayRayColorHold : public ArrayRayColorHolder {
public:
    using Colour = RayColor<M>;

    // Empty; the plug's name is "ArrayRayColorHold<CM>".
    ArrayRayColorHold();
    // Copies every colour (a spectral colour gets samples of its own).
    ArrayRayColorHold(const ArrayRayColorHold& other);
    ~ArrayRayColorHold() override;

    // A copy of this holder, or null when memory runs out.
    Plug* Clone() const override;
    // The array of RayColor<M> itself.
    IArray& Array() override;
    const IArray& Array() const override;

    TArray<Colour>& Colours();
    const TArray<Colour>& Colours() const;

private:
    TArray<Colour> colours_{10};
};

extern template class KOR_PLUGIN_API ArrayRayColorHold<BWModel<Unpolarized>>;
extern template class KOR_PLUGIN_API ArrayRayColorHold<BWModel<StokesPolarization>>;
extern template class KOR_PLUGIN_API ArrayRayColorHold<RGBModel<Unpolarized>>;
extern template class KOR_PLUGIN_API ArrayRayColorHold<RGBModel<StokesPolarization>>;
extern template class KOR_PLUGIN_API ArrayRayColorHold<SpectralModel<Unpolarized>>;
extern template class KOR_PLUGIN_API ArrayRayColorHold<SpectralModel<StokesPolarization>>;

} // namespace Korvane
