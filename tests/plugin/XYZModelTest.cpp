// XYZ model: colours of every model read as XYZ, the failures that the XYZ and xyY models
// report, rays, and the arithmetic, clamping and display of XYZ colours.
#include "CIEModelTestSupport.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "tests/support/TestModel.h"
#include "tests/support/Tolerances.h"

#include <cmath>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using XYZLight = LgtColor<XYZModel>;
using XYZSurface = SurfColor<XYZModel>;
using XYZScalar = ScalarColor<XYZModel>;

// Red of linear sRGB as XYZ: the first column of the RGB-to-XYZ matrix derived from the sRGB
// primaries and white (shared/data/srgb_constants.md, section 3).
const TVect3<double> kRedXYZ(0.4123907992659595, 0.21263900587151036, 0.01933081871559185);

TVect3<double> Scaled(const TVect3<double>& v, double f) {
    return {f * v.x, f * v.y, f * v.z};
}

std::vector<double> Ramp(int n, double start, double step) {
    std::vector<double> v(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        v[static_cast<std::size_t>(i)] = start + step * i;
    return v;
}

TArray<double> AsArray(const std::vector<double>& v) {
    TArray<double> a(10);
    EXPECT_EQ(a.Alloc(static_cast<int>(v.size())), 0);
    for (int i = 0; i < a.Count(); ++i)
        a[i] = v[static_cast<std::size_t>(i)];
    return a;
}

Report LastReport() {
    return ReportLog::Entries().back();
}

// The host runs without a full converter until the end of the scope.
struct NoFullConverter {
    explicit NoFullConverter(ColorModel& m) : model(m) { model.SetCIEConvAll(nullptr); }
    ~NoFullConverter() { model.SetCIEConvAll(CIEConvAll::Default()); }
    ColorModel& model;
};

} // namespace

TEST(XYZModelConversion, GreyAndRGBSourcesGoThroughTheRGBToXYZMatrix) {
    CIEModels m;
    XYZLight out;

    // A grey is that fraction of the white, in either polarization: Q, U, V play no part.
    LgtColor<BWModel<Unpolarized>> grey;
    grey[0] = 0.5;
    ASSERT_EQ(m.xyz.ConvertColor(&m.bwU, grey, out), 0);
    ExpectNear(Of(out), Scaled(kSRGBWhite, 0.5), Tol::kDerivedMatrix);
    const TVect3<double> fromGrey = Of(out);
    LgtColor<BWModel<StokesPolarization>> greyStokes;
    for (int k = 0; k < 4; ++k)
        greyStokes[k] = k == 0 ? 0.5 : 0.25;
    ASSERT_EQ(m.xyz.ConvertColor(&m.bwS, greyStokes, out), 0);
    EXPECT_EQ(Of(out), fromGrey);

    // Red reads as the red column; a Stokes surface gives each channel's Mueller (0,0) only.
    SurfColor<RGBModel<StokesPolarization>> redMueller;
    for (int k = 0; k < 48; ++k)
        redMueller[k] = 0.25;
    redMueller.Channel(0)[0] = 1.0;
    redMueller.Channel(1)[0] = 0.0;
    redMueller.Channel(2)[0] = 0.0;
    XYZSurface surface;
    ASSERT_EQ(m.xyz.ConvertColor(&m.rgbS, redMueller, surface), 0);
    ExpectNear(Of(surface), kRedXYZ, Tol::kDerivedMatrix);

    const auto red = Triple<ScalarColor<RGBModel<Unpolarized>>>(1.0, 0.0, 0.0);
    XYZScalar scalar;
    ASSERT_EQ(m.xyz.ConvertColor(&m.rgbU, red, scalar), 0);
    ExpectNear(Of(scalar), kRedXYZ, Tol::kDerivedMatrix);
}

