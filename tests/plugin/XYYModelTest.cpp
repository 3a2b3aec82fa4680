// xyY model: colours arriving as xyY, the repair of lights, sums taken through XYZ and the
// surface cap; and the rays both CIE models make of a spectral light.
#include "CIEModelTestSupport.h"

#include "tests/support/Tolerances.h"

#include <cmath>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using XYYLight = LgtColor<XYYModel>;
using XYYSurface = SurfColor<XYYModel>;

// The sRGB green primary (0.30, 0.60) (IEC 61966-2-1:1999) with the luminance of RGB (0, 1, 0),
// the Y entry of the derived matrix's green column (srgb_constants.md, section 3).
void ExpectGreenPrimary(const XYYLight& c) {
    EXPECT_NEAR(c[0], 0.30, Tol::kPrimaryChromaticity);
    EXPECT_NEAR(c[1], 0.60, Tol::kPrimaryChromaticity);
    EXPECT_NEAR(c[2], 0.7151686787677559, Tol::kDerivedMatrix);
}

} // namespace

TEST(XYYModelConversion, ColoursArriveAsXYYAndInvalidLightsAreRepaired) {
    CIEModels m;
    // Black stays black; an xyY colour is copied even with y = 0, which a trip through XYZ
    // would turn into (0.25, 1, 0.5).
    XYYSurface surface;
    ASSERT_EQ(m.xyy.ConvertColor(&m.xyz, Triple<XYYSurface>(0.0, 0.0, 0.0), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.0, 0.0, 0.0));
    ASSERT_EQ(m.xyy.ConvertColor(&m.xyy, Triple<XYYSurface>(0.25, 0.0, 0.5), surface), 0);
    EXPECT_EQ(Of(surface), TVect3<double>(0.25, 0.0, 0.5));
    // XYZ (0, 1, 0) lies outside the locus: the clamp that ends a light conversion repairs it
    // along its RGB into pure green.
    XYYLight light;
    ASSERT_EQ(m.xyy.ConvertColor(&m.xyz, Triple<LgtColor<XYZModel>>(0.0, 1.0, 0.0), light), 0);
    ExpectGreenPrimary(light);

    XYYLight valid = Triple<XYYLight>(0.3127, 0.3290, 0.5);
    m.xyy.ClampLgtColor(valid);
    EXPECT_EQ(Of(valid), TVect3<double>(0.3127, 0.3290, 0.5));
    XYYLight bright = Triple<XYYLight>(0.30, 0.60, 3.0); // Y capped, RGB (0, 1.4, 0) clipped
    m.xyy.ClampLgtColor(bright);
    ExpectGreenPrimary(bright);
    // A negative Y has black RGB, which clipping leaves alone: only the cap applies.
    XYYLight negative = Triple<XYYLight>(0.3127, 0.3290, -1.0);
    m.xyy.ClampLgtColor(negative);
    EXPECT_EQ(Of(negative), TVect3<double>(0.3127, 0.3290, -1.0));
}

