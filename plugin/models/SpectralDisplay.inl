// SpectralModel<Pol>: spectral colours as RGB and XYZ, for display and for the renderer's
// colour output, and their chromaticity. Included by SpectralModel.cpp.
//
// Two routes. The mass colour converter's tables give RGB and XYZ by one weighted sum:
//   light colour (band energies):   RGB = sum_k v[k] rgb_k / w[k],  XYZ = sum_k v[k] xyz_k / w[k]
//   spectrum (per-nm densities):    RGB = sum_k s[k] rgb_k
// with rgb_k, xyz_k the response to a unit spike at wavelength k and w[k] its trapezoid weight
// (MassColConv light tables, density and plain). The display conversions go through the host's
// CIE converter on a dense copy of the colour over the grid: RGB = M XYZ with
// XYZ = spectrum2xyz (M the converter's XYZ-to-RGB matrix), reflectances through
// spectrum2rgbAttr. With Stokes polarization every route reads the intensity I.
#pragma once

#include "hostkit/base/Kernels.h"
#include "hostkit/base/User.h"
#include "plugin/models/ColourMath.h"
#include "plugin/models/XYZModel.h"

namespace Korvane {
namespace SpectralDisplay {

// Luminous efficacy of radiation at 555 nm, lm/W: a tristimulus Y in radiometric units is a
// luminance of 683 Y.
constexpr double kLuminousEfficacy = 683.0;

// sum_k values[k * stride] table[k], k ascending from 0 to n - 1.
inline TVect3<double> Response(const TArray<RGBColourDistr<double>>& table, const double* values,
                               int stride, int n) {
    static_assert(sizeof(RGBColourDistr<double>) == 3 * sizeof(double), "rows of three doubles");
    double sum[3];
    Kernels::SumRows3(values, stride, reinterpret_cast<const double*>(table.Data()), n, sum);
    return {sum[0], sum[1], sum[2]};
}

// Whether `table` has the n rows that a sum over n values reads. Every reader of a converter's
// table asks this of that table itself: a preparation that failed half way is taken as done by
// the next one (it tests the light RGB table alone), and leaves the other tables short.
inline bool HasRows(const TArray<RGBColourDistr<double>>& table, int n) {
    return table.Count() == n;
}

// RGB of n values, `stride` doubles apart, through one of the converter's light RGB tables
// (density: the values are band energies; plain: densities). (0, 0, 0) when there is no
// converter, when its grid has another length than the values (their sum would be undefined),
// when its tables cannot be prepared or when the table read has not n rows. Otherwise negatives
// become 0 if asked, then the triple is divided by its sum if asked and that sum is not 0.
inline TVect3<double> LightRGB(MassColConv* conv, const double* values, int stride, int n,
                               bool density, bool normalize, bool clampNegative) {
    TVect3<double> rgb(0.0, 0.0, 0.0);
    if (!conv || n != conv->Wavelengths().Count() || conv->PrepareForLight() != 0)
        return rgb;
    const TArray<RGBColourDistr<double>>& table =
        density ? conv->LightRGBDensity() : conv->LightRGB();
    if (!HasRows(table, n))
        return rgb;
    rgb = Response(table, values, stride, n);
    if (clampNegative)
        rgb = ColourMath::ClampNegative(rgb);
    const double sum = rgb.x + rgb.y + rgb.z;
    if (normalize && sum != 0.0)
        rgb = TVect3<double>(rgb.x / sum, rgb.y / sum, rgb.z / sum);
    return rgb;
}

// The intensities of a colour as n doubles, one per wavelength of the grid: a light colour reads
// 0 outside its band, every colour reads 0 beyond its storage.
template <class Comp>
void Intensities(const ExtSpctrlColourDistr<Comp>& d, TArray<double>& out) {
    for (int k = 0; k < out.Count(); ++k)
        out[k] = d.Get(k)[0];
}

template <class Comp>
void Intensities(const SpctrlColourDistr<Comp>& d, TArray<double>& out) {
    for (int k = 0; k < out.Count(); ++k)
        out[k] = k < d.Count() ? d[k][0] : 0.0;
}

// A scratch array (growth step 10, plain heap) with the intensities of `d` over the grid of n
// wavelengths; false when it cannot be sized.
template <class D>
bool DenseIntensities(const D& d, int n, TArray<double>& out) {
    if (out.Alloc(n) != 0)
        return false;
    Intensities(d, out);
    return true;
}

// M XYZ of the intensities over `grid`, M the current converter's XYZ-to-RGB matrix (row R
// first). A grid that the converter refuses gives XYZ (0, 0, 0), hence black.
inline TVect3<double> DisplayRGB(const MArray<double>& grid, const TArray<double>& values) {
    TVect3<double> xyz(0.0, 0.0, 0.0);
    CIEConv::spectrum2xyz(grid, values, xyz);
    return ColorModel::GetCIEConv()->XYZ2RGB() * xyz;
}

} // namespace SpectralDisplay

// Unpolarized: the reflectance over the grid through the converter's spectrum2rgbAttr, then
// ClipRGBScale. Stokes: always mid-grey (0.5, 0.5, 0.5), the fixed preview of a polarized
// surface. A scratch array that cannot be sized leaves `rgb` as it was, without a report.
template <class Pol>
void SpectralModel<Pol>::SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const {
    if constexpr (Pol::kIsPolarized) {
        (void)c;
        rgb = TVect3<double>(0.5, 0.5, 0.5);
    } else {
        TArray<double> values(10);
        if (!SpectralDisplay::DenseIntensities(ColourAccess::Value<SpectralModel>(c).Distr(),
                                               NWaves(), values))
            return;
        TVect3<double> out(0.0, 0.0, 0.0);
        GetCIEConv()->spectrum2rgbAttr(GetWaveLengths(), values, out);
        CIEConv::ClipRGBScale(out);
        rgb = out;
    }
}

// M XYZ of the scalar values over the grid. A scratch array that cannot be sized leaves `rgb` as
// it was, without a report.
template <class Pol>
void SpectralModel<Pol>::ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const {
    TArray<double> values(10);
    if (SpectralDisplay::DenseIntensities(ColourAccess::Value<SpectralModel>(c).Distr(), NWaves(),
                                          values))
        rgb = SpectralDisplay::DisplayRGB(GetWaveLengths(), values);
}

// M XYZ of the light over the grid, divided by its largest magnitude (black: (1, 1, 1)), then
// negatives set to 0. Returns 1 when the light has a colour and 0 when it is black, the only way
// to tell black from white after the division. A scratch array that cannot be sized leaves `rgb`
// as it was and returns 0, without a report.
template <class Pol>
int SpectralModel<Pol>::LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const {
    TArray<double> values(10);
    if (!SpectralDisplay::DenseIntensities(ColourAccess::Value<SpectralModel>(c).Distr(), NWaves(),
                                           values))
        return 0;
    TVect3<double> out = SpectralDisplay::DisplayRGB(GetWaveLengths(), values);
    const double magnitude = ColourMath::NormalizeMaxMagnitude(out);
    rgb = ColourMath::ClampNegative(out);
    return magnitude != 0.0 ? 1 : 0;
}

// The light over the grid (0 outside the band) through the host's four response curves, passed
// on in the order Red, Green, Blue, Weights. A scratch array that cannot be sized is reported
// (no memory) and leaves `rgb` as it was.
template <class Pol>
void SpectralModel<Pol>::LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves& curves,
                                               TVect3<double>& rgb) const {
    TArray<double> values(10);
    if (!SpectralDisplay::DenseIntensities(ColourAccess::Value<SpectralModel>(c).Distr(), NWaves(),
                                           values)) {
        User()->ErrorNoMemory(-1);
        return;
    }
    CIEConv::spectrum2rgbByCurves(GetWaveLengths(), values, curves.Red(), curves.Green(),
                                  curves.Blue(), curves.Weights(), rgb);
}

