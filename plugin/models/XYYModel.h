// XYYModel: the CIE xyY colour model. Every colour kind is the triple (x, y, Y) of chromaticity
// and luminance; the model exists only without polarization. Its colours are the values of
// RGBModel<Unpolarized>, (x, y, Y) in the places of (r, g, b), so it shares that model's holders
// and the slots that only move values in and out of colours
// (FixedColourModel<RGBModel<Unpolarized>>).
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "plugin/PluginExport.h"
#include "plugin/models/FixedColourModel.h"

namespace Korvane {

class KOR_PLUGIN_API XYYModel : public FixedColourModel<RGBModel<Unpolarized>> {
public:
    // Ranges (0, 1); the name is the identifier of the model's type.
    XYYModel();
    XYYModel(const XYYModel& other);
    ~XYYModel() override;

    // The model's type and singleton, held by the library-wide objects; null while unregistered.
    static PlugType* ClassType();
    static XYYModel* GetModel();

    PlugType* ObjType() const override;

    // -- identity ----------------------------------------------------------------------------
    int GetModelCode() const override; // 256 + 1 (no polarization): 257
    bool IsXYY() const override;
    int NWaves() const override; // 3

    // -- conversions -------------------------------------------------------------------------
    // A colour of any model as XYZ turned into xyY, an xyY colour copied (XYZSources.h); light
    // ends with ClampLgtColor. A spectral source ray is scaled by the light's energy over
    // x + y + Y, x and y included; any other ray is the light conversion.
    int ConvertColor(const ColorModel* src, const ISurfColor& from, ISurfColor& to) const override;
    int ConvertColor(const ColorModel* src, const IScalarColor& from,
                     IScalarColor& to) const override;
    int ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const override;
    int ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                          IRayColor& to) const override;
    // xyY of N rgb, no clamp.
    void RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const override;
    void RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const override;
    // xyY of spectrum2xyz over the source's grid, then ClampLgtColor; 0.
    int SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                  IRayColor& to) const override;

    // -- energy, arithmetic and validity -----------------------------------------------------
    // Valid: x, y and Y in [0, 1] and IsValidXYY. ClampSurfColor caps Y at 1 in a copy and
    // writes it back only when the copy is not valid (returns 1 when nothing was written, else
    // 0). ClampLgtColor repairs a light that is out of range or outside the valid xy region:
    // Y capped at 1, its RGB clipped by ClipRGBScale and, when that changed it, taken back to
    // xyY; otherwise only Y is capped.
    bool IsValidSurfColor(const ISurfColor& c) const override;
    bool IsValidLgtColor(const ILgtColor& c) const override;
    int ClampSurfColor(ISurfColor& c) const override;
    void ClampLgtColor(ILgtColor& c) const override;
    void AddLgtToArray(const ILgtColor& c, double* out) const override;
    void AddRayToArray(const IRayColor& c, double* out) const override;
    // Sums go through XYZ: AddLgtColor and AddScaledLgt* replace the destination by the xyY of
    // the XYZ sum, while the Add*ToArray slots add that xyY onto the array's own values.
    // ScaleLgtColor scales Y, NormalizeLgtColor sets Y to 1; luminance is Y; ray energies are
    // R + G + B of M xyz; SumLgtValues is XYZ2Watts of the XYZ (0.0 without a CIEConvAll).
    // MulLgtColorByArray, MulLgtColorByRatio and SumLgtColor work value by value as in the
    // unpolarized RGB model, on x and y too.
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
    // As XYZModel on the colour's XYZ (xyY to XYZ without clamp); chromaticity (x, y),
    // luminance Y.
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
    static const char* ClassName(); // "XYYModel", for reports
};

} // namespace Korvane
