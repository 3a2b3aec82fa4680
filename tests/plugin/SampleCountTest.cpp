// Spectral colours whose sample count is not their model's NWaves, through every conversion of
// every model: nothing is read or written outside an array (a colour of 400,000 samples on a grid
// of 33 once wrote past the BW model's scratch array). Where a conversion has a failure report of
// its own, it is made; otherwise the colour converts exactly as its first NWaves samples, with
// zeros past its end when it is shorter.
#include "HolderTestSupport.h"

#include "hostkit/base/User.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <string>
#include <vector>

namespace Korvane {
namespace {

using Testing::Registered;
using USpectral = SpectralModel<Unpolarized>;
using SSpectral = SpectralModel<StokesPolarization>;
using Values = std::vector<double>;

// Far more samples than any grid, and fewer than the default 33.
constexpr int kHuge = 400000;
constexpr int kShort = 5;

// Sample i of a pattern that varies along the grid and within a component, all positive.
double PatternValue(int i, int element) {
    return 0.3 + 0.02 * (i % 29) + 0.001 * element;
}

// A spectral colour of `count` samples holding the pattern; a light colour's band is the whole
// colour.
template <class V>
void MakeColour(V& c, int count) {
    ASSERT_EQ(c.Distr().SetLength(count), 0);
    constexpr int size = V::Component::kSize;
    for (int i = 0; i < count; ++i)
        for (int e = 0; e < size; ++e)
            c.Values()[i * size + e] = PatternValue(i, e);
}

// What the rule makes of a colour of `count` samples on a grid of n: its first n samples, zeros
// past its end.
template <class V>
void MakeCut(V& c, int count, int n) {
    MakeColour(c, n);
    constexpr int size = V::Component::kSize;
    for (int i = count; i < n; ++i)
        for (int e = 0; e < size; ++e)
            c.Values()[i * size + e] = 0.0;
}

// Converts `from`, a colour of `src`, into a zeroed fixed-size value V of `dst`: the status, then
// the value's doubles.
template <class V, class I>
Values Convert(const ColorModel& dst, const ColorModel& src, const I& from) {
    V to;
    for (int k = 0; k < V::kDoubles; ++k)
        to[k] = 0.0;
    Values out{static_cast<double>(dst.ConvertColor(&src, from, to))};
    for (int k = 0; k < V::kDoubles; ++k)
        out.push_back(to[k]);
    return out;
}

// The texts of the error messages reported since the log was last cleared.
std::vector<std::string> Messages() {
    std::vector<std::string> texts;
    for (const Report& r : ReportLog::Entries())
        texts.push_back(r.text);
    return texts;
}

class SampleCounts : public Registered {
protected:
    // Every fixed-size destination takes a light, surface and scalar colour of `count` samples
    // of the unpolarized spectral model as it takes the colour the rule makes of it.
    void ExpectFixedDestinationsTakeFirstSamples(int count) {
        const USpectral& src = *USpectral::GetModel();
        const int n = src.NWaves();
        LgtColor<USpectral> light, lightCut;
        SurfColor<USpectral> surf, surfCut;
        ScalarColor<USpectral> scalar, scalarCut;
        MakeColour(light, count);
        MakeColour(surf, count);
        MakeColour(scalar, count);
        MakeCut(lightCut, count, n);
        MakeCut(surfCut, count, n);
        MakeCut(scalarCut, count, n);
        ExpectSame<BWModel<Unpolarized>>(src, light, lightCut, surf, surfCut, scalar, scalarCut);
        ExpectSame<BWModel<StokesPolarization>>(src, light, lightCut, surf, surfCut, scalar,
                                                scalarCut);
        ExpectSame<RGBModel<Unpolarized>>(src, light, lightCut, surf, surfCut, scalar, scalarCut);
        ExpectSame<RGBModel<StokesPolarization>>(src, light, lightCut, surf, surfCut, scalar,
                                                 scalarCut);
        ExpectSame<XYZModel>(src, light, lightCut, surf, surfCut, scalar, scalarCut);
        ExpectSame<XYYModel>(src, light, lightCut, surf, surfCut, scalar, scalarCut);
    }

