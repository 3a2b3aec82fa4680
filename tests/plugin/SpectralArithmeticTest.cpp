// Energy, density, luminance, clamping, normalizing and the per-wavelength arithmetic of spectral
// light colours, unpolarized and with Stokes vectors.
#include "ModelTestSupport.h"

#include "hostkit/cie/CIEConv.h"
#include "plugin/colour/ColourValues.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;
using Korvane::Testing::ScopedModelTypes;

namespace {

using Values = std::vector<double>;

// Both models on the grid 400, 500, 700 nm (trapezoid weights 50, 150, 100), a light colour of
// each, and Set/Stored to fill and read a colour (Stokes: four doubles per wavelength).
class SpectralOps : public testing::Test {
protected:
    template <class M, class L>
    static void Set(const M& model, L& c, Values values, int first, int last) {
        c.Distr().SetLength(static_cast<int>(values.size()) / L::Component::kSize);
        model->SetLgtColor(c, values.data());
        c.Distr().SetBand(first, last);
    }
    template <class L>
    static Values Stored(const L& c) {
        return Values(c.Values(), c.Values() + c.Count() * L::Component::kSize);
    }

    ScopedModelTypes types;
    TPlugRef<GridModel<Unpolarized>> model = new GridModel<Unpolarized>(Grid({400, 500, 700}));
    TPlugRef<GridModel<StokesPolarization>> stokes =
        new GridModel<StokesPolarization>(Grid({400, 500, 700}));
    LgtColor<SpectralModel<Unpolarized>> c;
    LgtColor<SpectralModel<StokesPolarization>> s;
};

} // namespace

TEST_F(SpectralOps, TrapezoidWeightsTurnDensityIntoBandEnergyAndBack) {
    Set(model, c, {1.0, 2.0, 3.0}, 0, 2);
    EXPECT_EQ(model->LgtEnergy(c), 650.0); // 1 x 50 + 2 x 150 + 3 x 100
    TVect3<double> xyz;
    CIEConv::spectrum2xyz(model->GetWaveLengths(), Grid({1.0, 2.0, 3.0}), xyz);
    model->DensityToEnergy(c);
    EXPECT_EQ(Stored(c), (Values{50.0, 300.0, 300.0}));
    EXPECT_EQ(model->SumLgtColor(c), 650.0); // the band energies add up to the area
    // The luminance of band energies is the Y of the density they stand for.
    EXPECT_NEAR(model->LgtLuminance(c), xyz.y, Tol::kSpikeTableSum * xyz.y);
    model->EnergyToDensity(c);
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(c.Distr()[k][0], k + 1.0, Tol::kReciprocalRoundTrip * (k + 1.0));
    Set(model, c, {1.0, 2.0, 3.0}, 1, 2); // outside the band the area reads 0
    EXPECT_EQ(model->LgtEnergy(c), 600.0);
}

TEST_F(SpectralOps, NegativeLightIsCutInsideTheBandOnly) {
    Set(model, c, {-1.0, 2.0, -3.0}, 0, 1);
    EXPECT_FALSE(model->IsValidLgtColor(c));
    model->ClampLgtColor(c);
    EXPECT_EQ(Stored(c), (Values{0.0, 2.0, -3.0}));
    EXPECT_TRUE(model->IsValidLgtColor(c)); // -3 lies outside the band
    // Stokes: a negative I zeroes the vector; negative Q, U, V are legitimate.
    Set(stokes, s, {-1.0, 0.5, 0.0, 0.0, 1.0, -0.5, -0.5, 0.0}, 0, 1);
    stokes->ClampLgtColor(s);
    EXPECT_EQ(Stored(s), (Values{0.0, 0.0, 0.0, 0.0, 1.0, -0.5, -0.5, 0.0}));
    // Surfaces: negatives become 0, values above 1 stay.
    SurfColor<SpectralModel<Unpolarized>> r;
    r.Distr().SetLength(3);
    model->SetSurfColor(r, Values{-0.5, 0.5, 1.5}.data());
    EXPECT_EQ(model->ClampSurfColor(r), 3);
    EXPECT_EQ(Stored(r), (Values{0.0, 0.5, 1.5}));
}

TEST_F(SpectralOps, NormalizingDividesTheBandByTheSumOfAllStoredValues) {
    Set(model, c, {1.0, 2.0, 3.0}, 0, 1); // the sum counts the 3 outside the band
    model->NormalizeLgtColor(c);
    EXPECT_EQ(Stored(c), (Values{1.0 / 6.0, 2.0 / 6.0, 3.0}));
    // Black becomes flat over the band: with Stokes unpolarized (1/n, 0, 0, 0).
    RayColor<SpectralModel<StokesPolarization>> ray;
    Set(stokes, ray.Light(), Values(12, 0.0), 1, 2);
    stokes->NormalizeLgtColor(ray);
    EXPECT_EQ(Stored(ray.Light()), (Values{0, 0, 0, 0, 0.5, 0, 0, 0, 0.5, 0, 0, 0}));
}

TEST_F(SpectralOps, HostFactorArraysRunOverTheSpectrogram) {
    Set(model, c, {1.0, 2.0, 4.0}, 0, 2);
    const Values factors{2.0, 3.0, 5.0};
    EXPECT_EQ(model->SumLgtValues(c), 7.0); // no implicit model yet: the model's own count
    model->MulLgtColorByRatio(c, factors.data(), Values{0.0, -1.0, 2.0}.data());
    EXPECT_EQ(Stored(c), (Values{1.0, 2.0, 10.0})); // denominators 0 and -1 change nothing
    TPlugRef<GridModel<Unpolarized>> spectrogram = new GridModel<Unpolarized>(Grid({400, 500}));
    spectrogram->SetAsImplicit();
    EXPECT_EQ(model->SumLgtValues(c), 3.0);
    model->MulLgtColorByArray(c, factors.data());
    EXPECT_EQ(Stored(c), (Values{2.0, 6.0, 10.0}));
}

TEST_F(SpectralOps, AdditionsFollowTheTargetBandAndFactorsScaleWholeVectors) {
    LgtColor<SpectralModel<StokesPolarization>> from;
    Set(stokes, from, {1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3}, 2, 2); // its band is not read
    Set(stokes, s, Values(12, 0.0), 1, 2);
    stokes->AddScaledLgt(from, 0.5, s);
    stokes->DensityToEnergy(s);
    EXPECT_EQ(Stored(s), (Values{0, 0, 0, 0, 150, 150, 150, 150, 150, 150, 150, 150}));
    // A ray adds its intensities inside its band to an array.
    RayColor<SpectralModel<StokesPolarization>> ray;
    Set(stokes, ray.Light(), {1, 9, 9, 9, 2, 9, 9, 9, 3, 9, 9, 9}, 1, 2);
    Values intensities(3, 1.0);
    stokes->AddRayToArray(ray, intensities.data());
    EXPECT_EQ(intensities, (Values{1.0, 3.0, 4.0}));
}
