#include "plugin/models/FixedColourModel.h"

#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"

namespace Korvane {

using ColourAccess::Value;

template <class M>
int FixedColourModel<M>::Wavelengths(const BBox1<double>*& ranges) const {
    return ranges_.Get(ranges);
}

template <class M>
bool FixedColourModel<M>::IsEqualSurfColor(const ISurfColor& a, const ISurfColor& b) const {
    return Value<M>(a) == Value<M>(b);
}

template <class M>
bool FixedColourModel<M>::IsEqualScalarColor(const IScalarColor& a, const IScalarColor& b) const {
    return Value<M>(a) == Value<M>(b);
}

template <class M>
bool FixedColourModel<M>::IsEqualRayColor(const IRayColor& a, const IRayColor& b) const {
    return Value<M>(a) == Value<M>(b);
}

template <class M>
bool FixedColourModel<M>::IsEqualLgtColor(const ILgtColor& a, const ILgtColor& b) const {
    return Value<M>(a) == Value<M>(b);
}

template <class M>
void FixedColourModel<M>::CopyColor(const ISurfColor& from, ISurfColor& to) const {
    Value<M>(to) = Value<M>(from);
}

template <class M>
void FixedColourModel<M>::CopyColor(const IScalarColor& from, IScalarColor& to) const {
    Value<M>(to) = Value<M>(from);
}

template <class M>
void FixedColourModel<M>::CopyRangedColor(const IRayColor& from, IRayColor& to) const {
    Value<M>(to) = Value<M>(from);
}

template <class M>
void FixedColourModel<M>::CopyRangedColor(const ILgtColor& from, ILgtColor& to) const {
    Value<M>(to) = Value<M>(from);
}

template <class M>
void FixedColourModel<M>::SetSurfColor(ISurfColor& c, const double* values) const {
    ColourAccess::SetValues(Value<M>(c), values);
}

template <class M>
void FixedColourModel<M>::SetScalarColor(IScalarColor& c, const double* values) const {
    ColourAccess::SetValues(Value<M>(c), values);
}

template <class M>
void FixedColourModel<M>::SetFromFloats(ILgtColor& c, const float* values) const {
    ColourAccess::SetValues(Value<M>(c), values);
}

template <class M>
void FixedColourModel<M>::SetLgtColor(ILgtColor& c, const double* values) const {
    ColourAccess::SetValues(Value<M>(c), values);
}

template <class M>
void FixedColourModel<M>::SetRangedColor(ILgtColor& c, const double* values) const {
    auto& colour = Value<M>(c);
    for (int k = 0; k < NWaves(); ++k)
        colour[k] = HasPolarization() ? 0.0 : values[k];
}

template <class M>
void FixedColourModel<M>::SurfToArray(const ISurfColor& c, double* out) const {
    ColourAccess::GetValues(Value<M>(c), out);
}

template <class M>
void FixedColourModel<M>::ScalarToArray(const IScalarColor& c, double* out) const {
    ColourAccess::GetValues(Value<M>(c), out);
}

template <class M>
void FixedColourModel<M>::LgtToArray(const ILgtColor& c, double* out) const {
    ColourAccess::GetValues(Value<M>(c), out);
}

template <class M>
void FixedColourModel<M>::RayToArray(const IRayColor& c, double* out) const {
    ColourAccess::GetIntensities(Value<M>(c).Light(), out);
}

template <class M>
void FixedColourModel<M>::FillColor(ILgtColor& c, double value) const {
    ColourAccess::FillIntensities(Value<M>(c), value);
}

template <class M>
void FixedColourModel<M>::FillColor(IRayColor& c, double value) const {
    ColourAccess::FillIntensities(Value<M>(c).Light(), value);
}

template <class M>
bool FixedColourModel<M>::GetXOrt(const IRayColor& c, TVect3<double>& xort) const {
    return ColourAccess::GetXOrt(Value<M>(c), xort);
}

template <class M>
void FixedColourModel<M>::SetXOrt(IRayColor& c, const TVect3<double>& xort) const {
    ColourAccess::SetXOrt(Value<M>(c), xort);
}

template class FixedColourModel<BWModel<Unpolarized>>;
template class FixedColourModel<BWModel<StokesPolarization>>;
template class FixedColourModel<RGBModel<Unpolarized>>;
template class FixedColourModel<RGBModel<StokesPolarization>>;

} // namespace Korvane
