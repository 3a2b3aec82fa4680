// The plug types of the colour models. A type's identifier is the polarization tag followed by
// the model tag ("UBW", "StkRGB", "USpectr", ...), or "XYZ" and "XYY" for the two CIE models; its
// display name joins the polarization name and the model word ("Unpolarized black/white",
// "Polarized RGB", "Unpolarized spectral"), or is the host's translation of "XYZ" and "XYY". Every
// model type's parent is the host's colour-model type TColorModel.
//
// BW, RGB, XYZ and xyY models have no data of their own: their types hand out the singleton
// model and exchange nothing with archives. A spectral type makes a new model each time and
// exchanges the model's wavelength grid.
#pragma once

#include "hostkit/plugsys/PlugType.h"
#include "plugin/PluginExport.h"
#include "plugin/frame/Polarization.h"
#include "plugin/models/ModelsFwd.h"

namespace Korvane {

template <class Pol>
class KOR_PLUGIN_API BWModelType : public PlugType {
public:
    BWModelType();
    Plug* NewInstance() override;                              // BWModel<Pol>::GetModel()
    int SerializeInstance(Plug* plug, Serializer& s) override; // nothing to exchange: 0
};

template <class Pol>
class KOR_PLUGIN_API RGBModelType : public PlugType {
public:
    RGBModelType();
    Plug* NewInstance() override;                              // RGBModel<Pol>::GetModel()
    int SerializeInstance(Plug* plug, Serializer& s) override; // nothing to exchange: 0
    // A new model of its own (never the singleton), or null when out of memory.
    virtual RGBModel<Pol>* Create();
};

template <class Pol>
class KOR_PLUGIN_API SpectralModelType : public PlugType {
public:
    SpectralModelType();
    // A new model on the default grid, or null when out of memory.
    Plug* NewInstance() override;
    // The model's wavelength grid (BSpectralModel::SerializeGrid); an internal error for a plug
    // that is not a spectral model.
    int SerializeInstance(Plug* plug, Serializer& s) override;
};

class KOR_PLUGIN_API XYZModelType : public PlugType {
public:
    XYZModelType();
    Plug* NewInstance() override;                              // XYZModel::GetModel()
    int SerializeInstance(Plug* plug, Serializer& s) override; // nothing to exchange: 0
};

class KOR_PLUGIN_API XYYModelType : public PlugType {
public:
    XYYModelType();
    Plug* NewInstance() override;                              // XYYModel::GetModel()
    int SerializeInstance(Plug* plug, Serializer& s) override; // nothing to exchange: 0
};

extern template class BWModelType<Unpolarized>;
extern template class BWModelType<StokesPolarization>;
extern template class RGBModelType<Unpolarized>;
extern template class RGBModelType<StokesPolarization>;
extern template class SpectralModelType<Unpolarized>;
extern template class SpectralModelType<StokesPolarization>;

} // namespace Korvane
