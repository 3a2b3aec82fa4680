// The BW model's operations: the grey of each source branch in its own form of the mean,
// polarization carried only between polarized models, the mean over wavelengths of polarized
// spectra, the failure reports, arithmetic on every Stokes element against reads of the intensity
// alone, and the colorimetry of a grey light.
#include "ModelTestSupport.h"

#include "hostkit/cie/CIEConvAll.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/support/TestModel.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Korvane;

namespace {

using BWU = BWModel<Unpolarized>;
using BWS = BWModel<StokesPolarization>;
using RGBU = RGBModel<Unpolarized>;
using RGBS = RGBModel<StokesPolarization>;
using SpU = SpectralModel<Unpolarized>;
using SpS = SpectralModel<StokesPolarization>;

// The RGB mean of (0.3, 0.6, 0.9): the sum 1.7999999999999998 times 0.3333333333333333, one ulp
// below the 0.6 that a division by 3.0 gives.
constexpr double kRGBMean = 0.5999999999999999;

struct Models {
    Testing::ScopedModelTypes types;
    Testing::ScopedDefaultGrid grid;
    BWU bw;
    BWS bwStk;
    RGBU rgb;
    RGBS rgbStk;
    XYZModel xyz;
    XYYModel xyy;
    SpU sp;
    // 400, 410, 430, 460 nm: weights 10, 15, 25, 30 (end intervals taken whole), divisor 80.
    Testing::GridModel<StokesPolarization> spStk{Testing::Grid({400, 410, 430, 460})};
    Testing::GridModel<StokesPolarization> spOne{Testing::Grid({555})};
};

// The grey of M (X, Y, Z) by division, from the converter's own matrix.
double GreyOfXYZ(const TVect3<double>& xyz) {
    const TVect3<double> rgb = ColorModel::GetCIEConv()->XYZ2RGB() * xyz;
    return (rgb.x + rgb.y + rgb.z) / 3.0;
}

template <class V>
V Make(std::initializer_list<double> values) {
    V v{};
    int k = 0;
    for (double x : values)
        v[k++] = x;
    return v;
}

LgtColor<BWS> Stokes(double i, double q, double u, double v) {
    return Make<LgtColor<BWS>>({i, q, u, v});
}

// `from` of model `src` converted by `to`, which must succeed.
template <class V, class F>
V Convert(const ColorModel& to, const ColorModel& src, const F& from) {
    V out{};
    EXPECT_EQ(to.ConvertColor(&src, from, out), 0);
    return out;
}

} // namespace

TEST(BWModelConversion, FixedSourcesGiveTheGreyOfTheirBranch) {
    Models m;
    const auto rgb = Make<LgtColor<RGBU>>({0.3, 0.6, 0.9});
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.rgb, rgb)[0], kRGBMean);
    LgtColor<RGBS> rgbStk{};
    for (int c = 0; c < 3; ++c)
        rgbStk.Channel(c) = {{rgb[c], 0.1, -0.2, 0.3}};
    EXPECT_EQ(Convert<LgtColor<BWS>>(m.bwStk, m.rgbStk, rgbStk), Stokes(kRGBMean, 0, 0, 0));

    const auto xyz = Make<LgtColor<RGBU>>({0.2, 0.3, 0.4});
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.xyz, xyz)[0], GreyOfXYZ({0.2, 0.3, 0.4}));
    // y = 0 reads 1/y as 1: (0.3, 0, 0.5) is XYZ (0.15, 0.5, -0.15), Z clamped to 0.
    const auto xyY = Make<LgtColor<RGBU>>({0.3, 0.0, 0.5});
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.xyy, xyY)[0], GreyOfXYZ({0.15, 0.5, 0.0}));
    // A scalar's one value stands for every coordinate: xyY 0.25 is XYZ (0.25, 0.25, 0.5).
    const auto scalar = Make<ScalarColor<RGBU>>({0.25, 9, 9});
    EXPECT_EQ(Convert<ScalarColor<BWU>>(m.bw, m.xyy, scalar)[0], GreyOfXYZ({0.25, 0.25, 0.5}));

    // A negative grey is clamped only as an unpolarized light.
    const auto dark = Make<LgtColor<RGBU>>({-0.3, -0.6, -0.9});
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.rgb, dark)[0], 0.0);
    EXPECT_EQ(Convert<LgtColor<BWS>>(m.bwStk, m.rgb, dark)[0], -kRGBMean);
    const auto darkSurf = Make<SurfColor<RGBU>>({-0.3, -0.6, -0.9});
    EXPECT_EQ(Convert<SurfColor<BWU>>(m.bw, m.rgb, darkSurf)[0], -kRGBMean);
}

