// XYZ model: colours of every model read as XYZ, the failures that both CIE models report, and
// the arithmetic, clamping and display of XYZ colours.
#include "CIEModelTestSupport.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "tests/support/TestModel.h"
#include "tests/support/Tolerances.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using XYZLight = LgtColor<XYZModel>;
using XYZSurface = SurfColor<XYZModel>;
using XYZScalar = ScalarColor<XYZModel>;

// Red of linear sRGB as XYZ: the first column of the RGB-to-XYZ matrix derived from the sRGB
// primaries and white (shared/data/srgb_constants.md, section 3).
const TVect3<double> kRedXYZ(0.4123907992659595, 0.21263900587151036, 0.01933081871559185);

std::string LastReport() {
    return ReportLog::Entries().back().text;
}

} // namespace

TEST(XYZModelConversion, SourcesReadAsXYZ) {
    CIEModels m;
    // Stokes sources give their intensity (I, Mueller (0,0)) only: a grey of 0.5 is half the
    // white, and red reads as the red column.
    LgtColor<BWModel<StokesPolarization>> grey;
    grey[0] = 0.5;
    grey[1] = grey[2] = grey[3] = 0.25;
    SurfColor<RGBModel<StokesPolarization>> red;
    for (int k = 0; k < 48; ++k)
        red[k] = k == 0 ? 1.0 : k % 16 == 0 ? 0.0 : 0.25;
    XYZLight light;
    ASSERT_EQ(m.xyz.ConvertColor(&m.bwS, grey, light), 0);
    ExpectNear(Of(light), TVect3<double>(0.5 * kSRGBWhite.x, 0.5, 0.5 * kSRGBWhite.z),
               Tol::kDerivedMatrix);
    XYZSurface surface;
    ASSERT_EQ(m.xyz.ConvertColor(&m.rgbS, red, surface), 0);
    ExpectNear(Of(surface), kRedXYZ, Tol::kDerivedMatrix);

    // xyY (0.3, 0.4, 0.5): X = 0.3 * 0.5 / 0.4 = 0.375, Z = 0.5 / 0.4 - 0.375 - 0.5 = 0.375.
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyy, Triple<XYZSurface>(0.3, 0.4, 0.5), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.375, 0.5, 0.375));
    // y = 0 counts as 1/y = 1: (0.25, 0, 0.5) is (0.125, 0.5, -0.125); only a light, whose
    // conversion ends with the clamp, loses the negative Z.
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyy, Triple<XYZSurface>(0.25, 0.0, 0.5), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.125, 0.5, -0.125));
    ASSERT_EQ(m.xyz.ConvertColor(&m.xyy, Triple<XYZLight>(0.25, 0.0, 0.5), light), 0);
    EXPECT_EQ(Of(light), TVect3<double>(0.125, 0.5, 0.0));
}

TEST(XYZModelConversion, SpectraIntegrateOverTheSourceGrid) {
    CIEModels m;
    TArray<double> ramp(10); // 0.1 .. 0.9: a light, and a reflectance too
    ASSERT_EQ(ramp.Alloc(m.spU.NWaves()), 0);
    for (int i = 0; i < ramp.Count(); ++i)
        ramp[i] = 0.1 + 0.025 * i;
    const std::vector<double> values(ramp.begin(), ramp.end());
    TVect3<double> lightXYZ(0, 0, 0), surfaceXYZ(0, 0, 0);
    ASSERT_EQ(CIEConv::spectrum2xyz(m.spU.GetWaveLengths(), ramp, lightXYZ), 0);
    ASSERT_EQ(CIEConv::spectrum2xyzAttr(m.spU.GetWaveLengths(), ramp, surfaceXYZ), 0);

    using SpU = SpectralModel<Unpolarized>;
    XYZLight light;
    ASSERT_EQ(m.xyz.ConvertColor(&m.spU, Spectral<LgtColor<SpU>>(m.spU, values), light), 0);
    EXPECT_EQ(Of(light), lightXYZ);
    XYZSurface surface;
    ASSERT_EQ(m.xyz.ConvertColor(&m.spU, Spectral<SurfColor<SpU>>(m.spU, values), surface), 0);
    EXPECT_EQ(Of(surface), surfaceXYZ);
    // Scalar colours carry no polarization: a polarized model's scalar spectrum converts too.
    using SpS = SpectralModel<StokesPolarization>;
    XYZScalar scalar;
    ASSERT_EQ(m.xyz.ConvertColor(&m.spS, Spectral<ScalarColor<SpS>>(m.spS, values), scalar), 0);
    EXPECT_EQ(Of(scalar), lightXYZ);
}

