// xyY model: colours of other models arriving as xyY, the repair of lights, sums taken through
// XYZ, validity and display; and the rays that both CIE models make of a spectral light.
#include "CIEModelTestSupport.h"

#include "tests/support/Tolerances.h"

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using XYYLight = LgtColor<XYYModel>;
using XYYSurface = SurfColor<XYYModel>;

// The green primary of sRGB, (x, y) = (0.30, 0.60) (IEC 61966-2-1:1999), with the luminance of
// RGB (0, 1, 0): the middle entry of the green column of the derived RGB-to-XYZ matrix
// (shared/data/srgb_constants.md, sections 1 and 3).
const TVect3<double> kGreenPrimary(0.30, 0.60, 0.7151686787677559);

void ExpectChromaticity(const TVect3<double>& xyY, double x, double y, double tol) {
    EXPECT_NEAR(xyY.x, x, tol);
    EXPECT_NEAR(xyY.y, y, tol);
}

} // namespace

TEST(XYYModelConversion, OtherModelsArriveAsXYZTurnedIntoXYY) {
    CIEModels m;
    XYYLight light;
    LgtColor<BWModel<Unpolarized>> grey;
    grey[0] = 0.5;
    ASSERT_EQ(m.xyy.ConvertColor(&m.bwU, grey, light), 0);
    ExpectChromaticity(Of(light), 0.3127, 0.3290, Tol::kPrimaryChromaticity);
    EXPECT_NEAR(Of(light).z, 0.5, Tol::kDerivedMatrix);

    // Black stays black (a zero sum is divided by nothing); an xyY colour is copied as it
    // stands, even with y = 0, which a trip through XYZ would turn into (0.25, 1, 0.5).
    XYYSurface surface;
    ASSERT_EQ(m.xyy.ConvertColor(&m.xyz, Triple<XYYSurface>(0.0, 0.0, 0.0), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.0, 0.0, 0.0));
    ASSERT_EQ(m.xyy.ConvertColor(&m.xyy, Triple<XYYSurface>(0.25, 0.0, 0.5), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.25, 0.0, 0.5));

    // XYZ (0, 1, 0) has chromaticity (0, 1), outside the locus: the light clamp repairs it into
    // the nearest displayable colour along its RGB, pure green.
    ASSERT_EQ(m.xyy.ConvertColor(&m.xyz, Triple<LgtColor<XYZModel>>(0.0, 1.0, 0.0), light), 0);
    ExpectChromaticity(Of(light), kGreenPrimary.x, kGreenPrimary.y, Tol::kPrimaryChromaticity);
    EXPECT_NEAR(Of(light).z, kGreenPrimary.z, Tol::kDerivedMatrix);
    EXPECT_TRUE(m.xyy.IsValidLgtColor(light));
}

TEST(XYYModelClamp, LightsAreRepairedOnlyWhenInvalid) {
    CIEModels m;
    XYYLight valid = Triple<XYYLight>(0.3127, 0.3290, 0.5);
    m.xyy.ClampLgtColor(valid);
    EXPECT_EQ(Of(valid), TVect3<double>(0.3127, 0.3290, 0.5));

    // Too bright a green: Y capped at 1, its RGB (0, 1.4, 0) clipped to (0, 1, 0).
    XYYLight bright = Triple<XYYLight>(0.30, 0.60, 3.0);
    m.xyy.ClampLgtColor(bright);
    ExpectChromaticity(Of(bright), kGreenPrimary.x, kGreenPrimary.y, Tol::kPrimaryChromaticity);
    EXPECT_NEAR(Of(bright).z, kGreenPrimary.z, Tol::kDerivedMatrix);

    // A negative Y gives black RGB, which clipping leaves alone: only the cap applies, and the
    // colour stays as it was.
    XYYLight negative = Triple<XYYLight>(0.3127, 0.3290, -1.0);
    m.xyy.ClampLgtColor(negative);
    EXPECT_EQ(Of(negative), TVect3<double>(0.3127, 0.3290, -1.0));
}