TEST(BWModelConversion, PolarizationPassesOnlyBetweenPolarizedModels) {
    Models m;
    const auto stokes = Stokes(0.8, 0.1, -0.2, 0.3);
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.bwStk, stokes)[0], 0.8);
    EXPECT_EQ(Convert<LgtColor<BWS>>(m.bwStk, m.bwStk, stokes), stokes);
    EXPECT_EQ(Convert<LgtColor<BWS>>(m.bwStk, m.bw, Make<LgtColor<BWU>>({0.8})),
              Stokes(0.8, 0, 0, 0));

    // Three Mueller matrices average element by element; an unpolarized surface is a depolarizer.
    SurfColor<RGBS> mueller{};
    for (int k = 0; k < 48; ++k)
        mueller[k] = 0.01 * k - 0.1;
    const auto surf = Convert<SurfColor<BWS>>(m.bwStk, m.rgbStk, mueller);
    for (int e = 0; e < 16; ++e)
        EXPECT_EQ(surf[e], (mueller[e] + mueller[16 + e] + mueller[32 + e]) * 0.3333333333333333);
    const auto plain = Make<SurfColor<RGBU>>({0.3, 0.6, 0.9});
    EXPECT_EQ(Convert<SurfColor<BWS>>(m.bwStk, m.rgb, plain), Make<SurfColor<BWS>>({kRGBMean}));
}

TEST(BWModelConversion, SpectraGiveTheirGrey) {
    Models m;
    // Unpolarized: a grey light reconstructed on the grid converts back to its grey.
    TArray<double> s(10, 1);
    ASSERT_EQ(ColorModel::GetCIEConvAll()->RGB2Spectrum({0.4, 0.4, 0.4}, m.sp.GetWaveLengths(), s),
              0);
    LgtColor<SpU> grey;
    ASSERT_EQ(grey.Distr().SetLength(s.Count()), 0);
    m.sp.SetLgtColor(grey, s.Data());
    EXPECT_NEAR(Convert<LgtColor<BWU>>(m.bw, m.sp, grey)[0], 0.4, 0.4 * Tol::kSpectralRoundTrip);

    // Polarized: I = 1, 2, 3, 4 gives (10 + 30 + 75 + 120) / 80 = 2.9375, exactly, and so on for
    // every Stokes element; outside its band a light reads zero.
    LgtColor<SpS> light;
    ASSERT_EQ(light.Distr().SetLength(4), 0);
    for (int i = 0; i < 4; ++i)
        light.Distr()[i] = {{i + 1.0, 2.0 * (i + 1), -(i + 1.0), 0.5 * (i + 1)}};
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.spStk, light)[0], 2.9375);
    EXPECT_EQ(Convert<LgtColor<BWS>>(m.bwStk, m.spStk, light),
              Stokes(2.9375, 5.875, -2.9375, 1.46875));
    light.Distr().SetBand(1, 2);
    EXPECT_EQ(Convert<LgtColor<BWU>>(m.bw, m.spStk, light)[0], (30.0 + 75.0) / 80.0);

    // One wavelength gives its value; a colour without storage leaves the result as it was.
    ScalarColor<SpS> single;
    ASSERT_EQ(single.Distr().SetLength(1), 0);
    single.Distr()[0][0] = 0.7;
    EXPECT_EQ(Convert<ScalarColor<BWS>>(m.bwStk, m.spOne, single)[0], 0.7);
    SurfColor<BWS> kept = Make<SurfColor<BWS>>({0.5});
    EXPECT_EQ(m.bwStk.ConvertColor(&m.spStk, SurfColor<SpS>(), kept), 0);
    EXPECT_EQ(kept, Make<SurfColor<BWS>>({0.5}));
}

