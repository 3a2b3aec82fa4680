// XYYModel: energy, luminance, arithmetic, clamping and validity of xyY colours.
#include "plugin/models/XYYModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

bool XYYModel::IsValidSurfColor(const ISurfColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidSurfColor");
}

bool XYYModel::IsValidLgtColor(const ILgtColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidLgtColor");
}

int XYYModel::ClampSurfColor(ISurfColor&) const {
    return NotAvailable(ClassName(), "ClampSurfColor");
}

void XYYModel::ClampLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "ClampLgtColor");
}

void XYYModel::AddLgtToArray(const ILgtColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddLgtToArray");
}

void XYYModel::AddRayToArray(const IRayColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddRayToArray");
}

double XYYModel::RayEnergy(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(light)");
}

double XYYModel::LgtLuminance(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "LgtLuminance");
}

double XYYModel::SumLgtValues(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtValues");
}

double XYYModel::RayEnergy(const IRayColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(ray)");
}

void XYYModel::AddLgtColor(const ILgtColor&, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddLgtColor");
}

void XYYModel::MulLgtColorByArray(ILgtColor&, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByArray");
}

void XYYModel::ScaleLgtColor(ILgtColor&, double) const {
    NotAvailable<void>(ClassName(), "ScaleLgtColor");
}

void XYYModel::MulLgtColorByRatio(ILgtColor&, const double*, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByRatio");
}

void XYYModel::NormalizeLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(light)");
}

void XYYModel::NormalizeLgtColor(IRayColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(ray)");
}

void XYYModel::AddScaledLgt(const ILgtColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt");
}

void XYYModel::AddScaledLgt2(const IRayColor&, double, IRayColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt2");
}

void XYYModel::AddScaledLgt3(const IRayColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt3");
}

double XYYModel::SumLgtColor(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtColor");
}

} // namespace Korvane