    template <class M, class L, class S, class C>
    void ExpectSame(const ColorModel& src, const L& light, const L& lightCut, const S& surf,
                    const S& surfCut, const C& scalar, const C& scalarCut) {
        using Held = std::conditional_t<std::is_same_v<M, XYZModel> || std::is_same_v<M, XYYModel>,
                                        RGBModel<Unpolarized>, M>;
        const ColorModel& dst = *M::GetModel();
        const Values fromLight = Convert<LgtColor<Held>>(dst, src, light);
        EXPECT_EQ(fromLight[0], 0.0) << dst.Name();
        EXPECT_EQ(fromLight, (Convert<LgtColor<Held>>(dst, src, lightCut))) << dst.Name();
        EXPECT_EQ(Convert<SurfColor<Held>>(dst, src, surf),
                  (Convert<SurfColor<Held>>(dst, src, surfCut)))
            << dst.Name();
        EXPECT_EQ(Convert<ScalarColor<Held>>(dst, src, scalar),
                  (Convert<ScalarColor<Held>>(dst, src, scalarCut)))
            << dst.Name();
    }
};

TEST_F(SampleCounts, AHugeColourConvertsAsItsFirstNWavesSamples) {
    ExpectFixedDestinationsTakeFirstSamples(kHuge);
}

TEST_F(SampleCounts, AShortColourConvertsAsIfPaddedWithZeros) {
    ExpectFixedDestinationsTakeFirstSamples(kShort);
}

// Ray colours of the BW, XYZ and xyY models carry the light's energy, which reads the grid's
// wavelengths only; the RGB model refuses another count with -1, without a report.
TEST_F(SampleCounts, RayColoursOfAnyCount) {
    const USpectral& src = *USpectral::GetModel();
    for (int count : {kHuge, kShort}) {
        LgtColor<USpectral> light, cut;
        MakeColour(light, count);
        MakeCut(cut, count, src.NWaves());
        RayColor<BWModel<Unpolarized>> bw, bwCut;
        ASSERT_EQ(BWModel<Unpolarized>::GetModel()->ConvertToRayColor(&src, light, bw), 0);
        ASSERT_EQ(BWModel<Unpolarized>::GetModel()->ConvertToRayColor(&src, cut, bwCut), 0);
        EXPECT_EQ(bw, bwCut) << count;
        RayColor<RGBModel<Unpolarized>> xyz, xyzCut;
        ASSERT_EQ(XYZModel::GetModel()->ConvertToRayColor(&src, light, xyz), 0);
        ASSERT_EQ(XYZModel::GetModel()->ConvertToRayColor(&src, cut, xyzCut), 0);
        EXPECT_EQ(xyz, xyzCut) << count;
        ASSERT_EQ(XYYModel::GetModel()->ConvertToRayColor(&src, light, xyz), 0);
        ASSERT_EQ(XYYModel::GetModel()->ConvertToRayColor(&src, cut, xyzCut), 0);
        EXPECT_EQ(xyz, xyzCut) << count;
        ReportLog::Clear();
        RayColor<RGBModel<Unpolarized>> rgb;
        EXPECT_EQ(RGBModel<Unpolarized>::GetModel()->ConvertToRayColor(&src, light, rgb), -1);
        EXPECT_EQ(ReportLog::Count(), 0u);
    }
}

// A polarized source: the BW model's mean over the grid reads the first NWaves samples; the RGB
// model's conversions fail with their own reports; the XYZ model takes scalar colours (which
// carry no polarization) by the rule.
TEST_F(SampleCounts, PolarizedSourcesOfAnyCount) {
    const SSpectral& src = *SSpectral::GetModel();
    const int n = src.NWaves();
    for (int count : {kHuge, kShort}) {
        LgtColor<SSpectral> light, lightCut;
        SurfColor<SSpectral> surf, surfCut;
        ScalarColor<SSpectral> scalar, scalarCut;
        MakeColour(light, count);
        MakeColour(surf, count);
        MakeColour(scalar, count);
        MakeCut(lightCut, count, n);
        MakeCut(surfCut, count, n);
        MakeCut(scalarCut, count, n);
        const ColorModel& bw = *BWModel<StokesPolarization>::GetModel();
        EXPECT_EQ(Convert<LgtColor<BWModel<StokesPolarization>>>(bw, src, light),
                  Convert<LgtColor<BWModel<StokesPolarization>>>(bw, src, lightCut));
        EXPECT_EQ(Convert<SurfColor<BWModel<StokesPolarization>>>(bw, src, surf),
                  Convert<SurfColor<BWModel<StokesPolarization>>>(bw, src, surfCut));
        const ColorModel& xyz = *XYZModel::GetModel();
        EXPECT_EQ(Convert<ScalarColor<RGBModel<Unpolarized>>>(xyz, src, scalar),
                  Convert<ScalarColor<RGBModel<Unpolarized>>>(xyz, src, scalarCut));

        ReportLog::Clear();
        const ColorModel& rgb = *RGBModel<StokesPolarization>::GetModel();
        EXPECT_EQ(Convert<LgtColor<RGBModel<StokesPolarization>>>(rgb, src, light)[0],
                  kErrorMessageCode);
        EXPECT_EQ(Convert<SurfColor<RGBModel<StokesPolarization>>>(rgb, src, surf)[0],
                  kErrorMessageCode);
        EXPECT_EQ(Convert<ScalarColor<RGBModel<StokesPolarization>>>(rgb, src, scalar)[0],
                  kErrorMessageCode);
        EXPECT_EQ(Messages(), (std::vector<std::string>{"RGB light color conversion failure",
                                                        "RGB surface color conversion failure",
                                                        "RGB scalar color conversion failure"}));
    }
}

// Into a spectral model the resampling refuses a count other than the source grid's with its
// report; an unpolarized scalar colour, whose path has no report, resamples its first samples.
TEST_F(SampleCounts, SpectralTargetsReportOrTakeTheFirstSamples) {
    const USpectral& src = *USpectral::GetModel();
    const USpectral& dst = *USpectral::GetModel_380_780();
    const int n = dst.NWaves();
    for (int count : {kHuge, kShort}) {
        LgtColor<USpectral> light, lightOut;
        SurfColor<USpectral> surf, surfOut;
        ScalarColor<USpectral> scalar, scalarCut, scalarOut, scalarCutOut;
        MakeColour(light, count);
        MakeColour(surf, count);
        MakeColour(scalar, count);
        MakeCut(scalarCut, count, src.NWaves());
        ASSERT_EQ(lightOut.Distr().SetLength(n), 0);
        ASSERT_EQ(surfOut.Distr().SetLength(n), 0);
        ASSERT_EQ(scalarOut.Distr().SetLength(n), 0);
        ASSERT_EQ(scalarCutOut.Distr().SetLength(n), 0);
        ReportLog::Clear();
        EXPECT_EQ(dst.ConvertColor(&src, light, lightOut), kErrorMessageCode);
        EXPECT_EQ(dst.ConvertColor(&src, surf, surfOut), kErrorMessageCode);
        EXPECT_EQ(Messages(), (std::vector<std::string>{"SPEC light color conversion failure",
                                                        "SPEC surface color conversion failure"}));
        ASSERT_EQ(dst.ConvertColor(&src, scalar, scalarOut), 0);
        ASSERT_EQ(dst.ConvertColor(&src, scalarCut, scalarCutOut), 0);
        EXPECT_EQ(scalarOut, scalarCutOut) << count;
    }
}

// The spectral model's own display, energy and density paths on colours of another count: the
// converter's sums answer as they state (RGB (0, 0, 0), XYZ untouched); the others read the
// first NWaves samples.
TEST_F(SampleCounts, DisplayEnergyAndDensityPaths) {
    const USpectral& m = *USpectral::GetModel();
    const int n = m.NWaves();
    for (int count : {kHuge, kShort}) {
        LgtColor<USpectral> light, cut;
        SurfColor<USpectral> surf, surfCut;
        ScalarColor<USpectral> scalar, scalarCut;
        MakeColour(light, count);
        MakeCut(cut, count, n);
        MakeColour(surf, count);
        MakeCut(surfCut, count, n);
        MakeColour(scalar, count);
        MakeCut(scalarCut, count, n);

        TVect3<double> rgb(9.0, 9.0, 9.0);
        EXPECT_EQ(m.LgtColorToRGB(light, rgb, false, false), 0);
        EXPECT_EQ(rgb, TVect3<double>(0.0, 0.0, 0.0));
        TVect3<double> xyz(9.0, 9.0, 9.0);
        EXPECT_EQ(m.LgtColorToXYZ(light, xyz), 0);
        EXPECT_EQ(xyz, TVect3<double>(9.0, 9.0, 9.0));

        TVect3<double> a, b;
        EXPECT_EQ(m.LgtColorToDisplayRGB(light, a), m.LgtColorToDisplayRGB(cut, b));
        EXPECT_EQ(a, b);
        m.SurfColorToRGB(surf, a);
        m.SurfColorToRGB(surfCut, b);
        EXPECT_EQ(a, b);
        m.ScalarColorToRGB(scalar, a);
        m.ScalarColorToRGB(scalarCut, b);
        EXPECT_EQ(a, b);
        EXPECT_EQ(m.LgtEnergy(light), m.LgtEnergy(cut));
        EXPECT_EQ(m.LgtLuminance(light), m.LgtLuminance(cut));

        // Density to energy scales the first NWaves samples and leaves the others.
        m.DensityToEnergy(light);
        m.DensityToEnergy(cut);
        const int common = count < n ? count : n;
        for (int i = 0; i < common; ++i)
            ASSERT_EQ(light.Values()[i], cut.Values()[i]) << i;
        for (int i = n; i < count; ++i)
            ASSERT_EQ(light.Values()[i], PatternValue(i, 0)) << i;
    }
}

} // namespace
} // namespace Korvane
