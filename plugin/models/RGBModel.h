// RGBModel<Pol>: the RGB colour model, three channels r, g, b in the RGB space of the host's CIE
// converter. With Stokes polarization each light channel is a Stokes vector (12 values) and each
// surface channel a 4x4 Mueller matrix (48 values); scalar colours stay three values. BRGBModel
// carries what does not depend on the polarization; the slots that only move values in and out of
// the colours are FixedColourModel's.
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "plugin/PluginExport.h"
#include "plugin/frame/Polarization.h"
#include "plugin/models/FixedColourModel.h"

namespace Korvane {

class KOR_PLUGIN_API BRGBModel {
public:
    static const char* Tag(); // "RGB"

    // A spectrum on `waves` with the colour `rgb`: the shared CIEConvAll's RGB2SpectrumAttr
    // (a reflectance) when `attr` is set, else its RGB2Spectrum (a light); its result unchanged.
    // The unpolarized RGB singleton is asked for first, as every RGB user does. -1, with the
    // spectrum untouched and no report, when the host runs without a CIEConvAll.
    static int RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                            TArray<double>& spectrum, bool attr);
    // The same into `n` doubles at `spectrum`; n must be the grid's length.
    static int RGB2Spectrum(const TVect3<double>& rgb, const TArray<double>& waves,
                            double* spectrum, int n, bool attr);
};

template <class Pol>
class KOR_PLUGIN_API RGBModel : public BRGBModel, public FixedColourModel<RGBModel<Pol>> {
public:
    // Ranges (0, 1); the name is the identifier of the model's type. Counts the RGB models made,
    // both polarizations together, and logs "RGB color model <count> is created".
    RGBModel();
    // Copies the ranges; neither counts nor logs.
    RGBModel(const RGBModel& other);
    ~RGBModel() override;

    // The model's type and singleton, held by the library-wide objects; null while unregistered.
    static PlugType* ClassType();
    static RGBModel* GetModel();

    PlugType* ObjType() const override;

    // -- identity ----------------------------------------------------------------------------
    int GetModelCode() const override; // 32 + polarization bit: 33 / 34
    bool HasPolarization() const override;
    bool IsRGB() const override;
    int NWaves() const override; // 3