TEST(BWModelConversion, FailuresReportTheirTextAndCode) {
    Models m;
    Testing::TestModel unknown(nullptr);
    LgtColor<BWU> light{};
    SurfColor<BWU> surf{};
    ScalarColor<BWU> scalar{};
    EXPECT_EQ(m.bw.ConvertColor(&unknown, light, light), kInternalErrorCode);
    EXPECT_EQ(ReportLog::Entries().back().text, "Not supported light color conversion");
    EXPECT_EQ(m.bwStk.ConvertColor(&unknown, surf, surf), kInternalErrorCode);
    EXPECT_EQ(ReportLog::Entries().back().text, "Not supported surface color conversion");
    EXPECT_EQ(m.bw.ConvertColor(&unknown, scalar, scalar), kInternalErrorCode);
    EXPECT_EQ(ReportLog::Entries().back().text, "Not supported scalar color conversion");

    // Without room for the scratch spectrum light and surfaces report it; scalars fail silently.
    ReportLog::Clear();
    FaultInjection::ScopedFailure noMemory(FaultInjection::ArrayStorage, 1, true);
    EXPECT_EQ(m.bw.ConvertColor(&m.sp, LgtColor<SpU>(), light), kNoMemoryCode);
    EXPECT_EQ(m.bwStk.ConvertColor(&m.sp, SurfColor<SpU>(), surf), kNoMemoryCode);
    EXPECT_EQ(ReportLog::Count(), 2u);
    EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::NoMemory);
    EXPECT_EQ(m.bw.ConvertColor(&m.sp, ScalarColor<SpU>(), scalar), -1);
    EXPECT_EQ(ReportLog::Count(), 2u);
}

TEST(BWModelConversion, RaysGetTheGreyAndKeepTheirOrientation) {
    Models m;
    RayColor<BWS> ray;
    ray.XOrt() = {0.0, 1.0, 0.0};
    m.bwStk.RGBConvertToRayColor({0.3, 0.6, 0.9}, ray);
    EXPECT_EQ(ray.Light(), Stokes(kRGBMean, 0, 0, 0));
    ray.Light()[0] = 0.0; // any source but a spectral one converts into the ray's light part
    ASSERT_EQ(m.bwStk.ConvertToRayColor(&m.rgb, Make<LgtColor<RGBU>>({0.3, 0.6, 0.9}), ray), 0);
    EXPECT_EQ(ray.Light()[0], kRGBMean);
    EXPECT_EQ(ray.XOrt(), TVect3<double>(0.0, 1.0, 0.0));
    LgtColor<SpU> light; // a spectral source hands over its energy: 0.5 over 390..710 nm
    ASSERT_EQ(light.Distr().SetLength(m.sp.NWaves()), 0);
    m.sp.FillColor(light, 0.5);
    ASSERT_EQ(m.bwStk.ConvertToRayColor(&m.sp, light, ray), 0);
    EXPECT_EQ(ray.Light(), Stokes(160.0, 0, 0, 0));
    MArray<double> flat(10);
    ASSERT_EQ(flat.Alloc(m.sp.NWaves()), 0);
    flat.Fill(0.7); // a flat spectrum keeps its value under the ybar-weighted mean
    ASSERT_EQ(m.bwStk.SpectralConvertToRayColor(&m.sp, flat, ray), 0);
    EXPECT_NEAR(ray.Light()[0], 0.7, 0.7 * Tol::kFlatSpectrumMean);
}

TEST(BWModelConversion, RayEnergyIsMeasuredOnThe380To780Model) {
    Models m;
    // A polarized grey fills every wavelength with its I: 0.5 over 400 nm.
    EXPECT_EQ(m.bwStk.RayEnergy(Stokes(0.5, 0.1, 0.0, 0.0)), 200.0);
    // An unpolarized grey becomes the reconstruction of (v, v, v), its area by the trapezoid rule.
    const SpU* model = SpU::GetModel_380_780();
    ASSERT_NE(model, nullptr);
    const MArray<double>& waves = model->GetWaveLengths();
    TArray<double> s(10, 1);
    ASSERT_EQ(ColorModel::GetCIEConvAll()->RGB2Spectrum({0.5, 0.5, 0.5}, waves, s), 0);
    double area = 0.0;
    for (int i = 0; i + 1 < waves.Count(); ++i)
        area += (s[i] + s[i + 1]) * (waves[i + 1] - waves[i]) / 2.0;
    const auto grey = Make<LgtColor<BWU>>({0.5});
    EXPECT_NEAR(m.bw.RayEnergy(grey), area, area * Tol::kSpectralRoundTrip);
    FaultInjection::ScopedFailure noHolder(FaultInjection::PlugAlloc, 1);
    EXPECT_EQ(m.bw.RayEnergy(grey), 0.0);
    EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::NoMemory);
}

