// ColorModel: the host's abstract colour model. The host and the holders talk to a model only
// through these virtual operations, passing colours as references to the colour interfaces;
// each model casts them to its own colour values. The operations are declared in the order of
// the host's operation table (after the Plug slots ObjType, OnChange, OnAsk, destructor,
// SetName, GetText, Clone, OnLoad, SaveToFile, CanProvide, Provide).
//
// Operations that can fail return an int: 0 on success, otherwise the code of the report made
// (User()), or -1 where no report is made.
//
// Lifetime rule: the plug-in that made a model is unloaded after its TermClasses, so the host
// never holds the last reference to a plug-in's model. The host's registry (ColorModelType) and
// its implicit-model slot keep plain pointers; the destructor takes the model out of the
// registry and clears the implicit slot when it names this model.
#pragma once

#include "hostkit/base/Vectors.h"
#include "hostkit/base/containers/TArray.h"
#include "hostkit/colormodel/ColorInterfaces.h"
#include "hostkit/colormodel/Holders.h"
#include "hostkit/plugsys/PlugType.h"

namespace Korvane {

class CIEConv;
class CIEConvAll;
class MassColConv; // the plug-in's per-grid converter; the base only hands out a pointer

class KOR_HOST_API ColorModel : public Plug, public IOwner {
public:
    ColorModel();
    ColorModel(const ColorModel& other);
    ~ColorModel() override;

    // -- identity ----------------------------------------------------------------------------
    virtual int GetModelCode() const = 0; // kind bit (BW 16, RGB 32, spectral 64, XYZ 128,
                                          // xyY 256) plus polarization bit (1 none, 2 Stokes)
    virtual bool HasPolarization() const; // base: false
    virtual bool IsBW() const;            // base: false
    virtual bool IsRGB() const;           // base: false
    virtual bool IsXYZ() const;           // base: false
    virtual bool IsXYY() const;           // base: false
    virtual bool IsSpectral() const;      // base: false
    virtual int NWaves() const = 0;       // values per colour channel
    // Wavelength range covered; base: the limits of the host field TWaveLength.
    virtual void GetWaveRange(double& low, double& high) const;
    virtual const MArray<double>& GetWaveLengths() const; // base: an empty grid
    // Base: `other` is not null and has the same ObjType.
    virtual bool IsEqual(const ColorModel* other) const;
    // Base: makes this model the host's implicit colour model (a plain pointer, see above).
    virtual void SetAsImplicit();
    virtual MassColConv* GetMassColConv() const; // base: null

    // -- holders and validity ------------------------------------------------------------------
    virtual Holder<ILgtColor>* NewLgtColorHold() const = 0;
    virtual ArrayLgtColorHolder* NewArrayLgtColorHold(int n) const = 0;
    virtual MatrixLgtColorHolder* NewMatrixLgtColorHold() const = 0;
    virtual bool IsValidSurfColor(const ISurfColor& c) const = 0;
    virtual bool IsValidLgtColor(const ILgtColor& c) const = 0;
    virtual int ClampSurfColor(ISurfColor& c) const = 0;
    virtual void ClampLgtColor(ILgtColor& c) const = 0;
    virtual bool IsEqualSurfColor(const ISurfColor& a, const ISurfColor& b) const = 0;
    virtual bool IsEqualScalarColor(const IScalarColor& a, const IScalarColor& b) const = 0;
    virtual bool IsEqualRayColor(const IRayColor& a, const IRayColor& b) const = 0;
    virtual bool IsEqualLgtColor(const ILgtColor& a, const ILgtColor& b) const = 0;
    virtual void CopyColor(const ISurfColor& from, ISurfColor& to) const = 0;
    virtual void CopyColor(const IScalarColor& from, IScalarColor& to) const = 0;
    virtual void CopyRangedColor(const IRayColor& from, IRayColor& to) const = 0;
    virtual void CopyRangedColor(const ILgtColor& from, ILgtColor& to) const = 0;

    // -- conversions from any model into this one ------------------------------------------------
    virtual int ConvertColor(const ColorModel* src, const ISurfColor& from,
                             ISurfColor& to) const = 0;
    virtual int ConvertColor(const ColorModel* src, const IScalarColor& from,
                             IScalarColor& to) const = 0;
    virtual int ConvertColor(const ColorModel* src, const ILgtColor& from, ILgtColor& to) const = 0;

    // -- plain arrays in and out ---------------------------------------------------------------
    virtual void SetSurfColor(ISurfColor& c, const double* values) const = 0;
    virtual void SetScalarColor(IScalarColor& c, const double* values) const = 0;
    virtual void SetFromFloats(ILgtColor& c, const float* values) const = 0;
    virtual void SetLgtColor(ILgtColor& c, const double* values) const = 0;
    virtual void SetRangedColor(ILgtColor& c, const double* values) const = 0;
    virtual void SurfToArray(const ISurfColor& c, double* out) const = 0;
    virtual void ScalarToArray(const IScalarColor& c, double* out) const = 0;
    virtual void LgtToArray(const ILgtColor& c, double* out) const = 0;
    virtual void RayToArray(const IRayColor& c, double* out) const = 0;
    virtual void AddLgtToArray(const ILgtColor& c, double* out) const = 0;
    virtual void AddRayToArray(const IRayColor& c, double* out) const = 0;

