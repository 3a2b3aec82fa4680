// XYZModel: the CIE XYZ colour model. Every colour kind is the tristimulus triple (X, Y, Z); the
// model exists only without polarization. Its colours are the values of RGBModel<Unpolarized>,
// (X, Y, Z) in the places of (r, g, b), so it shares that model's holders and the slots that only
// move values in and out of colours (FixedColourModel<RGBModel<Unpolarized>>).
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "plugin/PluginExport.h"
#include "plugin/models/FixedColourModel.h"

namespace Korvane {

class KOR_PLUGIN_API XYZModel : public FixedColourModel<RGBModel<Unpolarized>> {
public:
    // Ranges (0, 1); the name is the identifier of the model's type.
    XYZModel();
    XYZModel(const XYZModel& other);
    ~XYZModel() override;

    // The model's type and singleton, held by the library-wide objects; null while unregistered.
    static PlugType* ClassType();
    static XYZModel* GetModel();

    PlugType* ObjType() const override;

    // -- identity ----------------------------------------------------------------------------
    int GetModelCode() const override; // 128 + 1 (no polarization): 129
    bool IsXYZ() const override;
    int NWaves() const override; // 3

    // -- conversions -------------------------------------------------------------------------
    // A colour of any model as XYZ (XYZSources.h); light ends with ClampLgtColor. A spectral
    // source ray is scaled to the light's energy; any other ray is the light conversion.
    int ConvertColor(const ColorModel* src, const ISurfColor& from, ISurfColor& to) const override;
    int ConvertColor(const ColorModel* src, const IScalarColor& from,
                     IScalarColor& to) const override;
    int ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const override;
    int ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                          IRayColor& to) const override;
    // N rgb, as the unpolarized RGB model copies its triple: no clamp.
    void RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const override;
    void RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const override;
    // spectrum2xyz over the source's grid, then ClampLgtColor; 0.
    int SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                  IRayColor& to) const override;

    // -- energy, arithmetic and validity -----------------------------------------------------
    // A surface is valid when the converter's IsValidXYZ accepts it; ClampSurfColor returns
    // that answer (1) and writes nothing, or writes (0, 0, 0) and returns 0. A light is valid
    // when no value is negative, and the clamp sets every value that is not >= 0 (a NaN too) to
    // 0, so a clamped light is always valid.
    bool IsValidSurfColor(const ISurfColor& c) const override;
    bool IsValidLgtColor(const ILgtColor& c) const override;
    int ClampSurfColor(ISurfColor& c) const override;
    void ClampLgtColor(ILgtColor& c) const override;
    void AddLgtToArray(const ILgtColor& c, double* out) const override;
    void AddRayToArray(const IRayColor& c, double* out) const override;
    // Both ray energies: R + G + B of M xyz. Luminance: Y. SumLgtValues: XYZ2Watts of the
    // colour, 0.0 without a CIEConvAll. The rest works value by value as in the unpolarized RGB
    // model; NormalizeLgtColor makes the values sum to 1 ((0, 0, 0) becomes (1/3, 1/3, 1/3)).
    double RayEnergy(const ILgtColor& c) const override;
    double LgtLuminance(const ILgtColor& c) const override;
    double SumLgtValues(const ILgtColor& c) const override;
    double RayEnergy(const IRayColor& c) const override;
    void AddLgtColor(const ILgtColor& from, ILgtColor& to) const override;
    void MulLgtColorByArray(ILgtColor& c, const double* factors) const override;
    void ScaleLgtColor(ILgtColor& c, double factor) const override;
    void MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const override;
    void NormalizeLgtColor(ILgtColor& c) const override;
    void NormalizeLgtColor(IRayColor& c) const override;
    void AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const override;
    void AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const override;
    void AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const override;
    double SumLgtColor(const ILgtColor& c) const override;

    // -- display -----------------------------------------------------------------------------
    // M xyz: clipped by ClipRGBScale for a surface; for display divided by its largest
    // magnitude and without negatives (0 returned, as the RGB model does). Response curves are
    // per wavelength and mean nothing to three values: the curves conversion is the display one.
    // LgtColorToRGB clamps negatives when asked, then divides by the sum when asked and it is
    // not 0. Chromaticity (X/S, Y/S), S = X + Y + Z ((0, 0) when S is 0), luminance Y.
    void SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const override;
    void ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const override;
    int LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const override;
    void LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves& curves,
                               TVect3<double>& rgb) const override;
    int LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                      bool clampNegative) const override;
    int LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const override;
    void GetChromaticity(const ILgtColor& c, double& luminance, TVect2<double>& xy) const override;

    // -- holders -----------------------------------------------------------------------------
    Holder<ILgtColor>* NewLgtColorHold() const override;
    ArrayLgtColorHolder* NewArrayLgtColorHold(int n) const override;
    MatrixLgtColorHolder* NewMatrixLgtColorHold() const override;
    Holder<IRayColor>* NewRayColorHold() const override;
    ArrayRayColorHolder* NewArrayRayColorHold() const override;
    Holder<IScalarColor>* NewScalarColorHold() const override;
    Holder<ISurfColor>* NewSurfColorHold() const override;
    Holder<IDualLgtColor>* NewDualLgtColorHold() const override;

private:
    static const char* ClassName(); // "XYZModel", for reports
};

} // namespace Korvane