TEST(XYZModelConversion, CIESourcesAreCopiedOrTurnedWithoutClampBeforeTheLightClamp) {
    CIEModels m;
    // xyY (0.3, 0.4, 0.5): X = 0.3 * 0.5 / 0.4 = 0.375, Z = 0.5 / 0.4 - 0.375 - 0.5 = 0.375.
    XYZSurface surface;
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyy, Triple<XYZSurface>(0.3, 0.4, 0.5), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.375, 0.5, 0.375));

    // y = 0 counts as 1/y = 1: (0.25, 0, 0.5) is (0.125, 0.5, -0.125). A surface keeps the
    // negative Z, a light loses it to the clamp that ends every light conversion.
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyy, Triple<XYZSurface>(0.25, 0.0, 0.5), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.125, 0.5, -0.125));
    XYZLight light;
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyy, Triple<XYZLight>(0.25, 0.0, 0.5), light), 0);
    EXPECT_EQ(Of(light), TVect3<double>(0.125, 0.5, 0.0));

    XYZScalar scalar;
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyz, Triple<XYZScalar>(-1.0, 2.0, 3.0), scalar), 0);
    EXPECT_EQ(Of(scalar), TVect3<double>(-1.0, 2.0, 3.0));
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyz, Triple<XYZLight>(-1.0, 2.0, 3.0), light), 0);
    EXPECT_EQ(Of(light), TVect3<double>(0.0, 2.0, 3.0));
}

TEST(XYZModelConversion, SpectraIntegrateOverTheSourceGrid) {
    CIEModels m;
    const int n = m.spU.NWaves();
    const MArray<double>& waves = m.spU.GetWaveLengths();
    const std::vector<double> ramp = Ramp(n, 0.1, 0.025); // 0.1 .. 0.9, also a reflectance
    TVect3<double> lightXYZ(0.0, 0.0, 0.0), surfaceXYZ(0.0, 0.0, 0.0);
    ASSERT_EQ(CIEConv::spectrum2xyz(waves, AsArray(ramp), lightXYZ), 0);
    ASSERT_EQ(CIEConv::spectrum2xyzAttr(waves, AsArray(ramp), surfaceXYZ), 0);

    XYZLight light;
    ASSERT_EQ(m.xyz.ConvertColor(
                  &m.spU, Spectral<LgtColor<SpectralModel<Unpolarized>>>(m.spU, ramp), light),
              0);
    EXPECT_EQ(Of(light), lightXYZ);
    XYZSurface surface;
    ASSERT_EQ(m.xyz.ConvertColor(
                  &m.spU, Spectral<SurfColor<SpectralModel<Unpolarized>>>(m.spU, ramp), surface),
              0);
    EXPECT_EQ(Of(surface), surfaceXYZ);
    // Scalar colours carry no polarization: a polarized model's scalar spectrum converts too.
    XYZScalar scalar;
    ASSERT_EQ(
        m.xyz.ConvertColor(
            &m.spS, Spectral<ScalarColor<SpectralModel<StokesPolarization>>>(m.spS, ramp), scalar),
        0);
    EXPECT_EQ(Of(scalar), lightXYZ);

    // A spectrum straight to a ray colour: the light integral, then the light clamp.
    const std::vector<double> negative = Ramp(n, -1.0, 0.0);
    MArray<double> spectrum(10);
    ASSERT_EQ(spectrum.Alloc(n), 0);
    for (int i = 0; i < n; ++i)
        spectrum[i] = negative[static_cast<std::size_t>(i)];
    RayColor<XYZModel> ray;
    ASSERT_EQ(m.xyz.SpectralConvertToRayColor(&m.spU, spectrum, ray), 0);
    EXPECT_EQ(Of(ray.Light()), TVect3<double>(0.0, 0.0, 0.0));
}

