#include "plugin/spectral/BSpectralModel.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConv.h"
#include "hostkit/cie/SpikeResponses.h"

#include <cmath>

namespace Korvane {
namespace {

constexpr int kDefaultGridCount = 33;
constexpr int kDefaultGridStart = 390;
constexpr int kDefaultGridStep = 10;

PlugRef gImplicitSpectral;
MArray<double> gDefWavelengths(10);

} // namespace

BSpectralModel::BSpectralModel() = default;

BSpectralModel::BSpectralModel(const BSpectralModel& other)
    : ColorModel(other), waves_(other.waves_), weights_(other.weights_),
      weightsInv_(other.weightsInv_), equidistant_(other.equidistant_) {}

BSpectralModel::~BSpectralModel() = default;

const char* BSpectralModel::Tag() {
    return "Spectr";
}

bool BSpectralModel::CheckWaves(const MArray<double>& waves, bool* equidistant) {
    const int n = waves.Count();
    if (n < 1)
        return false;
    if (!(waves[0] > 0.0))
        return false;
    bool even = true;
    if (n >= 2) {
        double dprev = waves[1] - waves[0];
        if (!(dprev > 0.0))
            return false;
        for (int i = 1; i + 1 < n; ++i) {
            const double d = waves[i + 1] - waves[i];
            if (!(d > 0.0))
                return false;
            // Consecutive steps are compared with each other, not each with the first.
            if (std::abs(d - dprev) > (d + dprev) * kEquidistantTolerance)
                even = false;
            dprev = d;
        }
    }
    if (equidistant)
        *equidistant = even;
    return true;
}

void BSpectralModel::GetWaveRange(double& low, double& high) const {
    if (waves_.Count() == 0)
        return;
    low = waves_[0];
    high = waves_[waves_.Count() - 1];
}

bool BSpectralModel::IsEqual(const ColorModel* other) const {
    if (!other || other->ObjType() != ObjType())
        return false;
    const auto* o = dynamic_cast<const BSpectralModel*>(other);
    return o && waves_.IsEqual(o->waves_) && equidistant_ == o->equidistant_;
}

void BSpectralModel::SetAsImplicit() {
    ColorModel::SetAsImplicit();
    gImplicitSpectral = this;
}

int BSpectralModel::SetWaveLengths(const MArray<double>& waves) {
    bool even = false;
    if (!CheckWaves(waves, &even))
        return User()->InternalError("BSpectralModel::SetWaveLengths()");
    if (waves_.Assign(waves) != 0)
        return User()->ErrorNoMemory(-1);
    equidistant_ = even;
    return CalculateWeights();
}

int BSpectralModel::CalculateWeights() {
    const int n = waves_.Count();
    if (n == 0) // only a damaged load gets here; there is no grid to weigh
        return User()->InternalError("BSpectralModel::CalculateWeights(): empty wavelength grid");
    if (weights_.Alloc(n) != 0 || weightsInv_.Alloc(n) != 0 || xyz_.Alloc(n) != 0)
        return -1;
    if (n < 2) {
        weights_[0] = 1.0;
        weightsInv_[0] = 1.0;
        xyz_[0] = TVect3<double>(1.0, 1.0, 1.0);
        return 0;
    }
    weights_[0] = (waves_[1] - waves_[0]) * 0.5;
    for (int i = 1; i < n - 1; ++i)
        weights_[i] = (waves_[i + 1] - waves_[i - 1]) * 0.5;
    weights_[n - 1] = (waves_[n - 1] - waves_[n - 2]) * 0.5;
    for (int i = 0; i < n; ++i)
        weightsInv_[i] = 1.0 / weights_[i];

    // The XYZ response of a unit spike at each wavelength, as the converter integrates it on
    // this grid (CIEConv::spectrum2xyz of the spike). The converter reads each spike's response
    // from its tables for the grid, bit for bit what the conversion of the whole spike gives, so
    // the table costs one pass over the grid instead of a pass per wavelength. The spike array is
    // still sized, so that running out of memory for it fails here as it always has.
    TArray<double> spike(10, 1);
    if (spike.Alloc(n) != 0)
        return -1;
    const SpikeResponses spikes(*CIEConv::Current(), waves_);
    if (spikes.Status() != 0) // the converter refuses every spike of this grid, the first one too
        return -1;
    for (int i = 0; i < n; ++i)
        xyz_[i] = spikes.LightXYZ(i);
    return 0;
}

void BSpectralModel::OnLoad(int version) {
    ColorModel::OnLoad(version);
    CalculateWeights();
}

int BSpectralModel::SerializeGrid(Serializer& s) {
    s.OpenGroup("Wavelengths");
    bool skip = false;
    if (s.IsReading()) {
        waves_.Realloc(0);
        std::int32_t n = 0;
        s.SerializeCount(n, 1);
        if (waves_.Alloc(n) != 0) {
            s.SetAllocError();
            skip = true;
        }
    } else {
        std::int32_t n = waves_.Count();
        if (n != 0)
            s.SerializeCount(n, 1);
    }
    if (!skip && waves_.Count() > 0)
        s.Serialize(waves_.Data(), waves_.Count());
    const int closed = s.CloseGroup();
    s.Serialize("EquiDistant", equidistant_, false);
    if (s.IsReading()) {
        if (!s.Failed() && !CheckWaves(waves_, nullptr))
            s.SetDataError(waves_.Count() == 0 ? "Wavelengths: the stored grid is empty"
                                               : "Wavelengths: the stored grid is not a valid "
                                                 "grid (wavelengths must be positive and "
                                                 "increasing)");
        if (s.Failed()) // nothing half-read is kept: a grid cut short holds unread values
            waves_.Realloc(0);
    }
    return s.Failed() ? -1 : closed;
}

BSpectralModel* BSpectralModel::GetKLBMSpectralModel() {
    return static_cast<BSpectralModel*>(gImplicitSpectral.Get());
}

const MArray<double>& BSpectralModel::Wavelengths() {
    return GetKLBMSpectralModel()->GetWaveLengths();
}

const MArray<double>& BSpectralModel::Weights() {
    return GetKLBMSpectralModel()->weights_;
}

bool BSpectralModel::Equidistant() {
    return GetKLBMSpectralModel()->equidistant_;
}

int BSpectralModel::NColours() {
    return GetKLBMSpectralModel()->NWaves();
}

int BSpectralModel::SetSpectrogram(const MArray<double>& waves) {
    return GetKLBMSpectralModel()->SetWaveLengths(waves) == 0 ? 0 : -1;
}

MArray<double>& BSpectralModel::DefWavelengths() {
    return gDefWavelengths;
}

int BSpectralModel::FillDefWavelengths() {
    if (gDefWavelengths.Alloc(kDefaultGridCount) != 0)
        return User()->ErrorNoMemory(-1);
    for (int i = 0; i < kDefaultGridCount; ++i)
        gDefWavelengths[i] = static_cast<double>(kDefaultGridStart + kDefaultGridStep * i);
    return 0;
}

PlugRef& BSpectralModel::ImplicitModelRef() {
    return gImplicitSpectral;
}

} // namespace Korvane
