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
    int ConvertColor(const ColorModel* src, const ISurfColor& from, ISurfColor& to) const override;
    int ConvertColor(const ColorModel* src, const IScalarColor& from,
                     IScalarColor& to) const override;
    int ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const override;
    int ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                          IRayColor& to) const override;
    void RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const override;
    void RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const override;
    int SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                  IRayColor& to) const override;

    // -- energy, arithmetic and validity -----------------------------------------------------
    bool IsValidSurfColor(const ISurfColor& c) const override;
    bool IsValidLgtColor(const ILgtColor& c) const override;
    int ClampSurfColor(ISurfColor& c) const override;
    void ClampLgtColor(ILgtColor& c) const override;
    void AddLgtToArray(const ILgtColor& c, double* out) const override;
    void AddRayToArray(const IRayColor& c, double* out) const override;
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
    void SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const override;
    void ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const override;
    int LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const override;
    void LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves& curves,
                               TVect3<double>& rgb) const override;
    int LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                      bool clampNegative) const override;
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
    // rgb = M xyz with M the XYZ-to-RGB matrix of the current CIE converter.
    virtual void XYZToRGB(const TVect3<double>& xyz, TVect3<double>& rgb) const;

private:
    static const char* ClassName(); // "RGBModel<Unpolarized>", for reports
};

extern template class RGBModel<Unpolarized>;
extern template class RGBModel<StokesPolarization>;

} // namespace Korvane
