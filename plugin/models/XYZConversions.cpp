// XYZModel: conversions of colours of any model into XYZ colours, and the reading of source
// colours that the xyY model shares (XYZSources.h).
#include "plugin/models/XYZModel.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConv.h"
#include "plugin/models/CIETriple.h"
#include "plugin/models/SourceKind.h"
#include "plugin/models/SourceSamples.h"
#include "plugin/models/XYZSources.h"

#include <type_traits>

namespace Korvane {
namespace XYZSource {
namespace {

using ColourAccess::Value;

// What the colour kinds read differently: the samples a spectral source hands out, the integral
// that gives their XYZ, and whether the source's polarization matters.
struct LightKind {
    static int Unsupported() {
        return User()->InternalError("Not supported light color conversion");
    }
    static constexpr bool kPolarized = true;
    static void Samples(const ColorModel& src, const ILgtColor& c, double* out) {
        src.LgtToArray(c, out);
    }
    static void Integrate(const TArray<double>& waves, const TArray<double>& s,
                          TVect3<double>& xyz) {
        CIEConv::spectrum2xyz(waves, s, xyz);
    }
};

struct SurfaceKind {
    static int Unsupported() {
        return User()->InternalError("Not supported surface color conversion");
    }
    static constexpr bool kPolarized = true;
    static void Samples(const ColorModel& src, const ISurfColor& c, double* out) {
        src.SurfToArray(c, out);
    }
    static void Integrate(const TArray<double>& waves, const TArray<double>& s,
                          TVect3<double>& xyz) {
        CIEConv::spectrum2xyzAttr(waves, s, xyz);
    }
};

struct ScalarKind {
    static int Unsupported() {
        return User()->InternalError("Not supported scalar color conversion");
    }
    static constexpr bool kPolarized = false;
    static void Samples(const ColorModel& src, const IScalarColor& c, double* out) {
        src.ScalarToArray(c, out);
    }
    static void Integrate(const TArray<double>& waves, const TArray<double>& s,
                          TVect3<double>& xyz) {
        CIEConv::spectrum2xyz(waves, s, xyz);
    }
};

// Calls f with the source colour as a value of Model in the polarization the source reports.
template <template <class> class Model, class I, class F>
void InSourceLayout(const ColorModel& src, const I& from, F f) {
    if (src.HasPolarization())
        f(Value<Model<StokesPolarization>>(from));
    else
        f(Value<Model<Unpolarized>>(from));
}

// N applied to the intensity of each channel of a BW (one channel, read three times) or RGB
// colour.
template <template <class> class Model, class I>
TVect3<double> XYZOfChannels(const ColorModel& src, const I& from) {
    TVect3<double> v(0.0, 0.0, 0.0);
    InSourceLayout<Model>(src, from, [&v](const auto& c) {
        constexpr int channels = std::decay_t<decltype(c)>::kChannels;
        for (int ch = 0; ch < 3; ++ch)
            v[ch] = c.Channel(channels == 1 ? 0 : ch)[0];
    });
    return ColorModel::GetCIEConv()->RGB2XYZ() * v;
}

// XYZ of a spectral colour: its first NWaves samples in a scratch spectrum (SourceSamples.h),
// integrated over the source's grid. The integral's own status is not a failure of the
// conversion: on a grid it cannot integrate it gives (0, 0, 0). 0, or ErrorNoMemory's code.
template <class Kind, class I>
int SpectralXYZ(const ColorModel& src, const I& from, TVect3<double>& xyz) {
    if constexpr (std::is_same_v<Kind, LightKind>) {
        if (SourceSamples::InPlaceLightXYZ(SourceOf(src), from, xyz))
            return 0;
    }
    TArray<double> spectrum(10);
    if (SourceSamples::FirstSamples(src, from, Kind::Samples, spectrum) != 0)
        return User()->ErrorNoMemory(-1);
    Kind::Integrate(src.GetWaveLengths(), spectrum, xyz);
    return 0;
}

template <class Kind, class I>
int ReadAs(const ColorModel* src, const I& from, Target target, const char* refusal,
           TVect3<double>& out) {
    const auto inTarget = [target](const TVect3<double>& xyz) {
        return target == Target::XYZ ? xyz : ColourMath::XYZToXYY(xyz);
    };
    const SourceKind kind = KindOf(src);
    if (kind == SourceKind::BW) {
        out = inTarget(XYZOfChannels<BWModel>(*src, from));
    } else if (kind == SourceKind::RGB) {
        out = inTarget(XYZOfChannels<RGBModel>(*src, from));
    } else if (kind == SourceKind::XYZ) {
        out = inTarget(CIETriple::Get(from));
    } else if (kind == SourceKind::XYY) {
        const TVect3<double> xyY = CIETriple::Get(from);
        out = target == Target::XYY ? xyY : ColourMath::XYYToXYZ(xyY);
    } else if (kind == SourceKind::Spectral) {
        if (Kind::kPolarized && src->HasPolarization())
            return User()->ErrorMessageEx(refusal, refusal);
        TVect3<double> xyz(0.0, 0.0, 0.0);
        if (const int status = SpectralXYZ<Kind>(*src, from, xyz); status != 0)
            return status;
        out = inTarget(xyz);
    } else {
        return Kind::Unsupported();
    }
    return 0;
}

} // namespace

int Read(const ColorModel* src, const ILgtColor& from, Target target, const char* refusal,
         TVect3<double>& out) {
    return ReadAs<LightKind>(src, from, target, refusal, out);
}

int Read(const ColorModel* src, const ISurfColor& from, Target target, const char* refusal,
         TVect3<double>& out) {
    return ReadAs<SurfaceKind>(src, from, target, refusal, out);
}

int Read(const ColorModel* src, const IScalarColor& from, Target target, TVect3<double>& out) {
    return ReadAs<ScalarKind>(src, from, target, nullptr, out);
}

int SpectralRay(const ColorModel& dst, const ColorModel& src, const ILgtColor& from, Target target,
                const char* refusal, IRayColor& to) {
    if (src.HasPolarization())
        return User()->ErrorMessageEx(refusal, refusal);
    TVect3<double> xyz(0.0, 0.0, 0.0);
    if (const int status = SpectralXYZ<LightKind>(src, from, xyz); status != 0)
        return status;
    ILgtColor& light = LightPart(to);
    CIETriple::Set(light, target == Target::XYZ ? xyz : ColourMath::XYZToXYY(xyz));
    const double energy = src.LgtEnergy(from);
    if (energy != 0.0) {
        // No guard against a zero sum: the ratio is taken as it stands.
        const double factor = energy / dst.SumLgtColor(light);
        auto& v = ColourAccess::Value<XYZModel>(light);
        for (int k = 0; k < 3; ++k)
            v[k] *= factor;
    }
    return 0;
}

} // namespace XYZSource

using XYZSource::Target;

int XYZModel::ConvertColor(const ColorModel* src, const ISurfColor& from, ISurfColor& to) const {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    const int status =
        XYZSource::Read(src, from, Target::XYZ, "Not supported XYZ surface color conversion", xyz);
    if (status == 0)
        CIETriple::Set(to, xyz);
    return status;
}

int XYZModel::ConvertColor(const ColorModel* src, const IScalarColor& from,
                           IScalarColor& to) const {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    const int status = XYZSource::Read(src, from, Target::XYZ, xyz);
    if (status == 0)
        CIETriple::Set(to, xyz);
    return status;
}

int XYZModel::ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    const int status =
        XYZSource::Read(src, from, Target::XYZ, "Not supported XYZ light color conversion", xyz);
    if (status != 0)
        return status;
    CIETriple::Set(to, xyz);
    ClampLgtColor(to);
    return 0;
}

int XYZModel::ConvertToRayColor(const ColorModel* src, const ILgtColor& from, IRayColor& to) const {
    if (!src || !src->IsSpectral())
        return ColorModel::ConvertToRayColor(src, from, to);
    return XYZSource::SpectralRay(*this, *src, from, Target::XYZ,
                                  "Not supported light to XYZ ray color conversion", to);
}

void XYZModel::RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const {
    CIETriple::Set(LightPart(to), GetCIEConv()->RGB2XYZ() * rgb);
}

void XYZModel::RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const {
    CIETriple::Set(to, GetCIEConv()->RGB2XYZ() * rgb);
}

int XYZModel::SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                        IRayColor& to) const {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    CIEConv::spectrum2xyz(src->GetWaveLengths(), spectrum, xyz);
    CIETriple::Set(LightPart(to), xyz);
    ClampLgtColor(LightPart(to));
    return 0;
}

} // namespace Korvane
