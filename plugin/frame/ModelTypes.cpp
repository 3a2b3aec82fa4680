#include "plugin/frame/ModelTypes.h"

#include "hostkit/base/GlobTr.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <string>

namespace Korvane {
namespace {

// Words of the display names, after the polarization name.
constexpr const char* kBWWord = "black/white";
constexpr const char* kRGBWord = "RGB";
constexpr const char* kSpectralWord = "spectral";

template <class Pol>
std::string ModelIdent(const char* modelTag) {
    return std::string(Pol::Tag()) + modelTag;
}

template <class Pol>
std::string DisplayName(const char* word) {
    return std::string(Pol::PolarName()) + " " + word;
}

} // namespace

template <class Pol>
BWModelType<Pol>::BWModelType()
    : PlugType(ModelIdent<Pol>(BBWModel::Tag()).c_str(), TColorModel, true, nullptr) {
    SetName(DisplayName<Pol>(kBWWord).c_str());
}

template <class Pol>
Plug* BWModelType<Pol>::NewInstance() {
    return BWModel<Pol>::GetModel();
}

template <class Pol>
int BWModelType<Pol>::SerializeInstance(Plug*, Serializer&) {
    return 0;
}

template <class Pol>
RGBModelType<Pol>::RGBModelType()
    : PlugType(ModelIdent<Pol>(BRGBModel::Tag()).c_str(), TColorModel, true, nullptr) {
    SetName(DisplayName<Pol>(kRGBWord).c_str());
}

template <class Pol>
Plug* RGBModelType<Pol>::NewInstance() {
    return RGBModel<Pol>::GetModel();
}

template <class Pol>
int RGBModelType<Pol>::SerializeInstance(Plug*, Serializer&) {
    return 0;
}

template <class Pol>
RGBModel<Pol>* RGBModelType<Pol>::Create() {
    return new RGBModel<Pol>();
}

template <class Pol>
SpectralModelType<Pol>::SpectralModelType()
    : PlugType(ModelIdent<Pol>(BSpectralModel::Tag()).c_str(), TColorModel, true, nullptr) {
    SetName(DisplayName<Pol>(kSpectralWord).c_str());
}

template <class Pol>
Plug* SpectralModelType<Pol>::NewInstance() {
    return new SpectralModel<Pol>();
}

template <class Pol>
int SpectralModelType<Pol>::SerializeInstance(Plug* plug, Serializer& s) {
    auto* model = dynamic_cast<BSpectralModel*>(plug);
    if (!model)
        return User()->InternalError("%s: SerializeInstance() of a plug that is not a spectral "
                                     "model",
                                     Ident().c_str());
    return model->SerializeGrid(s);
}

XYZModelType::XYZModelType() : PlugType("XYZ", TColorModel, true, nullptr) {
    SetName(GlobTr("Korvane::XYZModelType::XYZModelType", "XYZ", nullptr));
}

Plug* XYZModelType::NewInstance() {
    return XYZModel::GetModel();
}

int XYZModelType::SerializeInstance(Plug*, Serializer&) {
    return 0;
}

XYYModelType::XYYModelType() : PlugType("XYY", TColorModel, true, nullptr) {
    SetName(GlobTr("Korvane::XYYModelType::XYYModelType", "XYY", nullptr));
}

Plug* XYYModelType::NewInstance() {
    return XYYModel::GetModel();
}

int XYYModelType::SerializeInstance(Plug*, Serializer&) {
    return 0;
}

template class BWModelType<Unpolarized>;
template class BWModelType<StokesPolarization>;
template class RGBModelType<Unpolarized>;
template class RGBModelType<StokesPolarization>;
template class SpectralModelType<Unpolarized>;
template class SpectralModelType<StokesPolarization>;

} // namespace Korvane