TEST(XYYModelArithmetic, SumsAreTakenInXYZ) {
    CIEModels m;
    const XYYModel& xyy = m.xyy;
    // Same chromaticity: the sum keeps it and adds the luminances.
    XYYLight to = Triple<XYYLight>(0.25, 0.5, 2.0);
    xyy.AddLgtColor(Triple<XYYLight>(0.25, 0.5, 1.0), to);
    ExpectChromaticity(Of(to), 0.25, 0.5, Tol::kXYYSum);
    EXPECT_EQ(Of(to).z, 3.0);
    RayColor<XYYModel> ray;
    ray.Light() = Triple<XYYLight>(0.25, 0.5, 1.0);
    xyy.AddScaledLgt3(ray, 2.0, to);
    ExpectChromaticity(Of(to), 0.25, 0.5, Tol::kXYYSum);
    EXPECT_EQ(Of(to).z, 5.0);

    // Into an array the sum is added onto what the array holds: Y gains both operands' Y.
    double sum[3] = {0.25, 0.5, 2.0};
    xyy.AddRayToArray(ray, sum);
    EXPECT_NEAR(sum[0], 0.5, Tol::kXYYSum);
    EXPECT_NEAR(sum[1], 1.0, Tol::kXYYSum);
    EXPECT_EQ(sum[2], 5.0);

    // Red and green of equal XYZ sum mix halfway in xy.
    XYYLight mix = Triple<XYYLight>(0.64, 0.33, 0.33);
    xyy.AddLgtColor(Triple<XYYLight>(0.30, 0.60, 0.60), mix);
    ExpectChromaticity(Of(mix), 0.47, 0.465, Tol::kXYYSum);
    EXPECT_NEAR(Of(mix).z, 0.93, Tol::kXYYSum);

    // Scaling and normalizing touch Y only.
    xyy.ScaleLgtColor(to, 0.5);
    EXPECT_EQ(Of(to).z, 2.5);
    xyy.NormalizeLgtColor(ray);
    EXPECT_EQ(Of(ray.Light()), TVect3<double>(0.25, 0.5, 1.0));
}

TEST(XYYModelArithmetic, LuminanceEnergyAndPowerReadTheXYZ) {
    CIEModels m;
    const XYYLight grey = Triple<XYYLight>(0.3127, 0.3290, 0.5);
    EXPECT_EQ(m.xyy.LgtLuminance(grey), 0.5);
    EXPECT_NEAR(m.xyy.RayEnergy(grey), 1.5, Tol::kMatrixIdentity); // M grey = (0.5, 0.5, 0.5)
    // The power of a light does not depend on the coordinates it is held in.
    TVect3<double> xyz(0.0, 0.0, 0.0);
    m.xyy.LgtColorToXYZ(grey, xyz);
    const double watts = m.xyz.SumLgtValues(Triple<LgtColor<XYZModel>>(xyz.x, xyz.y, xyz.z));
    EXPECT_GT(watts, 0.0);
    EXPECT_EQ(m.xyy.SumLgtValues(grey), watts);
}

TEST(XYYModelValidity, SurfaceCapTravelsOnlyWithARepair) {
    CIEModels m;
    const XYYModel& xyy = m.xyy;
    EXPECT_TRUE(xyy.IsValidLgtColor(Triple<XYYLight>(0.3127, 0.3290, 0.5)));
    EXPECT_FALSE(xyy.IsValidLgtColor(Triple<XYYLight>(0.3127, 0.3290, 1.5)));
    EXPECT_FALSE(xyy.IsValidLgtColor(Triple<XYYLight>(0.0, 0.0, 0.0))); // y must be above 0

    // Valid once Y is capped: nothing is written, the stored Y above 1 stays.
    XYYSurface bright = Triple<XYYSurface>(0.3127, 0.3290, 1.5);
    EXPECT_FALSE(xyy.IsValidSurfColor(bright));
    EXPECT_EQ(xyy.ClampSurfColor(bright), 1);
    EXPECT_EQ(Of(bright).z, 1.5);
    // (0.8, 0.15) lies beyond the red end of the locus: written back with the cap.
    XYYSurface beyond = Triple<XYYSurface>(0.8, 0.15, 1.5);
    EXPECT_EQ(xyy.ClampSurfColor(beyond), 0);
    EXPECT_EQ(Of(beyond), TVect3<double>(0.8, 0.15, 1.0));
}

