// SpectralModel<Pol>: the spectral colour model. A colour is one component per wavelength of the
// model's grid (BSpectralModel): an intensity, or with Stokes polarization a Stokes vector
// (I, Q, U, V) for light and a 4x4 Mueller matrix for surfaces; a scalar colour is one factor per
// wavelength. Light and ray colours are banded distributions, zero outside [first, last].
//
// Each model owns its grid and a mass colour converter (MassColConv) over that grid, renewed
// whenever the grid is set or loaded or the host's CIE converter changes.
//
// Conversions keep nothing: spectral sources are resampled onto the grid by a walk over the two
// grids in the call (Resample.h), so several threads may convert with one model at once. The
// host converter's tables of the grid are resolved once, when the converter is renewed (CIEGrid),
// so that reconstructions onto the grid neither compare the grid nor lock; a reconstruction by
// another converter than the one they came from looks the grid up as usual.
#pragma once

#include "plugin/PluginExport.h"
#include "plugin/frame/Polarization.h"
#include "plugin/masscolconv/MassColConv.h"
#include "plugin/models/ModelsFwd.h"
#include "plugin/spectral/BSpectralModel.h"

#include <typeinfo>

namespace Korvane {

template <class Pol>
class KOR_PLUGIN_API SpectralModel : public BSpectralModel {
public:
    // Sets the name (the identifier of the model's type), then the grid `waves`.
    explicit SpectralModel(const MArray<double>& waves);
    // Sets the default grid (DefWavelengths), then the name.
    SpectralModel();
    // Copies the grid, weights and flag (the XYZ table starts empty, see BSpectralModel) and
    // shares the source's converter.
    SpectralModel(const SpectralModel& other);
    ~SpectralModel() override;

    // The model's type and registered model, held by the library-wide objects; null while
    // unregistered.
    static PlugType* ClassType();
    static SpectralModel* GetModel();
    // The shared model on 41 wavelengths 380, 390, ..., 780 nm, made on the first call and kept
    // until termination. Null (and a no-memory report) when its grid cannot be made; a later
    // call tries again.
    static SpectralModel* GetModel_380_780();

    PlugType* ObjType() const override;
    Plug* Clone() const override; // a copy, or null when out of memory

    // -- identity and converter --------------------------------------------------------------
    int GetModelCode() const override; // 64 + polarization bit: 65 / 66
    bool HasPolarization() const override;
    using BSpectralModel::Wavelengths; // the static grid shortcut
    // A spectral model has no value ranges: null, 0.
    int Wavelengths(const BBox1<double>*& ranges) const override;
    MassColConv* GetMassColConv() const override;
    // Makes `conv` the host's converter, then builds a new converter over this grid with it (with
    // GetCIEConv() when `conv` is null) and prepares its light tables.
    void SetCIEConvAll(const CIEConvAll* conv) override;

