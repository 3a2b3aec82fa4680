// BWModel<Pol>: conversions of colours of any model into BW colours. Included by BWModel.cpp.
//
// The source model is asked what it is in the fixed order IsBW, IsRGB, IsXYZ, IsXYY, IsSpectral,
// and the first answer true decides the branch. Fixed-size sources are read through their own
// array slots (LgtToArray, SurfToArray, ScalarToArray), in the layout that their HasPolarization
// states. The grey of three channels is their mean, in two forms that round apart and are kept
// apart on purpose:
//
//   RGB source:                    (r + g + b) * 0.3333333333333333
//   XYZ, xyY, spectral light:      (r + g + b) / 3.0   with (r, g, b) = M (X, Y, Z)
//
// A grey lands as intensity: the value itself, I of a Stokes vector or element (0,0) of a Mueller
// matrix, the other elements 0. Polarized values pass whole only from a polarized BW source, from
// a polarized RGB surface (the mean of the three Mueller matrices, element by element) and from a
// polarized spectral source (the mean over wavelengths of every element, BWWaveMean.h). A spectral
// source of any sample count is read as SourceSamples.h states for every model.
#pragma once

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConv.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/BWWaveMean.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/ColourMath.h"
#include "plugin/models/SourceSamples.h"
#include "plugin/models/SpectralModel.h"

#include <type_traits>

