// RGBModel<Pol>: energy, luminance, arithmetic, clamping and validity of RGB colours. Included by
// RGBModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
bool RGBModel<Pol>::IsValidSurfColor(const ISurfColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidSurfColor");
}

template <class Pol>
bool RGBModel<Pol>::IsValidLgtColor(const ILgtColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidLgtColor");
}

template <class Pol>
int RGBModel<Pol>::ClampSurfColor(ISurfColor&) const {
    return NotAvailable(ClassName(), "ClampSurfColor");
}

template <class Pol>
void RGBModel<Pol>::ClampLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "ClampLgtColor");
}

template <class Pol>
void RGBModel<Pol>::AddLgtToArray(const ILgtColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddLgtToArray");
}

template <class Pol>
void RGBModel<Pol>::AddRayToArray(const IRayColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddRayToArray");
}

template <class Pol>
double RGBModel<Pol>::RayEnergy(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(light)");
}

template <class Pol>
double RGBModel<Pol>::LgtLuminance(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "LgtLuminance");
}

template <class Pol>
double RGBModel<Pol>::SumLgtValues(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtValues");
}

template <class Pol>
double RGBModel<Pol>::RayEnergy(const IRayColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(ray)");
}

template <class Pol>
void RGBModel<Pol>::AddLgtColor(const ILgtColor&, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddLgtColor");
}

template <class Pol>
void RGBModel<Pol>::MulLgtColorByArray(ILgtColor&, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByArray");
}

template <class Pol>
void RGBModel<Pol>::ScaleLgtColor(ILgtColor&, double) const {
    NotAvailable<void>(ClassName(), "ScaleLgtColor");
}

template <class Pol>
void RGBModel<Pol>::MulLgtColorByRatio(ILgtColor&, const double*, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByRatio");
}

template <class Pol>
void RGBModel<Pol>::NormalizeLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(light)");
}

template <class Pol>
void RGBModel<Pol>::NormalizeLgtColor(IRayColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(ray)");
}

template <class Pol>
void RGBModel<Pol>::AddScaledLgt(const ILgtColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt");
}

template <class Pol>
void RGBModel<Pol>::AddScaledLgt2(const IRayColor&, double, IRayColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt2");
}

template <class Pol>
void RGBModel<Pol>::AddScaledLgt3(const IRayColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt3");
}

template <class Pol>
double RGBModel<Pol>::SumLgtColor(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtColor");
}

} // namespace Korvane
