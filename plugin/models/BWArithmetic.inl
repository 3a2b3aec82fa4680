// BWModel<Pol>: energy, luminance, arithmetic, clamping and validity of BW colours. Included by
// BWModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
bool BWModel<Pol>::IsValidSurfColor(const ISurfColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidSurfColor");
}

template <class Pol>
bool BWModel<Pol>::IsValidLgtColor(const ILgtColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidLgtColor");
}

template <class Pol>
int BWModel<Pol>::ClampSurfColor(ISurfColor&) const {
    return NotAvailable(ClassName(), "ClampSurfColor");
}

template <class Pol>
void BWModel<Pol>::ClampLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "ClampLgtColor");
}

template <class Pol>
void BWModel<Pol>::AddLgtToArray(const ILgtColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddLgtToArray");
}

template <class Pol>
void BWModel<Pol>::AddRayToArray(const IRayColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddRayToArray");
}

template <class Pol>
double BWModel<Pol>::RayEnergy(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(light)");
}

template <class Pol>
double BWModel<Pol>::LgtLuminance(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "LgtLuminance");
}

template <class Pol>
double BWModel<Pol>::SumLgtValues(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtValues");
}

template <class Pol>
double BWModel<Pol>::RayEnergy(const IRayColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(ray)");
}

template <class Pol>
void BWModel<Pol>::AddLgtColor(const ILgtColor&, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddLgtColor");
}

template <class Pol>
void BWModel<Pol>::MulLgtColorByArray(ILgtColor&, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByArray");
}

template <class Pol>
void BWModel<Pol>::ScaleLgtColor(ILgtColor&, double) const {
    NotAvailable<void>(ClassName(), "ScaleLgtColor");
}

template <class Pol>
void BWModel<Pol>::MulLgtColorByRatio(ILgtColor&, const double*, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByRatio");
}

template <class Pol>
void BWModel<Pol>::NormalizeLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(light)");
}

template <class Pol>
void BWModel<Pol>::NormalizeLgtColor(IRayColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(ray)");
}

template <class Pol>
void BWModel<Pol>::AddScaledLgt(const ILgtColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt");
}

template <class Pol>
void BWModel<Pol>::AddScaledLgt2(const IRayColor&, double, IRayColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt2");
}

template <class Pol>
void BWModel<Pol>::AddScaledLgt3(const IRayColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt3");
}

template <class Pol>
double BWModel<Pol>::SumLgtColor(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtColor");
}

} // namespace Korvane
