// Spectral colours as RGB and XYZ: the mass converter's tables and the display conversions
// against the host's CIE converter, chromaticity through the XYZ model, and what a colour of
// another length or a missing scratch array give.
#include "ModelTestSupport.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConv.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/XYZModel.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;
using Korvane::Testing::ScopedModelTypes;

namespace {

// Both models on an uneven grid, and a density over it with a narrow green peak whose sRGB red
// is negative, with the host converter's RGB of it.
class SpectralOut : public testing::Test {
protected:
    // A light colour with intensities `values` (Stokes: I, with Q = 0.5 and U = V = 0).
    template <class L>
    static void SetIntensities(L& c, const MArray<double>& values) {
        c.Distr().SetLength(values.Count());
        for (int k = 0; k < values.Count(); ++k) {
            c.Distr()[k] = typename L::Component{};
            c.Distr()[k][0] = values[k];
            if constexpr (L::Component::kSize == 4)
                c.Distr()[k][1] = 0.5;
        }
    }
    // Each channel within `relative` times the largest magnitude of `b`.
    static void ExpectNear(const TVect3<double>& a, const TVect3<double>& b, double relative) {
        const double scale = std::fmax(std::fabs(b.x), std::fmax(std::fabs(b.y), std::fabs(b.z)));
        for (int i = 0; i < 3; ++i)
            EXPECT_NEAR(a[i], b[i], relative * scale) << "channel " << i;
    }

    ScopedModelTypes types;
    TPlugRef<GridModel<Unpolarized>> model =
        new GridModel<Unpolarized>(Grid({400, 480, 510, 530, 680}));
    TPlugRef<GridModel<StokesPolarization>> stokes =
        new GridModel<StokesPolarization>(Grid({400, 480, 510, 530, 680}));
    const MArray<double> density = Grid({0.1, 0.2, 3.0, 0.3, 0.1});
    const TVect3<double> rgb0 =
        ColorModel::GetCIEConv()->Spectr2RGB(density, model->GetWaveLengths(), false);
    LgtColor<SpectralModel<Unpolarized>> c;
    TVect3<double> rgb;
};

} // namespace

TEST_F(SpectralOut, LightTablesAgreeWithTheHostConverter) {
    ASSERT_LT(rgb0.x, 0.0);
    model->SpectrumToRGB(density.Data(), rgb, false, false);
    ExpectNear(rgb, rgb0, Tol::kSpikeTableSum);
    // Light colours hold band energies, read from all of the storage whatever the band.
    SetIntensities(c, density);
    model->DensityToEnergy(c);
    c.Distr().SetBand(1, 4);
    EXPECT_EQ(model->LgtColorToRGB(c, rgb, false, false), 0);
    ExpectNear(rgb, rgb0, Tol::kSpikeTableSum);
    TVect3<double> xyz, xyz0;
    CIEConv::spectrum2xyz(model->GetWaveLengths(), density, xyz0);
    EXPECT_EQ(model->LgtColorToXYZ(c, xyz), 0);
    ExpectNear(xyz, xyz0, Tol::kSpikeTableSum);
    // Negatives are cut before the division by the sum; Stokes reads I alone.
    model->LgtColorToRGB(c, rgb, true, true);
    const double sum = rgb0.y + rgb0.z;
    ExpectNear(rgb, TVect3<double>(0.0, rgb0.y / sum, rgb0.z / sum), Tol::kSpikeTableSum);
    LgtColor<SpectralModel<StokesPolarization>> s;
    SetIntensities(s, density);
    stokes->DensityToEnergy(s);
    TVect3<double> fromStokes;
    stokes->LgtColorToRGB(s, fromStokes, true, true);
    EXPECT_EQ(fromStokes, rgb);
    // A colour of another length: RGB (0, 0, 0), XYZ left as it was.
    SetIntensities(c, Grid({1.0, 2.0}));
    model->LgtColorToRGB(c, rgb, true, true);
    EXPECT_EQ(rgb, TVect3<double>(0.0, 0.0, 0.0));
    model->LgtColorToXYZ(c, xyz);
    ExpectNear(xyz, xyz0, Tol::kSpikeTableSum);
}

TEST_F(SpectralOut, DisplayColoursGoThroughTheHostConverter) {
    ScalarColor<SpectralModel<Unpolarized>> scalar;
    scalar.Distr().SetLength(5);
    model->SetScalarColor(scalar, density.Data());
    model->ScalarColorToRGB(scalar, rgb);
    ExpectNear(rgb, rgb0, Tol::kSpikeTableSum);
    // Divided by the largest magnitude, negatives cut; black shows as white and answers 0.
    SetIntensities(c, density);
    EXPECT_EQ(model->LgtColorToDisplayRGB(c, rgb), 1);
    const double peak = std::fmax(-rgb0.x, std::fmax(rgb0.y, rgb0.z));
    ExpectNear(rgb, TVect3<double>(0.0, rgb0.y / peak, rgb0.z / peak), Tol::kSpikeTableSum);
    SetIntensities(c, Grid({0, 0, 0, 0, 0}));
    EXPECT_EQ(model->LgtColorToDisplayRGB(c, rgb), 0);
    EXPECT_EQ(rgb, TVect3<double>(1.0, 1.0, 1.0));
}