    // -- energy, luminance, display --------------------------------------------------------------
    virtual double LgtEnergy(const ILgtColor& c) const; // base: SumLgtColor(c)
    virtual double RayEnergy(const ILgtColor& c) const = 0;
    virtual double LgtLuminance(const ILgtColor& c) const = 0;
    virtual double SumLgtValues(const ILgtColor& c) const = 0;
    virtual double RayEnergy(const IRayColor& c) const = 0;
    virtual void SurfColorToRGB(const ISurfColor& c, TVect3<double>& rgb) const = 0;
    virtual void ScalarColorToRGB(const IScalarColor& c, TVect3<double>& rgb) const = 0;
    // RGB for display; non-zero when the colour is not black (models define the answer).
    virtual int LgtColorToDisplayRGB(const ILgtColor& c, TVect3<double>& rgb) const = 0;
    virtual void LgtColorToRGBByCurves(const ILgtColor& c, const ColorCurves& curves,
                                       TVect3<double>& rgb) const = 0;

    // -- arithmetic -------------------------------------------------------------------------------
    virtual void FillColor(ILgtColor& c, double value) const = 0;
    virtual void FillColor(IRayColor& c, double value) const = 0;
    virtual void AddLgtColor(const ILgtColor& from, ILgtColor& to) const = 0;
    virtual void MulLgtColorByArray(ILgtColor& c, const double* factors) const = 0;
    virtual void ScaleLgtColor(ILgtColor& c, double factor) const = 0;
    // value *= a / b per channel where b > 0, else unchanged.
    virtual void MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const = 0;
    virtual void EnergyToDensity(ILgtColor& c) const; // base: nothing
    virtual void DensityToEnergy(ILgtColor& c) const; // base: nothing
    virtual void NormalizeLgtColor(ILgtColor& c) const = 0;
    virtual void NormalizeLgtColor(IRayColor& c) const = 0;
    // to += f * from: light into light, ray into ray, ray into light.
    virtual void AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const = 0;
    virtual void AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const = 0;
    virtual void AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const = 0;
    virtual double SumLgtColor(const ILgtColor& c) const = 0;
    virtual Holder<IRayColor>* NewRayColorHold() const = 0;
    virtual ArrayRayColorHolder* NewArrayRayColorHold() const = 0;
    virtual int LgtColorToRGB(const ILgtColor& c, TVect3<double>& rgb, bool normalize,
                              bool clampNegative) const = 0;
    virtual int LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const = 0;
    // The model's value ranges: points `ranges` at them and returns how many (0 for none).
    virtual int Wavelengths(const BBox1<double>*& ranges) const = 0;
    virtual bool GetXOrt(const IRayColor& c, TVect3<double>& xort) const = 0;
    virtual void SetXOrt(IRayColor& c, const TVect3<double>& xort) const = 0;
    virtual Holder<IScalarColor>* NewScalarColorHold() const = 0;
    virtual Holder<ISurfColor>* NewSurfColorHold() const = 0;
    virtual Holder<IDualLgtColor>* NewDualLgtColorHold() const = 0;

    // -- rays -------------------------------------------------------------------------------------
    // Base: this model's light ConvertColor from `src` into the light part of the ray colour;
    // the X-orientation is left as it is.
    virtual int ConvertToRayColor(const ColorModel* src, const ILgtColor& from,
                                  IRayColor& to) const;
    virtual void RGBConvertToRayColor(const TVect3<double>& rgb, IRayColor& to) const = 0;
    virtual void RGBConvertToSurfaceColor(const TVect3<double>& rgb, ISurfColor& to) const = 0;
    virtual int SpectralConvertToRayColor(const ColorModel* src, const MArray<double>& spectrum,
                                          IRayColor& to) const = 0;
    // Base: LgtColorToXYZ, then xy = (X/S, Y/S) with S = X+Y+Z, or (0, 0) when S is exactly 0;
    // luminance = 683 Y.
    virtual void GetChromaticity(const ILgtColor& c, double& luminance, TVect2<double>& xy) const;
    // Base: makes `conv` the host's current converter, process-wide: GetCIEConvAll() returns it
    // and GetCIEConv() returns it as a CIEConv (null: GetCIEConvAll() is null and GetCIEConv() the
    // built-in default). The converter is not owned; the caller keeps it alive while current.
    // Models that cache converter tables override this, call the base and rebuild.
    virtual void SetCIEConvAll(const CIEConvAll* conv);

    // -- the current converter -------------------------------------------------------------------
    // Always present: the current CIEConvAll when one is set, else the built-in default
    // (CIEConv::Current()).
    static const CIEConv* GetCIEConv();
    // May be null (a host that runs without a full converter). At host start it is the built-in
    // default CIEConvAll::Default().
    static const CIEConvAll* GetCIEConvAll();
    // The host's implicit colour model: null before any SetAsImplicit and after that model died.
    static ColorModel* GetImplicitModel();

private:
    friend class ColorModelType;
    // The process-wide store behind the SetCIEConvAll slot.
    static void StoreCIEConvAll(const CIEConvAll* conv);
};

} // namespace Korvane