TEST(BWModelArithmetic, LightArithmeticActsOnEveryStokesElement) {
    Models m;
    LgtColor<BWS> c = Stokes(2.0, 1.0, -0.5, 0.25);
    m.bwStk.AddScaledLgt(Stokes(1.0, 2.0, 4.0, 8.0), 0.5, c);
    const double a[] = {3.0, 100.0}, b[] = {4.0}, zero[] = {0.0}, negative[] = {-2.0};
    m.bwStk.MulLgtColorByRatio(c, a, zero);     // b not above 0: unchanged
    m.bwStk.MulLgtColorByRatio(c, a, negative); // the same below 0
    m.bwStk.MulLgtColorByRatio(c, a, b);        // one channel: the first ratio
    EXPECT_EQ(c, Stokes(1.875, 1.5, 1.125, 3.1875));
    RayColor<BWS> ray;
    ray.Light() = Stokes(4.0, 2.0, -1.0, 0.0);
    m.bwStk.NormalizeLgtColor(ray);
    EXPECT_EQ(ray.Light(), Stokes(1.0, 0.5, -0.25, 0.0));
    double sums[2] = {1.0, 1.0};
    m.bwStk.AddRayToArray(ray, sums); // the intensity alone
    EXPECT_EQ(sums[1], 1.0);
    c = Stokes(0.0, 0.5, 0.5, 0.5);
    m.bwStk.NormalizeLgtColor(c);
    EXPECT_EQ(c, Stokes(1.0, 0.0, 0.0, 0.0));
}

TEST(BWModelArithmetic, ClampsRepairTheIntensityAlone) {
    Models m;
    for (double v : {-0.5, std::numeric_limits<double>::quiet_NaN()}) {
        auto g = Make<LgtColor<BWU>>({v});
        EXPECT_FALSE(m.bw.IsValidLgtColor(g));
        m.bw.ClampLgtColor(g);
        EXPECT_EQ(g[0], 0.0);
    }
    LgtColor<BWS> c = Stokes(-1.0, 0.5, 0.0, 0.0); // Stokes light is never clamped
    m.bwStk.ClampLgtColor(c);
    EXPECT_EQ(c, Stokes(-1.0, 0.5, 0.0, 0.0));
    SurfColor<BWS> mueller = Make<SurfColor<BWS>>({1.5, -0.5});
    m.bwStk.ClampSurfColor(mueller);
    EXPECT_EQ(mueller, Make<SurfColor<BWS>>({1.0, -0.5})); // only the reflectance is in [0, 1]
}

TEST(BWModelArithmetic, GreyLightColorimetry) {
    Models m;
    const auto grey = Make<LgtColor<BWU>>({0.6});
    // The luminance coefficients sum to the Y of white; the power of a grey is that of (v, v, v).
    EXPECT_NEAR(m.bwStk.LgtLuminance(Stokes(0.6, 0.3, 0, 0)), 0.6, 0.6 * Tol::kLuminanceRowSum);
    const CIEConvAll* conv = ColorModel::GetCIEConvAll();
    EXPECT_EQ(m.bw.SumLgtValues(grey), conv->RGB2Watts({0.6, 0.6, 0.6}));
    m.bw.SetCIEConvAll(nullptr);
    EXPECT_EQ(m.bw.LgtLuminance(grey), 0.0);
    EXPECT_EQ(m.bw.SumLgtValues(grey), 0.0);
    m.bw.SetCIEConvAll(conv);

    // Normalized by the sum of the thirds, 0.8999999999999999: one ulp above 1/3, where 0.3 / 0.9
    // would give one ulp below.
    TVect3<double> rgb(9.0, 9.0, 9.0);
    ASSERT_EQ(m.bw.LgtColorToRGB(Make<LgtColor<BWU>>({0.9}), rgb, true, false), 0);
    EXPECT_EQ(rgb, TVect3<double>(0.33333333333333337, 0.33333333333333337, 0.33333333333333337));

    // A grey light has the chromaticity of the converter's white and a third of its luminance.
    double luminance = 0.0;
    TVect2<double> xy(0.0, 0.0);
    m.bwStk.GetChromaticity(Stokes(3.0, 1.0, 0.0, 0.0), luminance, xy);
    EXPECT_NEAR(xy.x, 0.3127, Tol::kGreyChromaticity); // sRGB white, IEC 61966-2-1
    EXPECT_NEAR(xy.y, 0.3290, Tol::kGreyChromaticity);
    EXPECT_NEAR(luminance, 683.0, 683.0 * Tol::kLuminanceRowSum);
}