TEST_F(SpectralOut, MissingScratchArrayLeavesTheOutputAlone) {
    const TVect3<double> untouched(9.0, 9.0, 9.0);
    rgb = untouched;
    FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1, true);
    model->ScalarColorToRGB(ScalarColor<SpectralModel<Unpolarized>>(), rgb);
    model->SurfColorToRGB(SurfColor<SpectralModel<Unpolarized>>(), rgb);
    EXPECT_EQ(model->LgtColorToDisplayRGB(c, rgb), 0);
    EXPECT_EQ(rgb, untouched);
    EXPECT_EQ(ReportLog::Count(), 0u);
}

TEST_F(SpectralOut, ChromaticityComesFromTheXYZModel) {
    Library::Slot(ModelKind::XYZ).model = new XYZModel();
    SetIntensities(c, density);
    TVect3<double> xyz;
    CIEConv::spectrum2xyz(model->GetWaveLengths(), density, xyz);
    double luminance = 0.0;
    TVect2<double> xy;
    model->GetChromaticity(c, luminance, xy);
    const double sum = xyz.x + xyz.y + xyz.z;
    EXPECT_EQ(luminance, 683.0 * xyz.y); // 683 lm/W, the luminous efficacy at 555 nm
    EXPECT_NEAR(xy.x, xyz.x / sum, Tol::kChromaticityRounding);
    EXPECT_NEAR(xy.y, xyz.y / sum, Tol::kChromaticityRounding);
    // The XYZ model takes no polarized spectral light: all three are 0.
    LgtColor<SpectralModel<StokesPolarization>> s;
    SetIntensities(s, density);
    stokes->GetChromaticity(s, luminance, xy);
    EXPECT_EQ(luminance + xy.x + xy.y, 0.0);
    EXPECT_EQ(ReportLog::Entries().back().text, "Not supported XYZ light color conversion");
}

// A Stokes light's XYZ comes from its intensities alone (every fourth double), and the surface
// tables of the mass converter are made on first use, never with the model.
TEST_F(SpectralOut, StokesXYZReadsIntensitiesAndSurfaceTablesWaitForUse) {
    LgtColor<SpectralModel<StokesPolarization>> polarized;
    SetIntensities(polarized, density);
    for (int k = 0; k < density.Count(); ++k) // Q, U, V that would show if they were read
        polarized.Distr()[k] = {density[k], 5.0, -7.0, 11.0};
    SetIntensities(c, density);
    TVect3<double> fromStokes(0.0, 0.0, 0.0);
    TVect3<double> fromIntensity(0.0, 0.0, 0.0);
    ASSERT_EQ(stokes->LgtColorToXYZ(polarized, fromStokes), 0);
    ASSERT_EQ(model->LgtColorToXYZ(c, fromIntensity), 0);
    EXPECT_EQ(fromStokes, fromIntensity);
    EXPECT_GT(fromIntensity.y, 0.0);

    MassColConv* conv = model->GetMassColConv();
    EXPECT_EQ(conv->SurfaceRGB().Count(), 0);
    EXPECT_EQ(stokes->GetMassColConv()->SurfaceRGB().Count(), 0);
    model->SetWaveLengths(Grid({400, 500, 600}));
    EXPECT_EQ(model->GetMassColConv()->SurfaceRGB().Count(), 0);
    model->GetMassColConv()->WeightForSurface(0);
    EXPECT_EQ(model->GetMassColConv()->SurfaceRGB().Count(), 3);
}

// A black light normalized stays (0, 0, 0) rather than dividing by its zero sum, and shows as
// not lit; every polarized surface shows mid grey.
TEST_F(SpectralOut, BlackLightsAndPolarizedSurfaces) {
    SetIntensities(c, Grid({0, 0, 0, 0, 0}));
    for (bool clamp : {false, true}) {
        rgb = TVect3<double>(9.0, 9.0, 9.0);
        EXPECT_EQ(model->LgtColorToRGB(c, rgb, true, clamp), 0);
        EXPECT_EQ(rgb, TVect3<double>(0.0, 0.0, 0.0));
    }
    EXPECT_EQ(model->LgtColorToDisplayRGB(c, rgb), 0);
    SurfColor<SpectralModel<StokesPolarization>> mueller;
    mueller.Distr().SetLength(5);
    for (int k = 0; k < 5 * 16; ++k)
        mueller.Values()[k] = 0.125 * k;
    rgb = TVect3<double>(9.0, 9.0, 9.0);
    stokes->SurfColorToRGB(mueller, rgb);
    EXPECT_EQ(rgb, TVect3<double>(0.5, 0.5, 0.5));
}