// Both CIE models, each with its own texts for what only it refuses.
TEST(CIEModelConversion, FailuresReportTheirCodeAndLeaveTheColour) {
    CIEModels m;
    PlugType otherType("OtherModel", TColorModel, false, nullptr);
    const TestModel other(&otherType);
    const int n = m.spU.NWaves();
    const auto polarized =
        Spectral<LgtColor<SpectralModel<StokesPolarization>>>(m.spS, Ramp(n, 1.0, 0.0));
    const auto unpolarized =
        Spectral<LgtColor<SpectralModel<Unpolarized>>>(m.spU, Ramp(n, 1.0, 0.0));
    const XYZLight keep = Triple<XYZLight>(7.0, 8.0, 9.0);

    struct Case {
        const ColorModel& model;
        const char* light;
        const char* surface;
        const char* ray;
    };
    for (const Case& c : {Case{m.xyz, "Not supported XYZ light color conversion",
                               "Not supported XYZ surface color conversion",
                               "Not supported light to XYZ ray color conversion"},
                          Case{m.xyy, "Not supported XYY light color conversion",
                               "Not supported XYY surface color conversion",
                               "Not supported light to XYY ray color conversion"}}) {
        SCOPED_TRACE(c.light);
        XYZLight light = keep;
        XYZSurface surface = Triple<XYZSurface>(7.0, 8.0, 9.0);
        XYZScalar scalar = Triple<XYZScalar>(7.0, 8.0, 9.0);
        EXPECT_EQ(c.model.ConvertColor(&other, keep, light), kInternalErrorCode);
        EXPECT_EQ(LastReport().text, "Not supported light color conversion");
        EXPECT_EQ(c.model.ConvertColor(&other, surface, surface), kInternalErrorCode);
        EXPECT_EQ(LastReport().text, "Not supported surface color conversion");
        EXPECT_EQ(c.model.ConvertColor(nullptr, scalar, scalar), kInternalErrorCode);
        EXPECT_EQ(LastReport().text, "Not supported scalar color conversion");

        EXPECT_EQ(c.model.ConvertColor(&m.spS, polarized, light), kErrorMessageCode);
        EXPECT_EQ(LastReport().text, c.light);
        const auto mueller =
            Spectral<SurfColor<SpectralModel<StokesPolarization>>>(m.spS, Ramp(n, 0.5, 0.0));
        EXPECT_EQ(c.model.ConvertColor(&m.spS, mueller, surface), kErrorMessageCode);
        EXPECT_EQ(LastReport().text, c.surface);
        RayColor<XYZModel> ray;
        ray.Light() = keep;
        EXPECT_EQ(c.model.ConvertToRayColor(&m.spS, polarized, ray), kErrorMessageCode);
        EXPECT_EQ(LastReport().text, c.ray);

        // No memory for the scratch spectrum, in a conversion and in a ray.
        {
            FaultInjection::ScopedFailure noArrays(FaultInjection::ArrayStorage, 1, true);
            EXPECT_EQ(c.model.ConvertColor(&m.spU, unpolarized, light), kNoMemoryCode);
            EXPECT_EQ(LastReport().kind, ReportKind::NoMemory);
            EXPECT_EQ(c.model.ConvertToRayColor(&m.spU, unpolarized, ray), kNoMemoryCode);
        }
        EXPECT_EQ(light, keep);
        EXPECT_EQ(ray.Light(), keep);
        EXPECT_EQ(Of(surface), TVect3<double>(7.0, 8.0, 9.0));
        EXPECT_EQ(Of(scalar), TVect3<double>(7.0, 8.0, 9.0));
    }
}

TEST(XYZModelRay, RaysOfOtherModelsAreTheLightConversion) {
    CIEModels m;
    RayColor<XYZModel> ray;
    const auto rgb = Triple<LgtColor<RGBModel<Unpolarized>>>(-1.0, 0.0, 0.0);
    ASSERT_EQ(m.xyz.ConvertToRayColor(&m.rgbU, rgb, ray), 0);
    EXPECT_EQ(Of(ray.Light()), TVect3<double>(0.0, 0.0, 0.0)); // clamped like a light

    // A triple given as RGB: N applied, negatives kept.
    m.xyz.RGBConvertToRayColor(TVect3<double>(-1.0, 0.0, 0.0), ray);
    ExpectNear(Of(ray.Light()), Scaled(kRedXYZ, -1.0), Tol::kDerivedMatrix);
    XYZSurface surface;
    m.xyz.RGBConvertToSurfaceColor(TVect3<double>(1.0, 1.0, 1.0), surface);
    ExpectNear(Of(surface), kSRGBWhite, Tol::kDerivedMatrix);
}

