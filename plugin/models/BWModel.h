// BWModel<Pol>: the black/white colour model. A colour is one grey intensity; with Stokes
// polarization a light colour is one Stokes vector (I, Q, U, V) and a surface colour one 4x4
// Mueller matrix. BBWModel carries what does not depend on the polarization; the slots that only
// move values in and out of the colours are FixedColourModel's.
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "plugin/PluginExport.h"
#include "plugin/frame/Polarization.h"
#include "plugin/models/FixedColourModel.h"

namespace Korvane {

class KOR_PLUGIN_API BBWModel {
public:
    static const char* Tag(); // "BW"
};

template <class Pol>
class KOR_PLUGIN_API BWModel : public BBWModel, public FixedColourModel<BWModel<Pol>> {
public:
    // Ranges (0, 1); the name is the identifier of the model's type.
    BWModel();
    BWModel(const BWModel& other);
    ~BWModel() override;

    // The model's type and singleton, held by the library-wide objects; null while unregistered.
    static PlugType* ClassType();
    static BWModel* GetModel();

    PlugType* ObjType() const override;

    // -- identity ----------------------------------------------------------------------------
    int GetModelCode() const override; // 16 + polarization bit: 17 / 18
    bool HasPolarization() const override;
    bool IsBW() const override;
    int NWaves() const override; // 1

    // A grey colour has no wavelength range to set: nothing happens.
    void SetRangedColor(ILgtColor& c, const double* values) const override;

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

private:
    static const char* ClassName(); // "BWModel<Unpolarized>", for reports
};

extern template class BWModel<Unpolarized>;
extern template class BWModel<StokesPolarization>;

} // namespace Korvane
