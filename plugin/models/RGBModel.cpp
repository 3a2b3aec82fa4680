// RGBModel<Pol>: identity and construction, and the one place where both instantiations are
// made. The operations are grouped by theme in the RGB*.inl files included below.
#include "plugin/models/RGBModel.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/frame/LibraryObjects.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/ColourMath.h"
#include "plugin/models/RGBOps.h"
#include "plugin/models/SourceSamples.h"

namespace Korvane {
namespace {

constexpr int kRGBKindBit = 32;

template <class Pol>
constexpr ModelKind kRGBKind = Pol::kIsPolarized ? ModelKind::StkRGB : ModelKind::URGB;

// RGB models made by the default constructor since the library was loaded, both polarizations
// together; never decremented.
int gRGBModelsCreated = 0;

// The shared converter for a reconstruction, after the unpolarized RGB singleton was asked for.
const CIEConvAll* ReconstructionConverter() {
    RGBModel<Unpolarized>::GetModel();
    return ColorModel::GetCIEConvAll();
}

} // namespace

const char* BRGBModel::Tag() {
    return "RGB";
}

int BRGBModel::RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                            TArray<double>& spectrum, bool attr) {
    const CIEConvAll* conv = ReconstructionConverter();
    if (!conv)
        return -1;
    return attr ? conv->RGB2SpectrumAttr(rgb, waves, spectrum)
                : conv->RGB2Spectrum(rgb, waves, spectrum);
}

int BRGBModel::RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                            double* spectrum, int n, bool attr) {
    const CIEConvAll* conv = ReconstructionConverter();
    if (!conv)
        return -1;
    return attr ? conv->RGB2SpectrumAttr(rgb, waves, spectrum, n)
                : conv->RGB2Spectrum(rgb, waves, spectrum, n);
}

template <class Pol>
RGBModel<Pol>::RGBModel() {
    if (PlugType* type = ClassType())
        this->SetName(type->Ident().c_str());
    ++gRGBModelsCreated;
    User()->LogMessage("RGB color model %d is created", gRGBModelsCreated);
}

template <class Pol>
RGBModel<Pol>::RGBModel(const RGBModel& other)
    : BRGBModel(other), FixedColourModel<RGBModel<Pol>>(other) {}

template <class Pol>
RGBModel<Pol>::~RGBModel() = default;

template <class Pol>
PlugType* RGBModel<Pol>::ClassType() {
    return Library::Slot(kRGBKind<Pol>).type;
}

template <class Pol>
RGBModel<Pol>* RGBModel<Pol>::GetModel() {
    return static_cast<RGBModel*>(Library::Slot(kRGBKind<Pol>).model.Get());
}

template <class Pol>
PlugType* RGBModel<Pol>::ObjType() const {
    return ClassType();
}

template <class Pol>
int RGBModel<Pol>::GetModelCode() const {
    return kRGBKindBit + Pol::kPolarizationBit;
}

template <class Pol>
bool RGBModel<Pol>::HasPolarization() const {
    return Pol::kIsPolarized;
}

template <class Pol>
bool RGBModel<Pol>::IsRGB() const {
    return true;
}

template <class Pol>
int RGBModel<Pol>::NWaves() const {
    return 3;
}

} // namespace Korvane

#include "plugin/models/RGBArithmetic.inl"
#include "plugin/models/RGBConversions.inl"
#include "plugin/models/RGBDisplay.inl"
#include "plugin/models/RGBHolders.inl"

namespace Korvane {

template class RGBModel<Unpolarized>;
template class RGBModel<StokesPolarization>;

} // namespace Korvane