    // -- colour access -----------------------------------------------------------------------
    // Exact comparison of every stored value (a ray colour's X orientation included; the band is
    // not a value).
    bool IsEqualSurfColor(const ISurfColor& a, const ISurfColor& b) const override;
    bool IsEqualScalarColor(const IScalarColor& a, const IScalarColor& b) const override;
    bool IsEqualRayColor(const IRayColor& a, const IRayColor& b) const override;
    bool IsEqualLgtColor(const ILgtColor& a, const ILgtColor& b) const override;
    // The distribution's copy: same length and components.
    void CopyColor(const ISurfColor& from, ISurfColor& to) const override;
    void CopyColor(const IScalarColor& from, IScalarColor& to) const override;
    // The same, then the band (and a ray colour's X orientation).
    void CopyRangedColor(const IRayColor& from, IRayColor& to) const override;
    void CopyRangedColor(const ILgtColor& from, ILgtColor& to) const override;
    // Every stored component from `values` (Comp::kSize doubles per wavelength), index 0 to
    // count - 1, whatever the band.
    void SetSurfColor(ISurfColor& c, const double* values) const override;
    void SetScalarColor(IScalarColor& c, const double* values) const override;
    void SetFromFloats(ILgtColor& c, const float* values) const override;
    void SetLgtColor(ILgtColor& c, const double* values) const override;
    // NWaves values, one per wavelength, written through the band: writes outside it are lost.
    // Polarized: the value becomes I, with Q = U = V = 0.
    void SetRangedColor(ILgtColor& c, const double* values) const override;
    // Every stored component into `out` (a light colour reads zero outside its band).
    void SurfToArray(const ISurfColor& c, double* out) const override;
    void ScalarToArray(const IScalarColor& c, double* out) const override;
    void LgtToArray(const ILgtColor& c, double* out) const override;
    // One double per stored wavelength: the intensity (I) inside the band, 0 outside.
    void RayToArray(const IRayColor& c, double* out) const override;
    // Every stored component becomes `value` (polarized: (value, 0, 0, 0)), whatever the band.
    void FillColor(ILgtColor& c, double value) const override;
    void FillColor(IRayColor& c, double value) const override;
    bool GetXOrt(const IRayColor& c, TVect3<double>& xort) const override;
    void SetXOrt(IRayColor& c, const TVect3<double>& xort) const override;

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
    double LgtEnergy(const ILgtColor& c) const override;
    double RayEnergy(const ILgtColor& c) const override;
    double LgtLuminance(const ILgtColor& c) const override;
    double SumLgtValues(const ILgtColor& c) const override;
    double RayEnergy(const IRayColor& c) const override;
    void AddLgtColor(const ILgtColor& from, ILgtColor& to) const override;
    void MulLgtColorByArray(ILgtColor& c, const double* factors) const override;
    void ScaleLgtColor(ILgtColor& c, double factor) const override;
    void MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const override;
    void EnergyToDensity(ILgtColor& c) const override;
    void DensityToEnergy(ILgtColor& c) const override;
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

    // -- added by the spectral model ---------------------------------------------------------
    // The host converter's tables of the grid, resolved when the converter was renewed (empty
    // when that failed); the reconstructions pass them to the converter.
    const CIEGrid& GridTables() const { return cieGrid_; }
    // RGB of one value per wavelength through the converter's plain light tables. Always 0.
    virtual int SpectrumToRGB(const double* values, TVect3<double>& rgb, bool normalize,
                              bool clampNegative) const;

protected:
    // Nothing to do (0) when `waves` is the current grid and the converter is over it too.
    // Otherwise BSpectralModel::SetWaveLengths, then a new converter over the grid with light
    // tables prepared: 0, the code of the base's report, or of a no-memory report.
    int SetWaveLengths(const MArray<double>& waves) override;
    // The base (weights from the loaded grid), then a new converter over the grid. A refused,
    // empty grid leaves the model without a converter.
    void OnLoad(int version) override;

private:
    // A new converter over the grid with `conv`, light tables prepared; 0 or the code of the
    // no-memory report (the model is then without a converter).
    int RenewConverter(const CIEConv* conv);
    void SetNameFromType();
    // The light ConvertColor past its per-ray case: every source kind, every target length.
    int ConvertLight(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const;

    TPlugRef<MassColConv> conv_;
    CIEGrid cieGrid_; // the grid's tables from the converter of conv_; shared by copies
};

extern template class SpectralModel<Unpolarized>;
extern template class SpectralModel<StokesPolarization>;

// What the conversions out of a spectral source read of its model, once per conversion: from an
// unpolarized spectral model of this library directly (a test of the object's type, no virtual
// call), through the model's interface from any other.
struct SpectralSource {
    bool polarized = false;
    int n = 0;                             // NWaves
    const MArray<double>* waves = nullptr; // the grid
    const CIEGrid* tables = nullptr;       // its converter tables; null when not known
};
// Inline, so that a per-ray conversion reads its source without a call.
inline SpectralSource SourceOf(const ColorModel& model);
// What SourceOf reads of a model of any other class: its answers to HasPolarization, NWaves and
// GetWaveLengths.
KOR_PLUGIN_API SpectralSource AskedSource(const ColorModel& model);

inline SpectralSource SourceOf(const ColorModel& model) {
    if (&typeid(model) != &typeid(SpectralModel<Unpolarized>))
        return AskedSource(model);
    const auto& own = static_cast<const SpectralModel<Unpolarized>&>(model);
    SpectralSource source;
    source.n = own.BSpectralModel::NWaves();
    source.waves = &own.BSpectralModel::GetWaveLengths();
    source.tables = &own.GridTables();
    return source;
}

} // namespace Korvane
