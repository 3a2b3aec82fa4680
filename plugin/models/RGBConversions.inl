// RGBModel<Pol>: conversions of colours of any model into RGB colours. Included by RGBModel.cpp.
//
// A source model is asked what it is in the order IsBW, IsRGB, IsXYZ, IsXYY, IsSpectral, and its
// colour is read as a value of that model in the polarization it reports. BW and RGB colours move
// channel by channel; XYZ and xyY go through M; spectra through the current converter. A
// polarized spectrum is converted element by element: element k of every sample, gathered over
// the grid, is one spectrum whose RGB becomes element k of the three destination channels (only
// element 0, the intensity, when the destination is unpolarized). A spectral source of any sample
// count is read as SourceSamples.h states for every model: a polarized one of another count than
// its grid fails with the conversion's report, an unpolarized one gives its first NWaves samples.
#pragma once

#include "plugin/models/SourceKind.h"

#include <algorithm>
#include <type_traits>
#include <typeinfo>

namespace Korvane {
namespace RGBConversion {

using ColourAccess::Value;

// Calls f with the source colour as a value of SrcModel in the polarization the source reports.
template <template <class> class SrcModel, class I, class F>
void WithSourceLayout(const ColorModel* src, const I& from, F f) {
    if (src->HasPolarization())
        f(Value<SrcModel<StokesPolarization>>(from));
    else
        f(Value<SrcModel<Unpolarized>>(from));
}

// Channel c of a BW (one channel) or RGB source into channel c of the destination: the whole
// component when both have the same layout, else the intensity with every other double 0.
template <class Src, class Dst>
void TakeChannels(const Src& from, Dst& to) {
    for (int ch = 0; ch < Dst::kChannels; ++ch) {
        const auto& s = from.Channel(Src::kChannels == 1 ? 0 : ch);
        auto& d = to.Channel(ch);
        if constexpr (std::is_same_v<typename Src::Component, typename Dst::Component>) {
            d = s;
        } else {
            d = typename Dst::Component{};
            d[0] = s[0];
        }
    }
}

// The three values of an XYZ or xyY colour.
template <class I>
TVect3<double> Triple(const I& from) {
    const auto& v = Value<XYZModel>(from);
    return {v[0], v[1], v[2]};
}

// xyY -> XYZ with every negative coordinate set to 0.
inline TVect3<double> ClampedXYZ(const TVect3<double>& xyY) {
    return ColourMath::ClampNegative(ColourMath::XYYToXYZ(xyY));
}

// Sample i of a spectral distribution: band-guarded for light, stored for the others.
template <class Comp>
const Comp& Sample(const ExtSpctrlColourDistr<Comp>& d, int i) {
    return d.Get(i);
}
template <class Comp>
const Comp& Sample(const SpctrlColourDistr<Comp>& d, int i) {
    return d[i];
}

// The sample count of a spectral source colour, read in the source's own layout.
template <class I>
int SampleCount(const SpectralSource& source, const I& from) {
    if (source.polarized)
        return Value<SpectralModel<StokesPolarization>>(from).Count();
    return Value<SpectralModel<Unpolarized>>(from).Count();
}

// For k = 0 .. elements - 1: element k of every sample of `d`, gathered into one spectrum over
// the source's grid, turned into RGB by toRGB(spectrum, grid) and handed to store(k, rgb). False
// when the sample count is not the source's NWaves or the scratch spectrum cannot be sized.
template <class D, class ToRGB, class Store>
bool GatherElements(const ColorModel* src, const D& d, int elements, ToRGB toRGB, Store store) {
    const int n = d.Count();
    if (n != src->NWaves())
        return false;
    TArray<double> spectrum(10);
    if (spectrum.Alloc(n) != 0)
        return false;
    const MArray<double>& waves = src->GetWaveLengths();
    for (int k = 0; k < elements; ++k) {
        for (int i = 0; i < n; ++i)
            spectrum[i] = Sample(d, i)[k];
        store(k, toRGB(spectrum, waves));
    }
    return true;
}

// A polarized spectral colour into `to`: every element of the destination's component (one when
// it is unpolarized, four for a Stokes vector, sixteen for a Mueller matrix) from the same element
// of the samples.
template <class D, class Dst, class ToRGB>
bool FromPolarizedSpectrum(const ColorModel* src, const D& d, Dst& to, ToRGB toRGB) {
    return GatherElements(src, d, Dst::Component::kSize, toRGB,
                          [&to](int k, const TVect3<double>& rgb) {
                              for (int ch = 0; ch < 3; ++ch)
                                  to.Channel(ch)[k] = rgb[ch];
                          });
}

// The failure report of a spectral path: the same text as format and message.
inline int ConversionFailure(const char* text) {
    return User()->ErrorMessageEx(text, text);
}

// The scratch spectrum of an unpolarized spectral source: the first NWaves doubles that `read`
// (the source's array slot of the colour's kind) writes, zeros past them (SourceSamples.h). 0, or
// the code of ErrorNoMemory(-1) when the scratch cannot be sized.
template <class I, class Read>
int ReadScratch(const ColorModel* src, const I& from, TArray<double>& spectrum, Read read) {
    if (SourceSamples::FirstSamples(*src, from, read, spectrum) != 0)
        return User()->ErrorNoMemory(-1);
    return 0;
}

inline TVect3<double> LightRGB(const TArray<double>& s, const MArray<double>& waves) {
    return ColorModel::GetCIEConv()->Spectr2RGB(s, waves, false);
}

inline TVect3<double> SurfaceRGB(const TArray<double>& s, const MArray<double>& waves) {
    return ColorModel::GetCIEConv()->Spectr2RGBAttr(s, waves, false);
}

// M applied to spectrum2xyz of an unpolarized light or scalar spectrum.
template <class S>
TVect3<double> SpectrumRGB(const MArray<double>& waves, const S& spectrum) {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    CIEConv::spectrum2xyz(waves, spectrum, xyz);
    return RGBOps::ApplyM(xyz);
}

// spectrum2xyz of the stored samples of an unpolarized spectral light, seen in place without a
// copy (the view only reads them).
template <class I>
TVect3<double> StoredLightXYZ(const MArray<double>& waves, const I& from) {
    const auto& c = Value<SpectralModel<Unpolarized>>(from);
    const BArray<double> samples(const_cast<double*>(c.Values()), c.Count());
    TVect3<double> xyz(0.0, 0.0, 0.0);
    CIEConv::spectrum2xyz(waves, samples, xyz);
    return xyz;
}

// What SetIntensities and then the light clamp of RGBModel<Pol> leave: an unpolarized light has
// every negative intensity set to 0 (v < 0 ? 0 : v, so NaN and -0 stay); a polarized one is not
// clamped.
template <class Pol, class V>
void SetClampedLight(V& c, const TVect3<double>& v) {
    if constexpr (Pol::kIsPolarized) {
        RGBOps::SetIntensities(c, v);
    } else {
        for (int ch = 0; ch < 3; ++ch)
            c.Channel(ch)[0] = std::max(v[ch], 0.0); // v < 0 ? 0 : v
    }
}

// The light of a spectral source as RGB intensities (the light clamp still to come): a polarized
// spectrum element by element, an unpolarized one read in place where nothing would be copied,
// else through the scratch spectrum. 0, or the code of the failure report.
template <class Pol, class Out>
int LightFromSpectrum(const ColorModel* src, const ILgtColor& from, Out& out) {
    const SpectralSource source = SourceOf(*src);
    TVect3<double> xyz(0.0, 0.0, 0.0);
    if (source.polarized) {
        const auto& d = Value<SpectralModel<StokesPolarization>>(from).Distr();
        if (!FromPolarizedSpectrum(src, d, out, LightRGB))
            return ConversionFailure("RGB light color conversion failure");
    } else if (SourceSamples::InPlaceLightXYZ(source, from, xyz)) {
        // Read where it is: no scratch array when nothing would be copied.
        RGBOps::SetIntensities(out, RGBOps::ApplyM(xyz));
    } else {
        TArray<double> spectrum(10);
        const auto read = [](const ColorModel& m, const ILgtColor& c, double* values) {
            m.LgtToArray(c, values);
        };
        if (const int r = ReadScratch(src, from, spectrum, read))
            return r;
        RGBOps::SetIntensities(out, SpectrumRGB(src->GetWaveLengths(), spectrum));
    }
    return 0;
}

// The light conversion from every source kind but XYZ and xyY, the light clamp included. Out of
// line, so that the per-ray XYZ path stays small.
template <class Pol>
__attribute__((noinline)) int OtherLight(const RGBModel<Pol>& model, SourceKind kind,
                                         const ColorModel* src, const ILgtColor& from,
                                         ILgtColor& to) {
    auto& out = Value<RGBModel<Pol>>(to);
    if (kind == SourceKind::BW) {
        WithSourceLayout<BWModel>(src, from, [&out](const auto& c) { TakeChannels(c, out); });
    } else if (kind == SourceKind::RGB) {
        WithSourceLayout<RGBModel>(src, from, [&out](const auto& c) { TakeChannels(c, out); });
    } else if (kind == SourceKind::Spectral) {
        if (const int r = LightFromSpectrum<Pol>(src, from, out))
            return r;
    } else {
        return User()->InternalError("Not supported light color conversion");
    }
    model.RGBModel<Pol>::ClampLgtColor(to); // the model's own clamp, called directly
    return 0;
}

} // namespace RGBConversion

template <class Pol>
int RGBModel<Pol>::ConvertColor(const ColorModel* src, const ISurfColor& from,
                                ISurfColor& to) const {
    using namespace RGBConversion;
    constexpr const char* kFailure = "RGB surface color conversion failure";
    auto& out = Value<RGBModel>(to);
    if (src && src->IsBW()) {
        WithSourceLayout<BWModel>(src, from, [&out](const auto& c) { TakeChannels(c, out); });
    } else if (src && src->IsRGB()) {
        WithSourceLayout<RGBModel>(src, from, [&out](const auto& c) { TakeChannels(c, out); });
    } else if (src && src->IsXYZ()) {
        RGBOps::SetIntensities(out, ColourMath::ClampNegative(RGBOps::ApplyM(Triple(from))));
    } else if (src && src->IsXYY()) {
        RGBOps::SetIntensities(out,
                               ColourMath::ClampNegative(RGBOps::ApplyM(ClampedXYZ(Triple(from)))));
    } else if (src && src->IsSpectral()) {
        if (src->HasPolarization()) {
            const auto& d = Value<SpectralModel<StokesPolarization>>(from).Distr();
            if (!FromPolarizedSpectrum(src, d, out, SurfaceRGB))
                return ConversionFailure(kFailure);
            return 0;
        }
        TArray<double> spectrum(10);
        const auto read = [](const ColorModel& m, const ISurfColor& c, double* values) {
            m.SurfToArray(c, values);
        };
        if (const int r = ReadScratch(src, from, spectrum, read))
            return r;
        TVect3<double> rgb(0.0, 0.0, 0.0);
        this->GetCIEConv()->spectrum2rgbAttr(src->GetWaveLengths(), spectrum, rgb);
        CIEConv::ClipRGBScale(rgb);
        RGBOps::SetIntensities(out, rgb);
    } else {
        return User()->InternalError("Not supported surface color conversion");
    }
    return 0;
}

template <class Pol>
int RGBModel<Pol>::ConvertColor(const ColorModel* src, const IScalarColor& from,
                                IScalarColor& to) const {
    using namespace RGBConversion;
    constexpr const char* kFailure = "RGB scalar color conversion failure";
    auto& out = Value<RGBModel>(to);
    if (src && src->IsBW()) {
        // Scalar colours are one layout in both polarizations.
        TakeChannels(Value<BWModel<Unpolarized>>(from), out);
    } else if (src && src->IsRGB()) {
        TakeChannels(Value<RGBModel<Unpolarized>>(from), out);
    } else if (src && src->IsXYZ()) {
        const double v = Value<XYZModel>(from)[0];
        RGBOps::SetIntensities(out, RGBOps::ApplyM({v, v, v}));
    } else if (src && src->IsXYY()) {
        const double v = Value<XYYModel>(from)[0];
        RGBOps::SetIntensities(out, RGBOps::ApplyM(ClampedXYZ({v, v, v})));
    } else if (src && src->IsSpectral()) {
        if (src->HasPolarization()) {
            const auto& d = Value<SpectralModel<StokesPolarization>>(from).Distr();
            if (!FromPolarizedSpectrum(src, d, out, LightRGB))
                return ConversionFailure(kFailure);
            return 0;
        }
        TArray<double> spectrum(10);
        const auto read = [](const ColorModel& m, const IScalarColor& c, double* values) {
            m.ScalarToArray(c, values);
        };
        if (const int r = ReadScratch(src, from, spectrum, read))
            return r;
        RGBOps::SetIntensities(out, SpectrumRGB(src->GetWaveLengths(), spectrum));
    } else {
        return User()->InternalError("Not supported scalar color conversion");
    }
    return 0;
}

template <class Pol>
int RGBModel<Pol>::ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const {
    using namespace RGBConversion;
    const SourceKind kind = KindOf(src);
    if (kind == SourceKind::XYZ || kind == SourceKind::XYY) {
        // The matrix before the colour is read, so that nothing is held across the call.
        const TMatrix3& m = ColorModel::GetCIEConv()->XYZ2RGB();
        const TVect3<double> xyz =
            kind == SourceKind::XYZ ? Triple(from) : ClampedXYZ(Triple(from));
        SetClampedLight<Pol>(Value<RGBModel>(to), m * xyz);
        return 0;
    }
    return OtherLight(*this, kind, src, from, to);
}

template <class Pol>
int RGBModel<Pol>::ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                                     IRayColor& to) const {
    using namespace RGBConversion;
    // This library's unpolarized spectral model is known by its type: no virtual question, its
    // grid's converter tables, its own energy.
    const bool own = src && &typeid(*src) == &typeid(SpectralModel<Unpolarized>);
    if (!own && (!src || !src->IsSpectral()))
        return ColorModel::ConvertToRayColor(src, from, to);
    const SpectralSource source = SourceOf(*src);
    if (SampleCount(source, from) != source.n)
        return -1;
    auto& out = Value<RGBModel>(to).Light();
    if (source.polarized) {
        const auto& d = Value<SpectralModel<StokesPolarization>>(from).Distr();
        if (!FromPolarizedSpectrum(src, d, out, LightRGB))
            return ConversionFailure("Light to RGB ray color conversion failure");
    } else {
        // The samples read in place, without a copy.
        TVect3<double> xyz(0.0, 0.0, 0.0);
        if (!SourceSamples::InPlaceLightXYZ(source, from, xyz))
            xyz = StoredLightXYZ(*source.waves, from);
        RGBOps::SetIntensities(out, ColourMath::ClampNegative(RGBOps::ApplyM(xyz)));
    }
    const double sourceEnergy = own ? static_cast<const SpectralModel<Unpolarized>&>(*src)
                                          .SpectralModel<Unpolarized>::LgtEnergy(from)
                                    : src->LgtEnergy(from);
    if (sourceEnergy == 0.0)
        return 0;
    // No guard against a zero sum here: the division stands as it is.
    RGBOps::Scale(out, sourceEnergy / SumLgtColor(LightPart(to)));
    return 0;
}

template <class Pol>
void RGBModel<Pol>::RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const {
    RGBOps::SetIntensities(ColourAccess::Value<RGBModel>(to).Light(), rgb);
}

template <class Pol>
void RGBModel<Pol>::RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const {
    RGBOps::SetIntensities(ColourAccess::Value<RGBModel>(to), rgb);
}

template <class Pol>
int RGBModel<Pol>::SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                             IRayColor& to) const {
    RGBOps::SetIntensities(ColourAccess::Value<RGBModel>(to).Light(),
                           RGBConversion::SpectrumRGB(src->GetWaveLengths(), spectrum));
    ClampLgtColor(LightPart(to));
    return 0;
}

template <class Pol>
void RGBModel<Pol>::XYZToRGB(const TVect3<double>& xyz, TVect3<double>& rgb) const {
    rgb = RGBOps::ApplyM(xyz);
}

} // namespace Korvane
