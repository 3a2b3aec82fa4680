// SpectralModel<Pol>: energy, density, luminance, arithmetic, clamping and validity of spectral
// colours. Included by SpectralModel.cpp.
#pragma once

namespace Korvane {

template <class Pol>
bool SpectralModel<Pol>::IsValidSurfColor(const ISurfColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidSurfColor");
}

template <class Pol>
bool SpectralModel<Pol>::IsValidLgtColor(const ILgtColor&) const {
    return NotAvailable<bool>(ClassName(), "IsValidLgtColor");
}

template <class Pol>
int SpectralModel<Pol>::ClampSurfColor(ISurfColor&) const {
    return NotAvailable(ClassName(), "ClampSurfColor");
}

template <class Pol>
void SpectralModel<Pol>::ClampLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "ClampLgtColor");
}

template <class Pol>
void SpectralModel<Pol>::AddLgtToArray(const ILgtColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddLgtToArray");
}

template <class Pol>
void SpectralModel<Pol>::AddRayToArray(const IRayColor&, double*) const {
    NotAvailable<void>(ClassName(), "AddRayToArray");
}

template <class Pol>
double SpectralModel<Pol>::LgtEnergy(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "LgtEnergy");
}

template <class Pol>
double SpectralModel<Pol>::RayEnergy(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(light)");
}

template <class Pol>
double SpectralModel<Pol>::LgtLuminance(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "LgtLuminance");
}

template <class Pol>
double SpectralModel<Pol>::SumLgtValues(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtValues");
}

template <class Pol>
double SpectralModel<Pol>::RayEnergy(const IRayColor&) const {
    return NotAvailable<double>(ClassName(), "RayEnergy(ray)");
}

template <class Pol>
void SpectralModel<Pol>::AddLgtColor(const ILgtColor&, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddLgtColor");
}

template <class Pol>
void SpectralModel<Pol>::MulLgtColorByArray(ILgtColor&, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByArray");
}

template <class Pol>
void SpectralModel<Pol>::ScaleLgtColor(ILgtColor&, double) const {
    NotAvailable<void>(ClassName(), "ScaleLgtColor");
}

template <class Pol>
void SpectralModel<Pol>::MulLgtColorByRatio(ILgtColor&, const double*, const double*) const {
    NotAvailable<void>(ClassName(), "MulLgtColorByRatio");
}

template <class Pol>
void SpectralModel<Pol>::EnergyToDensity(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "EnergyToDensity");
}

template <class Pol>
void SpectralModel<Pol>::DensityToEnergy(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "DensityToEnergy");
}

template <class Pol>
void SpectralModel<Pol>::NormalizeLgtColor(ILgtColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(light)");
}

template <class Pol>
void SpectralModel<Pol>::NormalizeLgtColor(IRayColor&) const {
    NotAvailable<void>(ClassName(), "NormalizeLgtColor(ray)");
}

template <class Pol>
void SpectralModel<Pol>::AddScaledLgt(const ILgtColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt");
}

template <class Pol>
void SpectralModel<Pol>::AddScaledLgt2(const IRayColor&, double, IRayColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt2");
}

template <class Pol>
void SpectralModel<Pol>::AddScaledLgt3(const IRayColor&, double, ILgtColor&) const {
    NotAvailable<void>(ClassName(), "AddScaledLgt3");
}

template <class Pol>
double SpectralModel<Pol>::SumLgtColor(const ILgtColor&) const {
    return NotAvailable<double>(ClassName(), "SumLgtColor");
}

} // namespace Korvane