TEST(XYYModelArithmetic, SumsAreTakenInXYZ) {
    CIEModels m;
    // Same chromaticity: the sum keeps it and adds the luminances.
    XYYLight to = Triple<XYYLight>(0.25, 0.5, 2.0);
    RayColor<XYYModel> ray;
    ray.Light() = Triple<XYYLight>(0.25, 0.5, 1.0);
    m.xyy.AddScaledLgt3(ray, 2.0, to);
    ExpectNear(Of(to), TVect3<double>(0.25, 0.5, 4.0), Tol::kXYYSum);
    // Into an array the xyY sum is added onto what the array holds: Y gains both operands' Y.
    double sum[3] = {0.25, 0.5, 2.0};
    m.xyy.AddRayToArray(ray, sum);
    ExpectNear(TVect3<double>(sum[0], sum[1], sum[2]), TVect3<double>(0.5, 1.0, 5.0), Tol::kXYYSum);
    // A colour is replaced by the sum: red and green of one XYZ sum meet halfway.
    XYYLight mix = Triple<XYYLight>(0.64, 0.33, 0.33);
    m.xyy.AddLgtColor(Triple<XYYLight>(0.30, 0.60, 0.60), mix);
    ExpectNear(Of(mix), TVect3<double>(0.47, 0.465, 0.93), Tol::kXYYSum);
    // Scaling and normalizing touch Y alone.
    XYYLight scaled = Triple<XYYLight>(0.25, 0.5, 2.0);
    m.xyy.ScaleLgtColor(scaled, 0.5);
    EXPECT_EQ(Of(scaled), TVect3<double>(0.25, 0.5, 1.0));
    m.xyy.NormalizeLgtColor(scaled);
    EXPECT_EQ(Of(scaled), TVect3<double>(0.25, 0.5, 1.0));
    XYYLight big = Triple<XYYLight>(0.25, 0.5, 3.0);
    m.xyy.NormalizeLgtColor(big);
    EXPECT_EQ(Of(big), TVect3<double>(0.25, 0.5, 1.0));
}

TEST(XYYModelValidity, SurfaceCapTravelsOnlyWithARepair) {
    CIEModels m;
    // Valid once Y is capped: nothing is written, the stored Y above 1 stays.
    XYYSurface bright = Triple<XYYSurface>(0.3127, 0.3290, 1.5);
    EXPECT_FALSE(m.xyy.IsValidSurfColor(bright));
    EXPECT_EQ(m.xyy.ClampSurfColor(bright), 1);
    EXPECT_EQ(bright[2], 1.5);
    // (0.8, 0.15) lies beyond the red end of the locus: written back with the cap.
    XYYSurface beyond = Triple<XYYSurface>(0.8, 0.15, 1.5);
    EXPECT_EQ(m.xyy.ClampSurfColor(beyond), 0);
    EXPECT_EQ(Of(beyond), TVect3<double>(0.8, 0.15, 1.0));
    // Shown on a display, a surface brighter than white is scaled into [0, 1]: its largest
    // channel becomes exactly 1 (white of Y = 2 is RGB (2, 2, 2) before that).
    TVect3<double> rgb(0.0, 0.0, 0.0);
    m.xyy.SurfColorToRGB(Triple<XYYSurface>(0.3127, 0.3290, 2.0), rgb);
    EXPECT_EQ(std::fmax(rgb.x, std::fmax(rgb.y, rgb.z)), 1.0);
}

// A spectral light becomes a ray that carries the light's energy: the spectrum's coordinates
// scaled so that the model's plain sum of the three values is the source's LgtEnergy. For xyY
// that sum is x + y + Y, so x and y are scaled along with Y.
TEST(XYYModelRay, SpectralRaysCarryTheLightsEnergy) {
    CIEModels m;
    TArray<double> values(10);
    ASSERT_EQ(values.Alloc(m.spU.NWaves()), 0);
    for (int i = 0; i < values.Count(); ++i)
        values[i] = 0.5 + 0.01 * i;
    const auto light = Spectral<LgtColor<SpectralModel<Unpolarized>>>(
        m.spU, std::vector<double>(values.begin(), values.end()));
    TVect3<double> xyz(0.0, 0.0, 0.0);
    ASSERT_EQ(CIEConv::spectrum2xyz(m.spU.GetWaveLengths(), values, xyz), 0);
    const double s = xyz.x + xyz.y + xyz.z;
    const TVect3<double> xyY(xyz.x / s, xyz.y / s, xyz.y); // CIE 15:2004, section 7.3

    RayColor<XYYModel> ray;
    ASSERT_EQ(m.xyy.ConvertToRayColor(&m.spU, light, ray), 0);
    const double f = m.spU.LgtEnergy(light) / (xyY.x + xyY.y + xyY.z);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(ray.Light()[k], f * xyY[k], Tol::kCIERayScaling * f * xyY[k]);
}