// RGB of the light through the converter's density table, the stored values read index 0 to
// count - 1 whatever the band. A colour whose length differs from the converter's grid gives
// (0, 0, 0). Always 0.
template <class Pol>
int SpectralModel<Pol>::LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                                      bool clampNegative) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    rgb = SpectralDisplay::LightRGB(GetMassColConv(), d.Values(), Pol::LightComp::kSize, d.Count(),
                                    true, normalize, clampNegative);
    return 0;
}

// XYZ of the light through the converter's density table, the stored values read as for
// LgtColorToRGB; no clamping, no normalizing. A colour whose length differs from the converter's
// grid (or a model without converter) leaves `xyz` as it was; tables that cannot be prepared, or
// an XYZ table left without its rows by a failed preparation, give (0, 0, 0). Always 0.
template <class Pol>
int SpectralModel<Pol>::LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const {
    const auto& d = ColourAccess::Value<SpectralModel>(c).Distr();
    MassColConv* conv = GetMassColConv();
    if (!conv || d.Count() != conv->Wavelengths().Count())
        return 0;
    xyz = TVect3<double>(0.0, 0.0, 0.0);
    if (conv->PrepareForLight() == 0 &&
        SpectralDisplay::HasRows(conv->LightXYZDensity(), d.Count()))
        xyz = SpectralDisplay::Response(conv->LightXYZDensity(), d.Values(), Pol::LightComp::kSize,
                                        d.Count());
    return 0;
}

// Through the XYZ model: its light ConvertColor from this model, then its GetChromaticity for
// (x, y) and Y; the luminance is 683 Y. When the XYZ model is missing or refuses the colour (it
// takes no polarized spectral light), luminance and (x, y) are 0.
template <class Pol>
void SpectralModel<Pol>::GetChromaticity(const ILgtColor& c, double& luminance,
                                         TVect2<double>& xy) const {
    const XYZModel* xyzModel = XYZModel::GetModel();
    LgtColor<XYZModel> xyz{};
    if (!xyzModel || xyzModel->ConvertColor(this, c, xyz) != 0) {
        luminance = 0.0;
        xy = TVect2<double>(0.0, 0.0);
        return;
    }
    double y = 0.0;
    xyzModel->GetChromaticity(xyz, y, xy);
    luminance = SpectralDisplay::kLuminousEfficacy * y;
}

// RGB of one value per wavelength (a per-nm spectrum) through the converter's plain table; the
// clamping and normalizing of LgtColorToRGB. A model whose grid differs from the converter's
// gives (0, 0, 0). Always 0.
template <class Pol>
int SpectralModel<Pol>::SpectrumToRGB(const double* values, TVect3<double>& rgb, bool normalize,
                                      bool clampNegative) const {
    rgb = SpectralDisplay::LightRGB(GetMassColConv(), values, 1, NWaves(), false, normalize,
                                    clampNegative);
    return 0;
}

} // namespace Korvane