TEST(XYZModelArithmetic, ValuesAddAndScaleOneByOne) {
    CIEModels m;
    const XYZModel& xyz = m.xyz;
    XYZLight a = Triple<XYZLight>(1.0, 2.0, 4.0);
    xyz.AddLgtColor(Triple<XYZLight>(0.5, 0.25, 0.125), a);
    EXPECT_EQ(Of(a), TVect3<double>(1.5, 2.25, 4.125));
    RayColor<XYZModel> ray;
    ray.Light() = Triple<XYZLight>(1.0, 1.0, 1.0);
    xyz.AddScaledLgt3(ray, -2.0, a);
    EXPECT_EQ(Of(a), TVect3<double>(-0.5, 0.25, 2.125));
    double sum[3] = {1.0, 1.0, 1.0};
    xyz.AddRayToArray(ray, sum);
    xyz.AddLgtToArray(a, sum);
    EXPECT_EQ(TVect3<double>(sum[0], sum[1], sum[2]), TVect3<double>(1.5, 2.25, 4.125));
    const double num[3] = {1.0, 3.0, 3.0}, den[3] = {2.0, 0.0, -1.0};
    xyz.MulLgtColorByRatio(a, num, den); // only where the denominator is positive
    EXPECT_EQ(Of(a), TVect3<double>(-0.25, 0.25, 2.125));

    // Normalizing makes the values sum to 1; black becomes equal thirds.
    XYZLight black = Triple<XYZLight>(0.0, 0.0, 0.0);
    xyz.NormalizeLgtColor(black);
    EXPECT_EQ(Of(black), TVect3<double>(1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0));
    ray.Light() = Triple<XYZLight>(1.0, 2.0, 5.0);
    xyz.NormalizeLgtColor(ray);
    EXPECT_EQ(Of(ray.Light()), TVect3<double>(0.125, 0.25, 0.625));
}

TEST(XYZModelArithmetic, EnergyLuminanceAndPowerOfTheWhite) {
    CIEModels m;
    const XYZModel& xyz = m.xyz;
    const XYZLight white = Triple<XYZLight>(kSRGBWhite.x, kSRGBWhite.y, kSRGBWhite.z);
    EXPECT_NEAR(xyz.RayEnergy(white), 3.0, Tol::kMatrixIdentity); // M white = (1, 1, 1)
    RayColor<XYZModel> ray;
    ray.Light() = white;
    EXPECT_EQ(xyz.RayEnergy(ray), xyz.RayEnergy(white));
    EXPECT_EQ(xyz.LgtLuminance(white), 1.0);
    EXPECT_EQ(xyz.SumLgtValues(white),
              TCIEConvAll->XYZ2Watts(kSRGBWhite.x, kSRGBWhite.y, kSRGBWhite.z));
    EXPECT_GT(xyz.SumLgtValues(white), 0.0);
    NoFullConverter none(*static_cast<XYZModel*>(m.refs[0].Get()));
    EXPECT_EQ(xyz.SumLgtValues(white), 0.0);
}

TEST(XYZModelValidity, SurfacesOutsideTheLocusBecomeBlackAndLightsLoseNegatives) {
    CIEModels m;
    const XYZModel& xyz = m.xyz;
    XYZSurface grey = Triple<XYZSurface>(0.5 * kSRGBWhite.x, 0.5, 0.5 * kSRGBWhite.z);
    EXPECT_TRUE(xyz.IsValidSurfColor(grey));
    EXPECT_EQ(xyz.ClampSurfColor(grey), 1);
    EXPECT_EQ(Of(grey).y, 0.5);
    // (0, 1, 0) has chromaticity (0, 1), outside the spectral locus.
    XYZSurface green = Triple<XYZSurface>(0.0, 1.0, 0.0);
    EXPECT_FALSE(xyz.IsValidSurfColor(green));
    EXPECT_EQ(xyz.ClampSurfColor(green), 0);
    EXPECT_EQ(Of(green), TVect3<double>(0.0, 0.0, 0.0));

    XYZLight light = Triple<XYZLight>(-1.0, 2.0, std::nan(""));
    EXPECT_FALSE(xyz.IsValidLgtColor(light));
    xyz.ClampLgtColor(light);
    EXPECT_EQ(Of(light), TVect3<double>(0.0, 2.0, 0.0));
    EXPECT_TRUE(xyz.IsValidLgtColor(light));
}