TEST(XYYModelDisplay, ColoursShowThroughTheirUnclampedXYZ) {
    CIEModels m;
    const XYYModel& xyy = m.xyy;
    TVect3<double> xyz(9.0, 9.0, 9.0);
    // y = 0 counts as 1/y = 1 and the negative Z stays.
    ASSERT_EQ(xyy.LgtColorToXYZ(Triple<XYYLight>(0.25, 0.0, 0.5), xyz), 0);
    EXPECT_EQ(xyz, TVect3<double>(0.125, 0.5, -0.125));

    TVect3<double> rgb(9.0, 9.0, 9.0);
    xyy.ScalarColorToRGB(Triple<ScalarColor<XYYModel>>(0.3127, 0.3290, 0.5), rgb);
    ExpectNear(rgb, TVect3<double>(0.5, 0.5, 0.5), Tol::kMatrixIdentity);
    ASSERT_EQ(xyy.LgtColorToRGB(Triple<XYYLight>(0.3127, 0.3290, 0.5), rgb, true, false), 0);
    ExpectNear(rgb, TVect3<double>(1.0 / 3.0, 1.0 / 3.0, 1.0 / 3.0), Tol::kMatrixIdentity);

    double luminance = -1.0;
    TVect2<double> xy(-1.0, -1.0);
    xyy.GetChromaticity(Triple<XYYLight>(0.25, 0.5, 2.0), luminance, xy);
    EXPECT_EQ(xy.x, 0.25);
    EXPECT_EQ(xy.y, 0.5);
    EXPECT_EQ(luminance, 2.0);
}

// A spectral light becomes a ray that carries the light's energy: the integral of the spectrum,
// scaled so that the model's plain sum of the three values is the source's LgtEnergy. For xyY
// that sum is x + y + Y, so x and y are scaled along with Y.
TEST(CIEModelRay, SpectralRaysCarryTheLightsEnergy) {
    CIEModels m;
    const int n = m.spU.NWaves();
    TArray<double> values(10);
    ASSERT_EQ(values.Alloc(n), 0);
    for (int i = 0; i < n; ++i)
        values[i] = 0.5 + 0.01 * i;
    const auto light = Spectral<LgtColor<SpectralModel<Unpolarized>>>(
        m.spU, std::vector<double>(values.begin(), values.end()));
    const double energy = m.spU.LgtEnergy(light);
    ASSERT_GT(energy, 0.0);
    TVect3<double> xyz(0.0, 0.0, 0.0);
    ASSERT_EQ(CIEConv::spectrum2xyz(m.spU.GetWaveLengths(), values, xyz), 0);
    const double s = xyz.x + xyz.y + xyz.z;
    const TVect3<double> xyY(xyz.x / s, xyz.y / s, xyz.y); // CIE 15:2004, section 7.3

    struct Case {
        const ColorModel& model;
        TVect3<double> unscaled;
    };
    for (const Case& c : {Case{m.xyz, xyz}, Case{m.xyy, xyY}}) {
        RayColor<XYZModel> ray;
        ASSERT_EQ(c.model.ConvertToRayColor(&m.spU, light, ray), 0);
        const double factor = energy / (c.unscaled.x + c.unscaled.y + c.unscaled.z);
        for (int k = 0; k < 3; ++k)
            EXPECT_NEAR(ray.Light()[k], factor * c.unscaled[k],
                        Tol::kCIERayScaling * factor * c.unscaled[k]);
    }

    // A light without energy: the ray is the unscaled integral, here black.
    const auto dark = Spectral<LgtColor<SpectralModel<Unpolarized>>>(
        m.spU, std::vector<double>(static_cast<std::size_t>(n), 0.0));
    RayColor<XYZModel> ray;
    ASSERT_EQ(m.xyy.ConvertToRayColor(&m.spU, dark, ray), 0);
    EXPECT_EQ(Of(ray.Light()), TVect3<double>(0.0, 0.0, 0.0));
}
