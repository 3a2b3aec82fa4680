// XYZModel: energy, luminance, arithmetic, clamping and validity of XYZ colours. XYZ is linear in
// the light, so sums, scales and the other arithmetic work value by value as in the unpolarized
// RGB model.
#include "plugin/models/XYZModel.h"

#include "hostkit/cie/CIEConvAll.h"
#include "plugin/models/CIETriple.h"

namespace Korvane {
namespace {

using ColourAccess::Value;

void AddInto(const TVect3<double>& from, double f, double* to) {
    for (int k = 0; k < 3; ++k)
        to[k] += f * from[k];
}

// Scales the colour so that its values sum to 1: (0, 0, 0) is read as (1, 1, 1) first, and a
// colour that already sums to exactly 1 is left alone.
void NormalizeSum(ILgtColor& c) {
    auto& v = Value<XYZModel>(c);
    double s = CIETriple::Sum(CIETriple::Get(c));
    if (s == 0.0) {
        v[0] = v[1] = v[2] = 1.0;
        s = CIETriple::Sum(CIETriple::Get(c));
    }
    if (s == 1.0)
        return;
    const double f = 1.0 / s;
    for (int k = 0; k < 3; ++k)
        v[k] *= f;
}

// R + G + B of M xyz.
double RGBEnergy(const TVect3<double>& xyz) {
    return CIETriple::Sum(RGBOps::ApplyM(xyz));
}

} // namespace

bool XYZModel::IsValidSurfColor(const ISurfColor& c) const {
    double v[3];
    SurfToArray(c, v);
    return GetCIEConv()->IsValidXYZ(v[0], v[1], v[2]);
}

bool XYZModel::IsValidLgtColor(const ILgtColor& c) const {
    const TVect3<double> t = CIETriple::Get(c);
    return t.x >= 0.0 && t.y >= 0.0 && t.z >= 0.0;
}

int XYZModel::ClampSurfColor(ISurfColor& c) const {
    double v[3];
    SurfToArray(c, v);
    if (GetCIEConv()->IsValidXYZ(v[0], v[1], v[2]))
        return 1;
    const double black[3] = {0.0, 0.0, 0.0};
    SetSurfColor(c, black);
    return 0;
}

void XYZModel::ClampLgtColor(ILgtColor& c) const {
    auto& v = Value<XYZModel>(c);
    for (int k = 0; k < 3; ++k)
        if (!(v[k] >= 0.0))
            v[k] = 0.0;
}

void XYZModel::AddLgtToArray(const ILgtColor& c, double* out) const {
    AddInto(CIETriple::Get(c), 1.0, out);
}

void XYZModel::AddRayToArray(const IRayColor& c, double* out) const {
    AddInto(CIETriple::Get(LightPart(c)), 1.0, out);
}

double XYZModel::RayEnergy(const ILgtColor& c) const {
    return RGBEnergy(CIETriple::Get(c));
}

double XYZModel::LgtLuminance(const ILgtColor& c) const {
    return CIETriple::Get(c).y;
}

double XYZModel::SumLgtValues(const ILgtColor& c) const {
    if (!GetCIEConvAll())
        return 0.0;
    const TVect3<double> t = CIETriple::Get(c);
    return TCIEConvAll->XYZ2Watts(t.x, t.y, t.z);
}

double XYZModel::RayEnergy(const IRayColor& c) const {
    return RGBEnergy(CIETriple::Get(LightPart(c)));
}

void XYZModel::AddLgtColor(const ILgtColor& from, ILgtColor& to) const {
    AddInto(CIETriple::Get(from), 1.0, Value<XYZModel>(to).Values());
}

void XYZModel::MulLgtColorByArray(ILgtColor& c, const double* factors) const {
    RGBOps::MulChannels(ColourAccess::Value<XYZModel>(c), factors);
}

void XYZModel::ScaleLgtColor(ILgtColor& c, double factor) const {
    auto& v = Value<XYZModel>(c);
    for (int k = 0; k < 3; ++k)
        v[k] *= factor;
}

void XYZModel::MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const {
    RGBOps::MulChannelsByRatio(ColourAccess::Value<XYZModel>(c), a, b);
}

void XYZModel::NormalizeLgtColor(ILgtColor& c) const {
    NormalizeSum(c);
}

void XYZModel::NormalizeLgtColor(IRayColor& c) const {
    NormalizeSum(LightPart(c));
}

void XYZModel::AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const {
    AddInto(CIETriple::Get(from), f, Value<XYZModel>(to).Values());
}

void XYZModel::AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const {
    AddInto(CIETriple::Get(LightPart(from)), f, Value<XYZModel>(LightPart(to)).Values());
}

void XYZModel::AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const {
    AddInto(CIETriple::Get(LightPart(from)), f, Value<XYZModel>(to).Values());
}

double XYZModel::SumLgtColor(const ILgtColor& c) const {
    return CIETriple::Sum(CIETriple::Get(c));
}

} // namespace Korvane
