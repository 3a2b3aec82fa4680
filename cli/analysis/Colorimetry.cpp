#include "cli/analysis/Colorimetry.h"

#include "cli/analysis/Cielab.h"
#include "cli/analysis/ObserverTables.h"
#include "cli/analysis/SpectrumXYZ.h"

#include <utility>

namespace Korvane::Analysis {
namespace {

Vec3 Triple(const ModelColour& colour) {
    Vec3 v{};
    colour.Get(v.data());
    return v;
}

} // namespace

Colorimeter::Colorimeter(const ColorModel& spectral, const ColorModel& xyz, std::vector<double> nm,
                         bool reflectance, std::vector<double> illuminant)
    : spectral_(spectral), nm_(std::move(nm)), reflectance_(reflectance),
      illuminant_(std::move(illuminant)), observer_(CurrentObserver()),
      colour_(spectral, reflectance ? ColourKind::Surface : ColourKind::Light),
      xyz_(xyz, reflectance ? ColourKind::Surface : ColourKind::Light),
      light_(spectral, ColourKind::Light) {}

// The holders, and the white of reflectances under D65: its XYZ through the same conversion.
ColorimetryFailure Colorimeter::Prepare() {
    for (const ModelColour* c : {&colour_, &xyz_, &light_})
        if (c->Status() != 0)
            return {ColorimetryStep::Holders, c->Status()};
    if (reflectance_ && illuminant_.empty()) {
        colour_.Set(std::vector<double>(nm_.size(), 1.0).data());
        if (const int status = xyz_.ConvertFrom(colour_))
            return {ColorimetryStep::WhiteReflector, status};
        white_ = Triple(xyz_);
    }
    prepared_ = true;
    return {};
}

ColorimetryFailure Colorimeter::Analyze(const double* values, SpectrumColorimetry& out) {
    if (!prepared_)
        if (const ColorimetryFailure f = Prepare(); f.Failed())
            return f;
    SpectrumColorimetry r;
    r.first = nm_.front();
    r.last = nm_.back();
    r.count = nm_.size();
    const SpectrumView view{nm_.data(), values, static_cast<int>(r.count)};
    if (!reflectance_) {
        colour_.Set(values);
        if (const int status = xyz_.ConvertFrom(colour_))
            return {ColorimetryStep::Spectrum, status};
        r.xyz = Triple(xyz_);
        TVect2<double> xy(0.0, 0.0);
        double luminance = 0.0;
        spectral_.GetChromaticity(colour_.Light(), luminance, xy);
        r.luminance = luminance;
        r.xy = {xy.x, xy.y};
        r.radiant = spectral_.LgtEnergy(colour_.Light());
        r.cri = ColourRenderingIndex(view);
    } else {
        Vec3 white = white_;
        if (illuminant_.empty()) {
            colour_.Set(values);
            if (const int status = xyz_.ConvertFrom(colour_))
                return {ColorimetryStep::Spectrum, status};
            r.xyz = Triple(xyz_);
        } else if (ReflectanceXYZ(view, illuminant_.data(), r.xyz, white) != 0) {
            return {ColorimetryStep::Illuminant, -1};
        }
        r.xy = Xy(r.xyz);
        light_.Set(values);
        r.radiant = spectral_.LgtEnergy(light_.Light());
        r.lab = Lab(r.xyz, white);
    }
    r.uv = UvPrime(r.xyz);
    r.cct = CctOhno2013(Uv1960(r.xyz), observer_);
    if (r.xyz[0] + r.xyz[1] + r.xyz[2] > 0.0)
        r.dominant = DominantWavelengthOf(r.xy, observer_);
    r.linear = reflectance_ ? LinearSrgb(r.xyz) : LightSrgb(r.xyz);
    r.srgb = EncodeSrgb(r.linear);
    out = std::move(r);
    return {};
}

} // namespace Korvane::Analysis