    // -- conversions -------------------------------------------------------------------------
    // A colour of any model into RGB. The source is asked IsBW, IsRGB, IsXYZ, IsXYY, IsSpectral
    // in this order and the first yes decides; a polarized BW or RGB source gives its channel
    // intensities, or whole components into a polarized destination; XYZ and xyY go through M
    // (xyY after xyY -> XYZ with negatives set to 0); a spectrum through the converter (a
    // polarized one element by element). Any other source: InternalError "Not supported ...
    // color conversion". A polarized spectral colour whose sample count is not the source's
    // NWaves, or a scratch spectrum that cannot be sized on a polarized path: ErrorMessageEx
    // "RGB ... color conversion failure"; an unpolarized spectral colour gives its first NWaves
    // samples (SourceSamples.h), and a scratch that cannot be sized there ErrorNoMemory(-1). The
    // report's code is returned, else 0. Surfaces from XYZ and xyY have negatives set to 0, from an
    // unpolarized spectrum are clipped by ClipRGBScale; a light ends with ClampLgtColor.
    int ConvertColor(const ColorModel* src, const ISurfColor& from, ISurfColor& to) const override;
    // A scalar XYZ or xyY colour is read as its one (first) value in all three coordinates.
    int ConvertColor(const ColorModel* src, const IScalarColor& from,
                     IScalarColor& to) const override;
    int ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const override;
    // A light of any model into the light part of an RGB ray colour; the X orientation is left.
    // Non-spectral sources: the base (the light ConvertColor). A spectral light whose sample
    // count is not the source's NWaves: -1, no report. Otherwise the RGB of the spectrum (an
    // unpolarized one read in place, negatives set to 0; a polarized one as the light
    // ConvertColor, failure "Light to RGB ray color conversion failure"), then scaled by
    // E_src / (R + G + B) so that it carries the source's LgtEnergy E_src; unscaled when E_src
    // is exactly 0.
    int ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                          IRayColor& to) const override;
    // Channel c gets intensity rgb[c], with Q, U, V (or the other Mueller elements) 0.
    void RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const override;
    void RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const override;
    // M applied to spectrum2xyz of `spectrum` over the source's grid, as intensities, then
    // ClampLgtColor. Always 0.
    int SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                  IRayColor& to) const override;

    // -- energy, arithmetic and validity -----------------------------------------------------
    // Every intensity in [0, 1] (read through SurfToArray), respectively >= 0.
    bool IsValidSurfColor(const ISurfColor& c) const override;
    bool IsValidLgtColor(const ILgtColor& c) const override;
    // Intensities read through SurfToArray; when one lies outside [0, 1] each is brought to the
    // nearer end and the values are written back through SetSurfColor. Always 0.
    int ClampSurfColor(ISurfColor& c) const override;
    // Unpolarized: every negative channel becomes 0. Polarized: nothing.
    void ClampLgtColor(ILgtColor& c) const override;
    // Every double of the light (12 when polarized); the intensities of the ray.
    void AddLgtToArray(const ILgtColor& c, double* out) const override;
    void AddRayToArray(const IRayColor& c, double* out) const override;
    // R + G + B of the intensities (also LgtEnergy, through the base).
    double RayEnergy(const ILgtColor& c) const override;
    // w0 R + w1 G + w2 B with the CIEConvAll's luminance weights; 0.0 without a CIEConvAll.
    double LgtLuminance(const ILgtColor& c) const override;
    // CIEConvAll::RGB2Watts of the intensities; 0.0 without a CIEConvAll.
    double SumLgtValues(const ILgtColor& c) const override;
    double RayEnergy(const IRayColor& c) const override;
    // Channel-wise arithmetic on whole components (all four Stokes values of a channel).
    void AddLgtColor(const ILgtColor& from, ILgtColor& to) const override;
    void MulLgtColorByArray(ILgtColor& c, const double* factors) const override;
    void ScaleLgtColor(ILgtColor& c, double factor) const override;
    // Channel c times a[c] / b[c] where b[c] > 0, else unchanged.
    void MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const override;
    // Intensities scaled to sum 1 (RGBOps::NormalizeToUnitSum): 0 gives 1/3 each.
    void NormalizeLgtColor(ILgtColor& c) const override;
    void NormalizeLgtColor(IRayColor& c) const override;
    void AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const override;
    void AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const override;
    void AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const override;
    double SumLgtColor(const ILgtColor& c) const override;

    // -- display -----------------------------------------------------------------------------
    // The intensities of the colour.
    void SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const override;
    void ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const override;
    // The intensities divided by the largest magnitude (all 1 when that is 0), negatives then 0.
    // Always 0.
    int LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const override;
    // Response curves belong to spectra: an RGB colour is shown as LgtColorToDisplayRGB shows it.
    void LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves& curves,
                               TVect3<double>& rgb) const override;
    // The intensities; with clampNegative negatives become 0, then with normalize the triple is
    // divided by its sum when that is not exactly 0. Always 0.
    int LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                      bool clampNegative) const override;
    // N applied to LgtColorToRGB (neither normalized nor clamped). Always 0.
    int LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const override;

    // -- holders -----------------------------------------------------------------------------
    Holder<ILgtColor>* NewLgtColorHold() const override;
    ArrayLgtColorHolder* NewArrayLgtColorHold(int n) const override;
    MatrixLgtColorHolder* NewMatrixLgtColorHold() const override;
    Holder<IRayColor>* NewRayColorHold() const override;
    ArrayRayColorHolder* NewArrayRayColorHold() const override;
    Holder<IScalarColor>* NewScalarColorHold() const override;
    Holder<ISurfColor>* NewSurfColorHold() const override;
    Holder<IDualLgtColor>* NewDualLgtColorHold() const override;

    // -- added by the RGB model --------------------------------------------------------------
    // rgb = M xyz with M the XYZ-to-RGB matrix of the current CIE converter; no clamp.
    virtual void XYZToRGB(const TVect3<double>& xyz, TVect3<double>& rgb) const;
};

extern template class RGBModel<Unpolarized>;
extern template class RGBModel<StokesPolarization>;

} // namespace Korvane
