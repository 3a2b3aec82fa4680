// TestModel: a minimal concrete colour model for host-kit tests. Its light colour is a CIE XYZ
// triple and its ray colour that triple followed by an X-orientation vector. A light conversion
// reads the source's first three light values and multiplies them by this model's gain, so a test
// can tell which model converted. Everything a base behaviour does not reach is inert: no
// holders, no surface or scalar values, arithmetic that does nothing. The type comes from the test.
#pragma once

#include "hostkit/colormodel/ColorModel.h"

namespace Korvane::Testing {

struct TestLgtColor : ILgtColor {
    double v[3];
};
struct TestRayColor : IRayColor {
    double v[3];
    double xort[3];
};

class TestModel : public ColorModel {
public:
    explicit TestModel(PlugType* type, double gain = 1.0) : type_(type), gain_(gain) {}

    PlugType* ObjType() const override { return type_; }
    int GetModelCode() const override { return 0; }
    int NWaves() const override { return 3; }

    // The light colour, the conversion and the reads that the base behaviours use.
    int ConvertColor(const ColorModel* src, const ILgtColor& f, ILgtColor& t) const override {
        double v[3];
        src->LgtToArray(f, v);
        for (int i = 0; i < 3; ++i)
            L(t).v[i] = v[i] * gain_;
        ClampLgtColor(t);
        return 0;
    }
    void ClampLgtColor(ILgtColor& c) const override {
        for (double& x : L(c).v)
            x = x >= 0.0 ? x : 0.0;
    }
    void LgtToArray(const ILgtColor& c, double* out) const override {
        for (int i = 0; i < 3; ++i)
            out[i] = L(c).v[i];
    }
    double SumLgtColor(const ILgtColor& c) const override {
        return L(c).v[0] + L(c).v[1] + L(c).v[2];
    }
    int LgtColorToXYZ(const ILgtColor& c, TVect3<double>& xyz) const override {
        xyz = {L(c).v[0], L(c).v[1], L(c).v[2]};
        return 0;
    }
    bool GetXOrt(const IRayColor& c, TVect3<double>& x) const override {
        const double* o = static_cast<const TestRayColor&>(c).xort;
        x = {o[0], o[1], o[2]};
        return true;
    }

    // Inert.
    Holder<ILgtColor>* NewLgtColorHold() const override { return nullptr; }
    ArrayLgtColorHolder* NewArrayLgtColorHold(int) const override { return nullptr; }
    MatrixLgtColorHolder* NewMatrixLgtColorHold() const override { return nullptr; }
    Holder<IRayColor>* NewRayColorHold() const override { return nullptr; }
    ArrayRayColorHolder* NewArrayRayColorHold() const override { return nullptr; }
    Holder<IScalarColor>* NewScalarColorHold() const override { return nullptr; }
    Holder<ISurfColor>* NewSurfColorHold() const override { return nullptr; }
    Holder<IDualLgtColor>* NewDualLgtColorHold() const override { return nullptr; }
    bool IsValidSurfColor(const ISurfColor&) const override { return true; }
    bool IsValidLgtColor(const ILgtColor&) const override { return true; }
    int ClampSurfColor(ISurfColor&) const override { return 0; }
    bool IsEqualSurfColor(const ISurfColor&, const ISurfColor&) const override { return true; }
    bool IsEqualScalarColor(const IScalarColor&, const IScalarColor&) const override {
        return true;
    }
    bool IsEqualRayColor(const IRayColor&, const IRayColor&) const override { return true; }
    bool IsEqualLgtColor(const ILgtColor&, const ILgtColor&) const override { return true; }
    void CopyColor(const ISurfColor&, ISurfColor&) const override {}
    void CopyColor(const IScalarColor&, IScalarColor&) const override {}
    void CopyRangedColor(const IRayColor&, IRayColor&) const override {}
    void CopyRangedColor(const ILgtColor&, ILgtColor&) const override {}
    int ConvertColor(const ColorModel*, const ISurfColor&, ISurfColor&) const override {
        return -1;
    }
    int ConvertColor(const ColorModel*, const IScalarColor&, IScalarColor&) const override {
        return -1;
    }
    void SetSurfColor(ISurfColor&, const double*) const override {}
    void SetScalarColor(IScalarColor&, const double*) const override {}
    void SetFromFloats(ILgtColor&, const float*) const override {}
    void SetLgtColor(ILgtColor&, const double*) const override {}
    void SetRangedColor(ILgtColor&, const double*) const override {}
    void SurfToArray(const ISurfColor&, double*) const override {}
    void ScalarToArray(const IScalarColor&, double*) const override {}
    void RayToArray(const IRayColor&, double*) const override {}
    void AddLgtToArray(const ILgtColor&, double*) const override {}
    void AddRayToArray(const IRayColor&, double*) const override {}
    double RayEnergy(const ILgtColor&) const override { return 0.0; }
    double LgtLuminance(const ILgtColor&) const override { return 0.0; }
    double SumLgtValues(const ILgtColor&) const override { return 0.0; }
    double RayEnergy(const IRayColor&) const override { return 0.0; }
    void SurfColorToRGB(const ISurfColor&, TVect3<double>&) const override {}
    void ScalarColorToRGB(const IScalarColor&, TVect3<double>&) const override {}
    int LgtColorToDisplayRGB(const ILgtColor&, TVect3<double>&) const override { return 0; }
    void LgtColorToRGBByCurves(const ILgtColor&, const ColorCurves&,
                               TVect3<double>&) const override {}
    void FillColor(ILgtColor&, double) const override {}
    void FillColor(IRayColor&, double) const override {}
    void AddLgtColor(const ILgtColor&, ILgtColor&) const override {}
    void MulLgtColorByArray(ILgtColor&, const double*) const override {}
    void ScaleLgtColor(ILgtColor&, double) const override {}
    void MulLgtColorByRatio(ILgtColor&, const double*, const double*) const override {}
    void NormalizeLgtColor(ILgtColor&) const override {}
    void NormalizeLgtColor(IRayColor&) const override {}
    void AddScaledLgt(const ILgtColor&, double, ILgtColor&) const override {}
    void AddScaledLgt2(const IRayColor&, double, IRayColor&) const override {}
    void AddScaledLgt3(const IRayColor&, double, ILgtColor&) const override {}
    int LgtColorToRGB(const ILgtColor&, TVect3<double>&, bool, bool) const override { return -1; }
    int Wavelengths(const BBox1<double>*&) const override { return 0; }
    void SetXOrt(IRayColor&, const TVect3<double>&) const override {}
    void RGBConvertToRayColor(const TVect3<double>&, IRayColor&) const override {}
    void RGBConvertToSurfaceColor(const TVect3<double>&, ISurfColor&) const override {}
    int SpectralConvertToRayColor(const ColorModel*, const MArray<double>&,
                                  IRayColor&) const override {
        return -1;
    }

private:
    static TestLgtColor& L(ILgtColor& c) { return static_cast<TestLgtColor&>(c); }
    static const TestLgtColor& L(const ILgtColor& c) { return static_cast<const TestLgtColor&>(c); }

    PlugType* type_;
    double gain_;
};

} // namespace Korvane::Testing
