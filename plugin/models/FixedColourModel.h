// FixedColourModel<M>: the common base of the models whose colours have a fixed number of
// channels: BWModel<Pol> (one), RGBModel<Pol> (three), and XYZModel and XYYModel, which keep
// their colours in the values of RGBModel<Unpolarized> and so derive from
// FixedColourModel<RGBModel<Unpolarized>>. It holds the three value ranges of these models and
// answers the slots that move values in and out of their colours, which decide nothing but the
// layout of M's colour values: exact equality, copies, setting from and writing to plain arrays
// (every double in layout order; a ray colour reads as the intensity of each channel), filling,
// and the X orientation of a polarized ray colour.
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "plugin/PluginExport.h"
#include "plugin/frame/Polarization.h"
#include "plugin/models/ModelsFwd.h"
#include "plugin/models/ValueRanges.h"

namespace Korvane {

template <class M>
class KOR_PLUGIN_API FixedColourModel : public ColorModel {
public:
    // The three value ranges.
    int Wavelengths(const BBox1<double>*& ranges) const override;

    // Exact comparison of every value (a ray colour's X orientation included).
    bool IsEqualSurfColor(const ISurfColor& a, const ISurfColor& b) const override;
    bool IsEqualScalarColor(const IScalarColor& a, const IScalarColor& b) const override;
    bool IsEqualRayColor(const IRayColor& a, const IRayColor& b) const override;
    bool IsEqualLgtColor(const ILgtColor& a, const ILgtColor& b) const override;
    // Every value (a ray colour's X orientation included).
    void CopyColor(const ISurfColor& from, ISurfColor& to) const override;
    void CopyColor(const IScalarColor& from, IScalarColor& to) const override;
    void CopyRangedColor(const IRayColor& from, IRayColor& to) const override;
    void CopyRangedColor(const ILgtColor& from, ILgtColor& to) const override;
    // Every value of the colour from `values`, in layout order.
    void SetSurfColor(ISurfColor& c, const double* values) const override;
    void SetScalarColor(IScalarColor& c, const double* values) const override;
    void SetFromFloats(ILgtColor& c, const float* values) const override;
    void SetLgtColor(ILgtColor& c, const double* values) const override;
    // The first NWaves values of the colour: copied from `values`, or, for a polarized model,
    // set to 0 (the RGB model's answer to a ranged set on Stokes data, kept as it is).
    void SetRangedColor(ILgtColor& c, const double* values) const override;
    // Every value of the colour into `out`, in layout order.
    void SurfToArray(const ISurfColor& c, double* out) const override;
    void ScalarToArray(const IScalarColor& c, double* out) const override;
    void LgtToArray(const ILgtColor& c, double* out) const override;
    // The intensity of each channel (I of a Stokes vector), one double per channel.
    void RayToArray(const IRayColor& c, double* out) const override;
    // Every channel gets intensity `value`; Q, U and V of a Stokes vector become 0. A ray colour
    // keeps its X orientation.
    void FillColor(ILgtColor& c, double value) const override;
    void FillColor(IRayColor& c, double value) const override;
    // False (and nothing written) for a colour without X orientation.
    bool GetXOrt(const IRayColor& c, TVect3<double>& xort) const override;
    void SetXOrt(IRayColor& c, const TVect3<double>& xort) const override;

protected:
    FixedColourModel() = default; // ranges (0, 1)
    FixedColourModel(const FixedColourModel& other) = default;

private:
    ValueRanges ranges_;
};

extern template class FixedColourModel<BWModel<Unpolarized>>;
extern template class FixedColourModel<BWModel<StokesPolarization>>;
extern template class FixedColourModel<RGBModel<Unpolarized>>;
extern template class FixedColourModel<RGBModel<StokesPolarization>>;

} // namespace Korvane
