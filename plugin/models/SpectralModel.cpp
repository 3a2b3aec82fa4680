// SpectralModel<Pol>: identity, construction, the grid and its converter, and the one place
// where both instantiations are made. The colour operations are grouped by theme in the
// Spectral*.inl files included below.
#include "plugin/models/SpectralModel.h"

#include "hostkit/base/Kernels.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/frame/LibraryObjects.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/RGBModel.h"

#include <typeinfo>

namespace Korvane {
namespace {

constexpr int kSpectralKindBit = 64;

template <class Pol>
constexpr ModelKind kSpectralKind = Pol::kIsPolarized ? ModelKind::StkSpectr : ModelKind::USpectr;

// The grid of the shared 380..780 nm models: 41 wavelengths, 10 nm apart.
constexpr int k380To780Count = 41;
constexpr int k380To780Start = 380;
constexpr int k380To780Step = 10;

} // namespace

template <class Pol>
SpectralModel<Pol>::SpectralModel(const MArray<double>& waves) {
    SetNameFromType();
    SpectralModel::SetWaveLengths(waves);
}

template <class Pol>
SpectralModel<Pol>::SpectralModel() {
    SpectralModel::SetWaveLengths(DefWavelengths());
    SetNameFromType();
}

template <class Pol>
SpectralModel<Pol>::SpectralModel(const SpectralModel& other)
    : BSpectralModel(other), conv_(other.conv_), cieGrid_(other.cieGrid_) {}

template <class Pol>
SpectralModel<Pol>::~SpectralModel() = default;

template <class Pol>
void SpectralModel<Pol>::SetNameFromType() {
    if (PlugType* type = ClassType())
        SetName(type->Ident().c_str());
}

template <class Pol>
PlugType* SpectralModel<Pol>::ClassType() {
    return Library::Slot(kSpectralKind<Pol>).type;
}

template <class Pol>
SpectralModel<Pol>* SpectralModel<Pol>::GetModel() {
    return static_cast<SpectralModel*>(Library::Slot(kSpectralKind<Pol>).model.Get());
}

template <class Pol>
SpectralModel<Pol>* SpectralModel<Pol>::GetModel_380_780() {
    PlugRef& shared = Library::Model380To780(Pol::kIsPolarized);
    if (!shared) {
        MArray<double> grid(10);
        if (grid.Alloc(k380To780Count) != 0) {
            User()->ErrorNoMemory(-1);
            return nullptr;
        }
        for (int i = 0; i < k380To780Count; ++i)
            grid[i] = static_cast<double>(k380To780Start + k380To780Step * i);
        shared = new SpectralModel(grid);
    }
    return static_cast<SpectralModel*>(shared.Get());
}

template <class Pol>
PlugType* SpectralModel<Pol>::ObjType() const {
    return ClassType();
}

template <class Pol>
Plug* SpectralModel<Pol>::Clone() const {
    return new SpectralModel(*this);
}

template <class Pol>
int SpectralModel<Pol>::GetModelCode() const {
    return kSpectralKindBit + Pol::kPolarizationBit;
}

template <class Pol>
bool SpectralModel<Pol>::HasPolarization() const {
    return Pol::kIsPolarized;
}

template <class Pol>
int SpectralModel<Pol>::Wavelengths(const BBox1<double>*& ranges) const {
    ranges = nullptr;
    return 0;
}

template <class Pol>
MassColConv* SpectralModel<Pol>::GetMassColConv() const {
    return conv_.Get();
}

template <class Pol>
void SpectralModel<Pol>::SetCIEConvAll(const CIEConvAll* conv) {
    ColorModel::SetCIEConvAll(conv);
    RenewConverter(conv ? static_cast<const CIEConv*>(conv) : ColorModel::GetCIEConv());
}

template <class Pol>
int SpectralModel<Pol>::SetWaveLengths(const MArray<double>& waves) {
    if (waves.IsEqual(GetWaveLengths()) && conv_ && conv_->Wavelengths().IsEqual(waves))
        return 0;
    cieGrid_ = CIEGrid();
    const int status = BSpectralModel::SetWaveLengths(waves);
    if (status != 0)
        return status;
    return RenewConverter(ColorModel::GetCIEConv());
}

template <class Pol>
void SpectralModel<Pol>::OnLoad(int version) {
    BSpectralModel::OnLoad(version);
    cieGrid_ = CIEGrid();
    if (NWaves() == 0)
        conv_ = nullptr;
    else
        RenewConverter(ColorModel::GetCIEConv());
}

template <class Pol>
int SpectralModel<Pol>::RenewConverter(const CIEConv* conv) {
    conv_ = new MassColConv(GetWaveLengths(), conv);
    cieGrid_ = conv ? conv->ResolveGrid(GetWaveLengths()) : CIEGrid();
    if (!conv_)
        return User()->ErrorNoMemory(-1);
    // The converter copies the grid in its constructor, which cannot fail; a copy that ran out
    // of memory leaves it on another grid, and converting through it would read past its tables.
    // That is the same failure as no converter at all.
    if (!conv_->Wavelengths().IsEqual(GetWaveLengths())) {
        conv_ = nullptr;
        cieGrid_ = CIEGrid();
        return User()->ErrorNoMemory(-1);
    }
    conv_->PrepareForLight(); // a failure is not reported: conversions prepare again
    return 0;
}

} // namespace Korvane

#include "plugin/models/SpectralArithmetic.inl"
#include "plugin/models/SpectralColourAccess.inl"
#include "plugin/models/SpectralConversions.inl"
#include "plugin/models/SpectralDisplay.inl"
#include "plugin/models/SpectralHolders.inl"

namespace Korvane {

template class SpectralModel<Unpolarized>;
template class SpectralModel<StokesPolarization>;

SpectralSource AskedSource(const ColorModel& model) {
    SpectralSource source;
    source.polarized = model.HasPolarization();
    source.n = model.NWaves();
    source.waves = &model.GetWaveLengths();
    return source;
}

} // namespace Korvane