TEST(XYZModelDisplay, RGBChromaticityAndDisplayTriples) {
    CIEModels m;
    const XYZModel& xyz = m.xyz;
    // Red as XYZ is RGB (1, 0, 0); minus red keeps its sign unless negatives are clamped.
    const XYZLight minusRed = Triple<XYZLight>(-kRedXYZ.x, -kRedXYZ.y, -kRedXYZ.z);
    TVect3<double> rgb(9.0, 9.0, 9.0);
    ASSERT_EQ(xyz.LgtColorToRGB(minusRed, rgb, false, false), 0);
    ExpectNear(rgb, TVect3<double>(-1.0, 0.0, 0.0), Tol::kMatrixIdentity);
    ASSERT_EQ(xyz.LgtColorToRGB(minusRed, rgb, false, true), 0);
    ExpectNear(rgb, TVect3<double>(0.0, 0.0, 0.0), Tol::kMatrixIdentity);
    ASSERT_EQ(xyz.LgtColorToRGB(Triple<XYZLight>(0.0, 0.0, 0.0), rgb, true, true), 0);
    EXPECT_EQ(rgb, TVect3<double>(0.0, 0.0, 0.0)); // a zero sum divides nothing
    const XYZLight dimWhite = Triple<XYZLight>(0.5 * kSRGBWhite.x, 0.5, 0.5 * kSRGBWhite.z);
    ASSERT_EQ(xyz.LgtColorToRGB(dimWhite, rgb, true, false), 0);
    ExpectNear(rgb, TVect3<double>(1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0), Tol::kMatrixIdentity);

    // Display: divided by the largest magnitude, then without negatives; black shows white.
    ASSERT_EQ(xyz.LgtColorToDisplayRGB(dimWhite, rgb), 0);
    ExpectNear(rgb, TVect3<double>(1.0, 1.0, 1.0), Tol::kMatrixIdentity);
    xyz.LgtColorToDisplayRGB(minusRed, rgb);
    ExpectNear(rgb, TVect3<double>(0.0, 0.0, 0.0), Tol::kMatrixIdentity);
    xyz.LgtColorToDisplayRGB(Triple<XYZLight>(0.0, 0.0, 0.0), rgb);
    EXPECT_EQ(rgb, TVect3<double>(1.0, 1.0, 1.0));
    // A surface brighter than white is scaled back into [0, 1].
    xyz.SurfColorToRGB(Triple<XYZSurface>(2.0 * kSRGBWhite.x, 2.0, 2.0 * kSRGBWhite.z), rgb);
    ExpectNear(rgb, TVect3<double>(1.0, 1.0, 1.0), Tol::kMatrixIdentity);

    double luminance = -1.0;
    TVect2<double> xy(-1.0, -1.0);
    xyz.GetChromaticity(dimWhite, luminance, xy);
    EXPECT_EQ(luminance, 0.5); // Y itself, no luminous efficacy
    EXPECT_NEAR(xy.x, 0.3127, Tol::kChromaticityRounding);
    EXPECT_NEAR(xy.y, 0.3290, Tol::kChromaticityRounding);
    xyz.GetChromaticity(Triple<XYZLight>(0.0, 0.0, 0.0), luminance, xy);
    EXPECT_EQ(xy.x, 0.0);
    EXPECT_EQ(xy.y, 0.0);
}
