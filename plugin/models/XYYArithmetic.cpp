// XYYModel: energy, luminance, arithmetic, clamping and validity of xyY colours. xyY is not
// linear in the light, so sums of colours are taken in XYZ and turned back into xyY; scaling and
// normalizing touch the luminance Y only.
#include "plugin/models/XYYModel.h"

#include "hostkit/cie/CIEConvAll.h"
#include "plugin/models/CIETriple.h"

namespace Korvane {
namespace {

using ColourAccess::Value;
using ColourMath::XYYToXYZ;
using ColourMath::XYZToXYY;

bool InUnitRange(double v) {
    return v >= 0.0 && v <= 1.0;
}

// x, y and Y each in [0, 1] and the point inside the converter's valid region.
bool IsValidTriple(const TVect3<double>& t) {
    return InUnitRange(t.x) && InUnitRange(t.y) && InUnitRange(t.z) &&
           ColorModel::GetCIEConv()->IsValidXYY(t.x, t.y, t.z);
}

// xyY of XYZ(a) + XYZ(b).
TVect3<double> SumOf(const TVect3<double>& a, const TVect3<double>& b) {
    return XYZToXYY(CIETriple::Add(XYYToXYZ(a), XYYToXYZ(b)));
}

// `to` becomes xyY of f XYZ(from) + XYZ(to).
void AddScaled(const TVect3<double>& from, double f, ILgtColor& to) {
    const TVect3<double> a = XYYToXYZ(from);
    const TVect3<double> scaled(f * a.x, f * a.y, f * a.z);
    CIETriple::Set(to, XYZToXYY(CIETriple::Add(scaled, XYYToXYZ(CIETriple::Get(to)))));
}

// The xyY sum of the colour and the triple held in `out`, added onto `out` value by value: the
// array keeps its own values and gains the sum's, so its Y grows by its own Y once more.
void AddOnto(const TVect3<double>& c, double* out) {
    const TVect3<double> s = SumOf(c, TVect3<double>(out[0], out[1], out[2]));
    out[0] += s.x;
    out[1] += s.y;
    out[2] += s.z;
}

double RGBEnergy(const TVect3<double>& xyY) {
    return CIETriple::Sum(RGBOps::ApplyM(XYYToXYZ(xyY)));
}

} // namespace

bool XYYModel::IsValidSurfColor(const ISurfColor& c) const {
    double v[3];
    SurfToArray(c, v);
    return IsValidTriple(TVect3<double>(v[0], v[1], v[2]));
}

bool XYYModel::IsValidLgtColor(const ILgtColor& c) const {
    return IsValidTriple(CIETriple::Get(c));
}

int XYYModel::ClampSurfColor(ISurfColor& c) const {
    double v[3];
    SurfToArray(c, v);
    if (v[2] > 1.0)
        v[2] = 1.0;
    // A valid copy is not written back, so a stored Y above 1 stays: the cap travels only with
    // a repair.
    if (IsValidTriple(TVect3<double>(v[0], v[1], v[2])))
        return 1;
    SetSurfColor(c, v);
    return 0;
}

void XYYModel::ClampLgtColor(ILgtColor& c) const {
    const TVect3<double> t = CIETriple::Get(c);
    if (InUnitRange(t.x) && InUnitRange(t.y) && InUnitRange(t.z) &&
        GetCIEConv()->IsValidXY(t.x, t.y))
        return;
    const TVect3<double> capped(t.x, t.y, t.z > 1.0 ? 1.0 : t.z);
    TVect3<double> rgb = RGBOps::ApplyM(ColourMath::ClampNegative(XYYToXYZ(capped)));
    if (CIEConv::ClipRGBScale(rgb))
        CIETriple::Set(c, XYZToXYY(GetCIEConv()->RGB2XYZ() * rgb));
    else
        CIETriple::Set(c, capped);
}

void XYYModel::AddLgtToArray(const ILgtColor& c, double* out) const {
    AddOnto(CIETriple::Get(c), out);
}

void XYYModel::AddRayToArray(const IRayColor& c, double* out) const {
    AddOnto(CIETriple::Get(LightPart(c)), out);
}

double XYYModel::RayEnergy(const ILgtColor& c) const {
    return RGBEnergy(CIETriple::Get(c));
}

double XYYModel::LgtLuminance(const ILgtColor& c) const {
    return CIETriple::Get(c).z;
}

double XYYModel::SumLgtValues(const ILgtColor& c) const {
    if (!GetCIEConvAll())
        return 0.0;
    const TVect3<double> xyz = XYYToXYZ(CIETriple::Get(c));
    return TCIEConvAll->XYZ2Watts(xyz.x, xyz.y, xyz.z);
}

double XYYModel::RayEnergy(const IRayColor& c) const {
    return RGBEnergy(CIETriple::Get(LightPart(c)));
}

void XYYModel::AddLgtColor(const ILgtColor& from, ILgtColor& to) const {
    CIETriple::Set(to, SumOf(CIETriple::Get(from), CIETriple::Get(to)));
}

void XYYModel::MulLgtColorByArray(ILgtColor& c, const double* factors) const {
    RGBOps::MulChannels(ColourAccess::Value<XYZModel>(c), factors);
}

void XYYModel::ScaleLgtColor(ILgtColor& c, double factor) const {
    Value<XYYModel>(c)[2] *= factor;
}

void XYYModel::MulLgtColorByRatio(ILgtColor& c, const double* a, const double* b) const {
    RGBOps::MulChannelsByRatio(ColourAccess::Value<XYZModel>(c), a, b);
}

void XYYModel::NormalizeLgtColor(ILgtColor& c) const {
    Value<XYYModel>(c)[2] = 1.0;
}

void XYYModel::NormalizeLgtColor(IRayColor& c) const {
    Value<XYYModel>(LightPart(c))[2] = 1.0;
}

void XYYModel::AddScaledLgt(const ILgtColor& from, double f, ILgtColor& to) const {
    AddScaled(CIETriple::Get(from), f, to);
}

void XYYModel::AddScaledLgt2(const IRayColor& from, double f, IRayColor& to) const {
    AddScaled(CIETriple::Get(LightPart(from)), f, LightPart(to));
}

void XYYModel::AddScaledLgt3(const IRayColor& from, double f, ILgtColor& to) const {
    AddScaled(CIETriple::Get(LightPart(from)), f, to);
}

double XYYModel::SumLgtColor(const ILgtColor& c) const {
    return CIETriple::Sum(CIETriple::Get(c));
}

} // namespace Korvane