// Both CIE models, each with its own texts for the polarized spectra that only it refuses.
TEST(CIEModelConversion, FailuresReportTheirCodeAndLeaveTheColour) {
    CIEModels m;
    PlugType otherType("OtherModel", TColorModel, false, nullptr);
    const TestModel other(&otherType);
    using SpS = SpectralModel<StokesPolarization>;
    const std::vector<double> ones(static_cast<std::size_t>(m.spU.NWaves()), 1.0);
    const auto stokes = Spectral<LgtColor<SpS>>(m.spS, ones);
    const auto mueller = Spectral<SurfColor<SpS>>(m.spS, ones);
    const auto plain = Spectral<LgtColor<SpectralModel<Unpolarized>>>(m.spU, ones);
    auto banded = Spectral<LgtColor<SpectralModel<Unpolarized>>>(m.spU, ones);
    banded.Distr().SetBand(1, m.spU.NWaves() - 2);
    const XYZLight keep = Triple<XYZLight>(7.0, 8.0, 9.0);

    struct Case {
        const ColorModel& model;
        const char *light, *surface, *ray;
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
        RayColor<XYZModel> ray;
        ray.Light() = keep;
        EXPECT_EQ(c.model.ConvertColor(&other, keep, light), kInternalErrorCode);
        EXPECT_EQ(LastReport(), "Not supported light color conversion");
        XYZScalar scalar = Triple<XYZScalar>(7.0, 8.0, 9.0);
        EXPECT_EQ(c.model.ConvertColor(nullptr, scalar, scalar), kInternalErrorCode);
        EXPECT_EQ(LastReport(), "Not supported scalar color conversion");
        EXPECT_EQ(c.model.ConvertColor(&m.spS, stokes, light), kErrorMessageCode);
        EXPECT_EQ(LastReport(), c.light);
        EXPECT_EQ(c.model.ConvertColor(&m.spS, mueller, surface), kErrorMessageCode);
        EXPECT_EQ(LastReport(), c.surface);
        EXPECT_EQ(c.model.ConvertToRayColor(&m.spS, stokes, ray), kErrorMessageCode);
        EXPECT_EQ(LastReport(), c.ray);
        {
            // A light of the grid's length with a band over all of it is read in place (no
            // scratch array: the conversion succeeds without memory); a banded one is copied.
            FaultInjection::ScopedFailure noArrays(FaultInjection::ArrayStorage, 1, true);
            XYZLight whole = keep;
            EXPECT_EQ(m.xyz.ConvertColor(&m.spU, plain, whole), 0);
            EXPECT_EQ(c.model.ConvertColor(&m.spU, banded, light), kNoMemoryCode);
            EXPECT_EQ(c.model.ConvertToRayColor(&m.spU, banded, ray), kNoMemoryCode);
        }
        EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::NoMemory);
        EXPECT_TRUE(light == keep && ray.Light() == keep);
        EXPECT_EQ(Of(surface), TVect3<double>(7.0, 8.0, 9.0));
        EXPECT_EQ(Of(scalar), TVect3<double>(7.0, 8.0, 9.0));
    }
}

TEST(XYZModelValues, EnergyPowerChromaticityAndTheSurfaceClamp) {
    CIEModels m;
    const XYZLight white = Triple<XYZLight>(kSRGBWhite.x, kSRGBWhite.y, kSRGBWhite.z);
    EXPECT_NEAR(m.xyz.RayEnergy(white), 3.0, Tol::kMatrixIdentity); // M white = (1, 1, 1)
    EXPECT_EQ(m.xyz.SumLgtValues(white), TCIEConvAll->XYZ2Watts(kSRGBWhite.x, 1.0, kSRGBWhite.z));
    ColorModel& model = *static_cast<XYZModel*>(m.refs[0].Get());
    model.SetCIEConvAll(nullptr); // a host without a full converter
    EXPECT_EQ(m.xyz.SumLgtValues(white), 0.0);
    model.SetCIEConvAll(CIEConvAll::Default());

    double luminance = -1.0;
    TVect2<double> xy(-1.0, -1.0);
    m.xyz.GetChromaticity(Triple<XYZLight>(0.5, 0.25, 1.25), luminance, xy);
    EXPECT_EQ(luminance, 0.25); // Y itself, no luminous efficacy
    EXPECT_TRUE(xy.x == 0.25 && xy.y == 0.125);

    XYZSurface grey = Triple<XYZSurface>(0.5 * kSRGBWhite.x, 0.5, 0.5 * kSRGBWhite.z);
    EXPECT_EQ(m.xyz.ClampSurfColor(grey), 1);
    EXPECT_EQ(grey[1], 0.5);
    XYZSurface green = Triple<XYZSurface>(0.0, 1.0, 0.0); // xy (0, 1): outside the locus
    EXPECT_TRUE(m.xyz.IsValidSurfColor(grey));
    EXPECT_FALSE(m.xyz.IsValidSurfColor(green));
    EXPECT_EQ(m.xyz.ClampSurfColor(green), 0);
    EXPECT_EQ(Of(green), TVect3<double>(0.0, 0.0, 0.0));
}

// Normalizing: a black light becomes (1/3, 1/3, 1/3), others are divided by their sum. A spectral
// source holding more samples than its grid is read over its first NWaves samples.
TEST(XYZModelValues, NormalizingBlackAndSpectraLongerThanTheirGrid) {
    CIEModels m;
    XYZLight black = Triple<XYZLight>(0.0, 0.0, 0.0);
    m.xyz.NormalizeLgtColor(black);
    EXPECT_EQ(Of(black), TVect3<double>(1.0 / 3, 1.0 / 3, 1.0 / 3));
    XYZLight some = Triple<XYZLight>(0.5, 1.0, 0.5);
    m.xyz.NormalizeLgtColor(some);
    EXPECT_EQ(Of(some), TVect3<double>(0.25, 0.5, 0.25));

    using SpU = SpectralModel<Unpolarized>;
    const int n = m.spU.NWaves();
    std::vector<double> values(static_cast<std::size_t>(n), 0.5);
    const LgtColor<SpU> fitting = Spectral<LgtColor<SpU>>(m.spU, values);
    LgtColor<SpU> longer = fitting;
    ASSERT_EQ(longer.Distr().SetLength(n + 3), 0);
    for (int i = 0; i < n + 3; ++i)
        longer.Distr()[i][0] = i < n ? 0.5 : 1e6;
    XYZLight a, b;
    ASSERT_EQ(m.xyz.ConvertColor(&m.spU, fitting, a), 0);
    ASSERT_EQ(m.xyz.ConvertColor(&m.spU, longer, b), 0);
    EXPECT_EQ(Of(a), Of(b));
    EXPECT_GT(a[1], 0.0);
}
