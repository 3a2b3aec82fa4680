#include "plugin/masscolconv/MassColConv.h"

#include "hostkit/cie/SpikeResponses.h"

#include <memory>
#include <type_traits>

namespace Korvane {
namespace {

// WeightsForLight hands the light RGB table out as TVect3<double> rows.
static_assert(sizeof(RGBColourDistr<double>) == sizeof(TVect3<double>) &&
                  std::is_standard_layout_v<RGBColourDistr<double>> &&
                  std::is_standard_layout_v<TVect3<double>>,
              "RGBColourDistr<double> must have the layout of TVect3<double>");

constexpr int kGrowthStep = 10;
// The bounds of the light RGB density are widened by this factor: the library's one relative
// tolerance, the single-precision epsilon 2^-23.
constexpr double kBoundsWidening = 1.0 + 1.192092896e-7;

// Sizes a table to n rows of zeros. A preparation that stops after sizing a table leaves it
// sized (the next preparation takes the counted table as done), so its rows must read as no
// response rather than as whatever the storage held. 0 or -1.
int SizeZeroed(TArray<RGBColourDistr<double>>& table, int n) {
    if (table.Alloc(n) != 0)
        return -1;
    table.Fill(RGBColourDistr<double>{0.0, 0.0, 0.0});
    return 0;
}

RGBColourDistr<double> ToDistr(const TVect3<double>& v) {
    return {v.x, v.y, v.z};
}

RGBColourDistr<double> Scaled(const TVect3<double>& v, double f) {
    return {v.x * f, v.y * f, v.z * f};
}

} // namespace

MassColConv::MassColConv(const MArray<double>& waves, const CIEConv* conv)
    : waves_(waves), conv_(const_cast<CIEConv*>(conv)), surfaceRGB_(kGrowthStep),
      lightRGB_(kGrowthStep), lightRGBDensity_(kGrowthStep), lightXYZ_(kGrowthStep),
      lightXYZDensity_(kGrowthStep), bounds_{}, zeroRGB_{0.0, 0.0, 0.0} {}

MassColConv::MassColConv(const MassColConv& other)
    : Plug(other), waves_(other.waves_), conv_(other.conv_), surfaceRGB_(other.surfaceRGB_),
      lightRGB_(other.lightRGB_), lightRGBDensity_(other.lightRGBDensity_),
      lightXYZ_(other.lightXYZ_), lightXYZDensity_(other.lightXYZDensity_), bounds_(other.bounds_),
      zeroRGB_(other.zeroRGB_) {}

MassColConv::~MassColConv() = default;

int MassColConv::PrepareForLight() {
    const int n = waves_.Count();
    if (lightRGB_.Count() == n)
        return 0;
    if (!Converter()) // made without a converter: nothing to fill the tables from
        return -1;
    if (SizeZeroed(lightRGB_, n) != 0 || SizeZeroed(lightRGBDensity_, n) != 0 ||
        SizeZeroed(lightXYZ_, n) != 0 || SizeZeroed(lightXYZDensity_, n) != 0)
        return -1;
    TArray<double> spike(kGrowthStep);
    MArray<double> inv(kGrowthStep);
    if (spike.Alloc(n) != 0 || inv.Alloc(n) != 0)
        return -1;

    // Inverse trapezoid weights: half the span of the two neighbours inside, half the single
    // step at either end; 1 on a one-point grid.
    const MArray<double>& w = waves_;
    if (n > 1) {
        inv[0] = 1.0 / ((w[1] - w[0]) * 0.5);
        for (int i = 1; i < n - 1; ++i)
            inv[i] = 1.0 / ((w[i + 1] - w[i - 1]) * 0.5);
        inv[n - 1] = 1.0 / ((w[n - 1] - w[n - 2]) * 0.5);
    } else {
        inv[0] = 1.0;
    }

    for (int c = 0; c < 3; ++c)
        bounds_[c] = {1e10, -1e10};
    // The RGB of a spike comes from the held converter (Spectr2RGB), its XYZ from the current one
    // (the static spectrum2xyz); each answers from its tables for the grid, bit for bit what the
    // conversion of the whole spike gives, in one pass over the grid (SpikeResponses.h). The
    // spike array above is sized all the same, so that its failure is the same failure as ever.
    const CIEConv* conv = Converter();
    const SpikeResponses rgbSpikes(*conv, waves_);
    const std::unique_ptr<SpikeResponses> xyzOther =
        conv == CIEConv::Current() ? nullptr
                                   : std::make_unique<SpikeResponses>(*CIEConv::Current(), waves_);
    const SpikeResponses& xyzSpikes = xyzOther ? *xyzOther : rgbSpikes;
    for (int i = 0; i < n; ++i) {
        const TVect3<double> rgb = rgbSpikes.LightRGB(i);
        lightRGB_[i] = ToDistr(rgb);
        lightRGBDensity_[i] = Scaled(rgb, inv[i]);
        const TVect3<double> density{lightRGBDensity_[i].r, lightRGBDensity_[i].g,
                                     lightRGBDensity_[i].b};
        for (int c = 0; c < 3; ++c) {
            if (density[c] < bounds_[c].lo)
                bounds_[c].lo = density[c];
            if (density[c] > bounds_[c].hi)
                bounds_[c].hi = density[c];
        }
        const TVect3<double> xyz = xyzSpikes.LightXYZ(i);
        lightXYZ_[i] = ToDistr(xyz);
        lightXYZDensity_[i] = Scaled(xyz, inv[i]);
    }
    // All six values, minima and maxima alike: a positive minimum grows, a negative maximum
    // shrinks.
    for (int c = 0; c < 3; ++c) {
        bounds_[c].lo *= kBoundsWidening;
        bounds_[c].hi *= kBoundsWidening;
    }
    return 0;
}

int MassColConv::PrepareForSurface() {
    const int n = waves_.Count();
    if (surfaceRGB_.Count() == n)
        return 0;
    if (!Converter())
        return -1;
    TArray<double> spike(kGrowthStep);
    if (SizeZeroed(surfaceRGB_, n) != 0 || spike.Alloc(n) != 0)
        return -1;
    const SpikeResponses spikes(*Converter(), waves_);
    for (int i = 0; i < n; ++i)
        surfaceRGB_[i] = ToDistr(spikes.ReflectanceRGB(i));
    return 0;
}

const RGBColourDistr<double>& MassColConv::WeightForLight(int i) {
    return PrepareForLight() == 0 ? lightRGB_[i] : zeroRGB_;
}

const RGBColourDistr<double>& MassColConv::WeightForSurface(int i) {
    return PrepareForSurface() == 0 ? surfaceRGB_[i] : zeroRGB_;
}

const TVect3<double>* MassColConv::WeightsForLight() {
    if (PrepareForLight() != 0)
        return nullptr;
    return reinterpret_cast<const TVect3<double>*>(lightRGB_.Data());
}

} // namespace Korvane
