// XYZModel: energy, luminance, arithmetic, clamping and validity of XYZ colours.
#include "plugin/models/XYZModel.h"

#include "plugin/models/NotAvailable.h"

namespace Korvane {

bool XYZModel::IsValidSurfColor(const ISurfColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidSurfColor");
}

bool XYZModel::IsValidLgtColor(const ILgtColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidLgtColor");
}

int XYZModel::ClampSurfColor(ISurfColor&) const {
    return NotAvailable(ClassName(), "ClampSurfColor");
}

void XYZModel::ClampLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "ClampLgtColor");
}

void XYZModel::AddLgtToArray(const ILgtColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddLgtToArray");
}

void XYZModel::AddRayToArray(const IRayColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddRayToArray");
}

double XYZModel::RayEnergy(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(light)");
}

double XYZModel::LgtLuminance(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "LgtLuminance");
}

double XYZModel::SumLgtValues(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtValues");
}

double XYZModel::RayEnergy(const IRayColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(ray)");
}

void XYZModel::AddLgtColor(const ILgtColor&, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddLgtColor");
}

void XYZModel::MulLgtColorByArray(ILgtColor&, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByArray");
}

void XYZModel::ScaleLgtColor(ILgtColor&, double) const {
    NotAvailable<void>(ClassName(), "ScaleLgtColor");
}

void XYZModel::MulLgtColorByRatio(ILgtColor&, const double*, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByRatio");
}

void XYZModel::NormalizeLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(light)");
}

void XYZModel::NormalizeLgtColor(IRayColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(ray)");
}

void XYZModel::AddScaledLgt(const ILgtColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt");
}

void XYZModel::AddScaledLgt2(const IRayColor&, double, IRayColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt2");
}

void XYZModel::AddScaledLgt3(const IRayColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt3");
}

double XYZModel::SumLgtColor(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtColor");
}

} // namespace Korvane