namespace Korvane {
namespace BWConversion {

// What a source model is, asked in the fixed order; Other when it is none of them (or absent).
enum class Source { BW, RGB, XYZ, XYY, Spectral, Other };

inline Source Classify(const ColorModel* src) {
    if (src == nullptr)
        return Source::Other;
    if (src->IsBW())
        return Source::BW;
    if (src->IsRGB())
        return Source::RGB;
    if (src->IsXYZ())
        return Source::XYZ;
    if (src->IsXYY())
        return Source::XYY;
    if (src->IsSpectral())
        return Source::Spectral;
    return Source::Other;
}

inline constexpr double kThird = 0.3333333333333333;

// Room for every fixed-size layout: the 48 doubles of a polarized RGB surface.
inline constexpr int kMaxFixedDoubles = 48;

// The grey of an RGB triple given as CIE XYZ: M (X, Y, Z), then the mean by division.
inline double GreyOfXYZ(const TVect3<double>& xyz) {
    const TVect3<double> rgb = ColorModel::GetCIEConv()->XYZ2RGB() * xyz;
    return (rgb.x + rgb.y + rgb.z) / 3.0;
}

using PolarizedSpectral = SpectralModel<StokesPolarization>;

// What differs between the three kinds of colour that convert: how the source is read, how many
// doubles a polarized source has per channel, the reports, and the answer to a scratch array that
// cannot be allocated (deliberately silent for scalar colours).
template <class I>
struct Kind;

template <>
struct Kind<ILgtColor> {
    static constexpr int kPolarizedSize = StkLightComp::kSize;
    static int NotSupported() {
        return User()->InternalError("Not supported light color conversion");
    }
    static constexpr const char* kFailure = "BW light color conversion failure";
    static void Read(const ColorModel* src, const ILgtColor& c, double* out) {
        src->LgtToArray(c, out);
    }
    static int NoMemory() { return User()->ErrorNoMemory(-1); }
};

template <>
struct Kind<ISurfColor> {
    static constexpr int kPolarizedSize = StkSurfComp::kSize;
    static int NotSupported() {
        return User()->InternalError("Not supported surface color conversion");
    }
    static constexpr const char* kFailure = "BW surface color conversion failure";
    static void Read(const ColorModel* src, const ISurfColor& c, double* out) {
        src->SurfToArray(c, out);
    }
    static int NoMemory() { return User()->ErrorNoMemory(-1); }
};

template <>
struct Kind<IScalarColor> {
    static constexpr int kPolarizedSize = 1; // scalar colours carry no polarization
    static int NotSupported() {
        return User()->InternalError("Not supported scalar color conversion");
    }
    static constexpr const char* kFailure = "BW scalar color conversion failure";
    static void Read(const ColorModel* src, const IScalarColor& c, double* out) {
        src->ScalarToArray(c, out);
    }
    static int NoMemory() { return -1; }
};

// The (X, Y, Z) or (x, y, Y) of an XYZ or xyY source; a scalar colour's one value stands for all
// three coordinates.
template <class I>
TVect3<double> ReadCoordinates(const ColorModel* src, const I& from) {
    double v[kMaxFixedDoubles];
    Kind<I>::Read(src, from, v);
    if constexpr (std::is_same_v<I, IScalarColor>)
        return {v[0], v[0], v[0]};
    else
        return {v[0], v[1], v[2]};
}

// BW source: its intensity, or every element when both sides are polarized.
template <class I, class V>
void FromBW(const ColorModel* src, const I& from, V& to) {
    double v[kMaxFixedDoubles];
    Kind<I>::Read(src, from, v);
    if (V::kDoubles > 1 && src->HasPolarization())
        ColourAccess::SetValues(to, v);
    else
        ColourAccess::FillIntensities(to, v[0]);
}

// RGB source: the mean of the channels' intensities; a polarized surface from a polarized source
// takes the mean of the three Mueller matrices element by element (sum of the three, each element
// then times 0.3333333333333333).
template <class I, class V>
void FromRGB(const ColorModel* src, const I& from, V& to) {
    double v[kMaxFixedDoubles];
    Kind<I>::Read(src, from, v);
    const int stride = src->HasPolarization() ? Kind<I>::kPolarizedSize : 1;
    if (V::kDoubles > 1 && stride == V::kDoubles && std::is_same_v<I, ISurfColor>) {
        for (int e = 0; e < V::kDoubles; ++e)
            to[e] = (v[e] + v[stride + e] + v[2 * stride + e]) * kThird;
    } else {
        ColourAccess::FillIntensities(to, (v[0] + v[stride] + v[2 * stride]) * kThird);
    }
}

// Unpolarized spectral source: its first NWaves values in a scratch spectrum (SourceSamples.h);
// light through spectrum2xyz and M, surfaces and scalars through spectrum2bw. The converter's
// status is not a failure of the conversion: it leaves 0.
template <class I, class V>
int FromSpectrum(const ColorModel* src, const I& from, V& to) {
    TArray<double> spectrum(10, 1);
    const auto read = [](const ColorModel& m, const I& c, double* out) {
        Kind<I>::Read(&m, c, out);
    };
    if (SourceSamples::FirstSamples(*src, from, read, spectrum) != 0)
        return Kind<I>::NoMemory();
    double grey = 0.0;
    if constexpr (std::is_same_v<I, ILgtColor>) {
        TVect3<double> xyz(0.0, 0.0, 0.0);
        CIEConv::spectrum2xyz(src->GetWaveLengths(), spectrum, xyz);
        grey = GreyOfXYZ(xyz);
    } else {
        CIEConv::spectrum2bw(src->GetWaveLengths(), spectrum, grey);
    }
    ColourAccess::FillIntensities(to, grey);
    return 0;
}

// Polarized spectral source: the mean over the source's wavelengths of each element that the
// destination holds (the intensity alone for an unpolarized destination).
template <class I, class V>
int FromPolarizedSpectrum(const ColorModel* src, const I& from, V& to) {
    const auto& distr = ColourAccess::Value<PolarizedSpectral>(from).Distr();
    if (BWWaveMean::Mean<V::kDoubles>(src->GetWaveLengths(), distr, to.Values()) != 0)
        return User()->ErrorMessageEx(Kind<I>::kFailure, Kind<I>::kFailure);
    return 0;
}

// Converts `from` of model `src` into the BW value `to`: 0, or the code of the report made.
template <class I, class V>
int Convert(const ColorModel* src, const I& from, V& to) {
    switch (Classify(src)) {
    case Source::BW:
        FromBW(src, from, to);
        return 0;
    case Source::RGB:
        FromRGB(src, from, to);
        return 0;
    case Source::XYZ:
        ColourAccess::FillIntensities(to, GreyOfXYZ(ReadCoordinates(src, from)));
        return 0;
    case Source::XYY: {
        const TVect3<double> xyz = ColourMath::XYYToXYZ(ReadCoordinates(src, from));
        ColourAccess::FillIntensities(to, GreyOfXYZ(ColourMath::ClampNegative(xyz)));
        return 0;
    }
    case Source::Spectral:
        return src->HasPolarization() ? FromPolarizedSpectrum(src, from, to)
                                      : FromSpectrum(src, from, to);
    case Source::Other:
        break;
    }
    return Kind<I>::NotSupported();
}

} // namespace BWConversion

template <class Pol>
int BWModel<Pol>::ConvertColor(const ColorModel* src, const ISurfColor& from,
                               ISurfColor& to) const {
    return BWConversion::Convert(src, from, ColourAccess::Value<BWModel>(to));
}

template <class Pol>
int BWModel<Pol>::ConvertColor(const ColorModel* src, const IScalarColor& from,
                               IScalarColor& to) const {
    return BWConversion::Convert(src, from, ColourAccess::Value<BWModel>(to));
}

template <class Pol>
int BWModel<Pol>::ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const {
    const int status = BWConversion::Convert(src, from, ColourAccess::Value<BWModel>(to));
    if (status != 0)
        return status;
    ClampLgtColor(to);
    return 0;
}

template <class Pol>
int BWModel<Pol>::ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                                    IRayColor& to) const {
    if (src == nullptr || !src->IsSpectral())
        return ColorModel::ConvertToRayColor(src, from, to);
    ColourAccess::FillIntensities(ColourAccess::Value<BWModel>(to).Light(), src->LgtEnergy(from));
    return 0;
}

template <class Pol>
void BWModel<Pol>::RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const {
    ColourAccess::FillIntensities(ColourAccess::Value<BWModel>(to).Light(),
                                  (rgb.x + rgb.y + rgb.z) * BWConversion::kThird);
}

template <class Pol>
void BWModel<Pol>::RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const {
    ColourAccess::FillIntensities(ColourAccess::Value<BWModel>(to),
                                  (rgb.x + rgb.y + rgb.z) * BWConversion::kThird);
}

template <class Pol>
int BWModel<Pol>::SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                            IRayColor& to) const {
    double grey = 0.0;
    CIEConv::spectrum2bw(src->GetWaveLengths(), spectrum, grey);
    ColourAccess::FillIntensities(ColourAccess::Value<BWModel>(to).Light(), grey);
    return 0;
}

} // namespace Korvane
