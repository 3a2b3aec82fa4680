#include "hostkit/colormodel/ColorModel.h"

#include "hostkit/base/CallLog.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/cie/CurrentConv.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/field/WaveLength.h"

namespace Korvane {
namespace {

// Luminous efficacy of radiation at 540 THz, in lm/W (SI definition of the candela): a light of
// tristimulus Y (radiometric units) has luminance 683 Y.
constexpr double kLuminousEfficacy = 683.0;

// The host's implicit colour model; not owned (see the lifetime rule in ColorModel.h).
ColorModel* gImplicitModel = nullptr;

// The current CIEConvAll. Until the first store the built-in default is current; it is asked for
// when needed rather than copied here, so that no order of static construction matters.
bool gConvStored = false;
const CIEConvAll* gStoredConv = nullptr;

} // namespace

ColorModel::ColorModel() = default;
ColorModel::ColorModel(const ColorModel& other) = default;

ColorModel::~ColorModel() {
    CallLog::Record("~ColorModel", Name());
    if (TColorModel)
        TColorModel->RemoveColorModel(this);
    if (gImplicitModel == this)
        gImplicitModel = nullptr;
}

bool ColorModel::HasPolarization() const {
    return false;
}
bool ColorModel::IsBW() const {
    return false;
}
bool ColorModel::IsRGB() const {
    return false;
}
bool ColorModel::IsXYZ() const {
    return false;
}
bool ColorModel::IsXYY() const {
    return false;
}
bool ColorModel::IsSpectral() const {
    return false;
}

void ColorModel::GetWaveRange(double& low, double& high) const {
    low = TWaveLength->BottomLimit();
    high = TWaveLength->TopLimit();
}

const MArray<double>& ColorModel::GetWaveLengths() const {
    // Never resized: a model without a grid of its own shares this one.
    static const MArray<double> noGrid;
    return noGrid;
}

bool ColorModel::IsEqual(const ColorModel* other) const {
    return other != nullptr && other->ObjType() == ObjType();
}

void ColorModel::SetAsImplicit() {
    gImplicitModel = this;
}

MassColConv* ColorModel::GetMassColConv() const {
    return nullptr;
}

double ColorModel::LgtEnergy(const ILgtColor& c) const {
    return SumLgtColor(c);
}

void ColorModel::EnergyToDensity(ILgtColor&) const {}
void ColorModel::DensityToEnergy(ILgtColor&) const {}

int ColorModel::ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                                  IRayColor& to) const {
    return ConvertColor(src, from, LightPart(to));
}

void ColorModel::GetChromaticity(const ILgtColor& c, double& luminance, TVect2<double>& xy) const {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    LgtColorToXYZ(c, xyz);
    const double sum = xyz.x + xyz.y + xyz.z;
    if (sum == 0.0)
        xy = TVect2<double>(0.0, 0.0);
    else
        xy = TVect2<double>(xyz.x / sum, xyz.y / sum);
    luminance = kLuminousEfficacy * xyz.y;
}

void ColorModel::SetCIEConvAll(const CIEConvAll* conv) {
    StoreCIEConvAll(conv);
}

const CIEConv* ColorModel::GetCIEConv() {
    return Cie::CurrentConv();
}

const CIEConvAll* ColorModel::GetCIEConvAll() {
    return gConvStored ? gStoredConv : CIEConvAll::Default();
}

ColorModel* ColorModel::GetImplicitModel() {
    return gImplicitModel;
}

void ColorModel::StoreCIEConvAll(const CIEConvAll* conv) {
    gStoredConv = conv;
    gConvStored = true;
    CIEConv::SetCurrent(conv);
}

} // namespace Korvane
