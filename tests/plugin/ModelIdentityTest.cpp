// Identity of the five models in both polarizations (codes, kinds, names, types, ranges,
// equality of models) and the colour-access slots, which move values in and out of the colour
// layouts without deciding anything else.
#include "ModelTestSupport.h"

#include "plugin/colour/ColourValues.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <gtest/gtest.h>

#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::ScopedDefaultGrid;
using Korvane::Testing::ScopedModelTypes;

namespace {

// One model of every kind, made as registration makes them.
struct AllModels {
    ScopedModelTypes types;
    ScopedDefaultGrid grid;
    PlugRef models[kModelKindCount] = {new BWModel<Unpolarized>(),
                                       new BWModel<StokesPolarization>(),
                                       new RGBModel<Unpolarized>(),
                                       new RGBModel<StokesPolarization>(),
                                       new SpectralModel<Unpolarized>(),
                                       new SpectralModel<StokesPolarization>(),
                                       new XYZModel(),
                                       new XYYModel()};

    ColorModel& operator[](ModelKind k) const {
        return *static_cast<ColorModel*>(models[static_cast<int>(k)].Get());
    }
};

std::vector<double> Sequence(int n, double start) {
    std::vector<double> v(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        v[static_cast<std::size_t>(i)] = start + i;
    return v;
}

} // namespace

TEST(ModelIdentity, CodesKindsAndNames) {
    AllModels all;
    struct Expected {
        ModelKind kind;
        int code;
        bool polarized;
        int nWaves;
        bool bw, rgb, spectral, xyz, xyy;
    };
    const Expected expected[] = {
        {ModelKind::UBW, 17, false, 1, true, false, false, false, false},
        {ModelKind::StkBW, 18, true, 1, true, false, false, false, false},
        {ModelKind::URGB, 33, false, 3, false, true, false, false, false},
        {ModelKind::StkRGB, 34, true, 3, false, true, false, false, false},
        {ModelKind::USpectr, 65, false, 33, false, false, true, false, false},
        {ModelKind::StkSpectr, 66, true, 33, false, false, true, false, false},
        {ModelKind::XYZ, 129, false, 3, false, false, false, true, false},
        {ModelKind::XYY, 257, false, 3, false, false, false, false, true},
    };
    for (const Expected& e : expected) {
        const ColorModel& m = all[e.kind];
        PlugType* type = ScopedModelTypes::Type(e.kind);
        SCOPED_TRACE(type->Ident());
        EXPECT_EQ(m.GetModelCode(), e.code);
        EXPECT_EQ(m.HasPolarization(), e.polarized);
        EXPECT_EQ(m.NWaves(), e.nWaves);
        EXPECT_EQ(m.IsBW(), e.bw);
        EXPECT_EQ(m.IsRGB(), e.rgb);
        EXPECT_EQ(m.IsSpectral(), e.spectral);
        EXPECT_EQ(m.IsXYZ(), e.xyz);
        EXPECT_EQ(m.IsXYY(), e.xyy);
        EXPECT_EQ(m.ObjType(), type);
        EXPECT_EQ(m.Name(), type->Ident()); // found in the host's registry by its identifier
    }
    EXPECT_EQ(BWModel<StokesPolarization>::ClassType(), ScopedModelTypes::Type(ModelKind::StkBW));
    EXPECT_EQ(SpectralModel<Unpolarized>::GetModel(), nullptr); // nothing registered
}

TEST(ModelIdentity, RangesAreThreeUnitIntervalsKeptByCopies) {
    AllModels all;
    for (ModelKind k : {ModelKind::UBW, ModelKind::StkRGB, ModelKind::XYZ, ModelKind::XYY}) {
        const BBox1<double>* ranges = nullptr;
        ASSERT_EQ(all[k].Wavelengths(ranges), 3);
        for (int c = 0; c < 3; ++c) {
            EXPECT_EQ(ranges[c].lo, 0.0);
            EXPECT_EQ(ranges[c].hi, 1.0);
        }
    }
    const BBox1<double>* none = nullptr;
    EXPECT_EQ(all[ModelKind::USpectr].Wavelengths(none), 0);
    EXPECT_EQ(none, nullptr);

    BWModel<Unpolarized> copy(static_cast<BWModel<Unpolarized>&>(all[ModelKind::UBW]));
    const BBox1<double>* copied = nullptr;
    ASSERT_EQ(copy.Wavelengths(copied), 3);
    EXPECT_EQ(copied[2].hi, 1.0);
    EXPECT_EQ(copy.Name(), "UBW");
}

TEST(ModelIdentity, ModelsAreEqualOnlyToModelsOfTheirType) {
    AllModels all;
    const ColorModel& rgb = all[ModelKind::URGB];
    RGBModel<Unpolarized> twin(static_cast<const RGBModel<Unpolarized>&>(rgb));
    EXPECT_TRUE(rgb.IsEqual(&twin));
    EXPECT_FALSE(rgb.IsEqual(nullptr));
    EXPECT_FALSE(rgb.IsEqual(&all[ModelKind::StkRGB]));
    EXPECT_FALSE(rgb.IsEqual(&all[ModelKind::XYZ])); // same colour layout, another model
    EXPECT_FALSE(all[ModelKind::XYZ].IsEqual(&all[ModelKind::XYY]));
    // Spectral models on the same grid are still different models across polarizations.
    EXPECT_FALSE(all[ModelKind::USpectr].IsEqual(&all[ModelKind::StkSpectr]));
}

TEST(FixedColourAccess, StokesRGBValuesTravelInLayoutOrder) {
    AllModels all;
    const ColorModel& m = all[ModelKind::StkRGB];
    using M = RGBModel<StokesPolarization>;

    const std::vector<double> light = Sequence(12, 1.0);
    LgtColor<M> lgt;
    m.SetLgtColor(lgt, light.data());
    EXPECT_EQ(lgt.Channel(1)[kStokesI], 5.0); // green's Stokes vector follows red's four
    std::vector<double> out(12, -1.0);
    m.LgtToArray(lgt, out.data());
    EXPECT_EQ(out, light);

    const std::vector<double> surface = Sequence(48, 100.0);
    SurfColor<M> surf;
    m.SetSurfColor(surf, surface.data());
    std::vector<double> surfOut(48, -1.0);
    m.SurfToArray(surf, surfOut.data());
    EXPECT_EQ(surfOut, surface);
    EXPECT_EQ(surf.Channel(2)[MuellerIndex(0, 0)], 132.0); // blue's matrix starts at value 32

    const float floats[12] = {0.5f, 0.25f, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0};
    m.SetFromFloats(lgt, floats);
    EXPECT_EQ(lgt[1], 0.25);
    EXPECT_EQ(lgt[8], 2.0);

    // A ray colour reads as one intensity per channel; filling keeps the X orientation.
    RayColor<M> ray;
    ray.Light() = lgt;
    m.SetXOrt(ray, TVect3<double>(0.0, 0.0, 1.0));
    double intensities[3] = {};
    m.RayToArray(ray, intensities);
    EXPECT_EQ(intensities[0], 0.5);
    EXPECT_EQ(intensities[1], 1.0);
    EXPECT_EQ(intensities[2], 2.0);
    m.FillColor(ray, 7.0);
    for (int ch = 0; ch < 3; ++ch) {
        EXPECT_EQ(ray.Light().Channel(ch)[kStokesI], 7.0);
        EXPECT_EQ(ray.Light().Channel(ch)[kStokesQ], 0.0);
        EXPECT_EQ(ray.Light().Channel(ch)[kStokesV], 0.0);
    }
    EXPECT_EQ(ray.XOrt(), TVect3<double>(0.0, 0.0, 1.0));
}

TEST(FixedColourAccess, RayEqualityAndCopiesIncludeTheXOrientation) {
    AllModels all;
    const ColorModel& bw = all[ModelKind::StkBW];
    using M = BWModel<StokesPolarization>;
    RayColor<M> a;
    bw.FillColor(a, 0.5);
    RayColor<M> b = a;
    EXPECT_TRUE(bw.IsEqualRayColor(a, b));
    bw.SetXOrt(b, TVect3<double>(0.0, 1.0, 0.0));
    EXPECT_FALSE(bw.IsEqualRayColor(a, b));
    TVect3<double> xort(9.0, 9.0, 9.0);
    ASSERT_TRUE(bw.GetXOrt(b, xort));
    EXPECT_EQ(xort, TVect3<double>(0.0, 1.0, 0.0));

    bw.CopyRangedColor(b, a); // all 7 doubles: Stokes vector and X orientation
    EXPECT_TRUE(bw.IsEqualRayColor(a, b));

    // Unpolarized colours have no X orientation: nothing is read or written.
    const ColorModel& rgb = all[ModelKind::URGB];
    RayColor<RGBModel<Unpolarized>> plain;
    xort = TVect3<double>(9.0, 9.0, 9.0);
    EXPECT_FALSE(rgb.GetXOrt(plain, xort));
    EXPECT_EQ(xort, TVect3<double>(9.0, 9.0, 9.0));
}

TEST(FixedColourAccess, RangedSetsFollowTheModel) {
    AllModels all;
    const double values[3] = {0.1, 0.2, 0.3};

    LgtColor<RGBModel<Unpolarized>> rgb;
    all[ModelKind::URGB].SetRangedColor(rgb, values);
    EXPECT_EQ(rgb[2], 0.3);

    // The polarized RGB model clears the first three doubles (S0..S2 of red) instead.
    LgtColor<RGBModel<StokesPolarization>> stokes;
    const std::vector<double> ones(12, 1.0);
    all[ModelKind::StkRGB].SetLgtColor(stokes, ones.data());
    all[ModelKind::StkRGB].SetRangedColor(stokes, values);
    EXPECT_EQ(stokes[0], 0.0);
    EXPECT_EQ(stokes[2], 0.0);
    EXPECT_EQ(stokes[3], 1.0);

    // Grey colours have no range: untouched.
    LgtColor<BWModel<Unpolarized>> grey;
    grey[0] = 4.0;
    all[ModelKind::UBW].SetRangedColor(grey, values);
    EXPECT_EQ(grey[0], 4.0);
}

TEST(SpectralColourAccess, BandDecidesWhatReadsAndRangedWritesSee) {
    AllModels all;
    const ColorModel& m = all[ModelKind::USpectr];
    const int n = m.NWaves();
    LgtColor<SpectralModel<Unpolarized>> lgt;
    ASSERT_EQ(lgt.Distr().SetLength(n), 0);
    const std::vector<double> ramp = Sequence(n, 1.0);
    m.SetLgtColor(lgt, ramp.data()); // every stored value, whatever the band
    lgt.Distr().SetBand(2, 5);

    std::vector<double> out(static_cast<std::size_t>(n), -1.0);
    m.LgtToArray(lgt, out.data());
    EXPECT_EQ(out[1], 0.0);
    EXPECT_EQ(out[2], 3.0);
    EXPECT_EQ(out[5], 6.0);
    EXPECT_EQ(out[6], 0.0);

    const std::vector<double> tens(static_cast<std::size_t>(n), 10.0);
    m.SetRangedColor(lgt, tens.data()); // outside the band the writes are lost
    EXPECT_EQ(lgt.Distr()[3][0], 10.0);
    EXPECT_EQ(lgt.Distr()[7][0], 8.0);

    // A ranged copy takes the band along; equality looks at the values only.
    LgtColor<SpectralModel<Unpolarized>> copy;
    m.CopyRangedColor(lgt, copy);
    EXPECT_EQ(copy.Distr().Count(), n);
    EXPECT_EQ(copy.Distr().First(), 2);
    EXPECT_EQ(copy.Distr().Last(), 5);
    EXPECT_TRUE(m.IsEqualLgtColor(lgt, copy));
    copy.Distr().SetBand(0, n - 1);
    EXPECT_TRUE(m.IsEqualLgtColor(lgt, copy));
    copy.Distr()[0][0] = -1.0;
    EXPECT_FALSE(m.IsEqualLgtColor(lgt, copy));
}

TEST(SpectralColourAccess, StokesValuesCarryFourOrSixteenDoublesPerWavelength) {
    AllModels all;
    const ColorModel& m = all[ModelKind::StkSpectr];
    using M = SpectralModel<StokesPolarization>;
    const int n = m.NWaves();

    RayColor<M> ray;
    ASSERT_EQ(ray.Light().Distr().SetLength(n), 0);
    const std::vector<double> stokes = Sequence(4 * n, 0.0);
    m.SetLgtColor(ray.Light(), stokes.data());
    ray.Light().Distr().SetBand(1, n - 1);
    std::vector<double> intensities(static_cast<std::size_t>(n), -1.0);
    m.RayToArray(ray, intensities.data());
    EXPECT_EQ(intensities[0], 0.0); // outside the band
    EXPECT_EQ(intensities[1], 4.0); // I of wavelength 1
    EXPECT_EQ(intensities[static_cast<std::size_t>(n - 1)], 4.0 * (n - 1));

    // A ranged set stores I and clears Q, U, V; a fill does the same on every stored wavelength.
    const std::vector<double> values(static_cast<std::size_t>(n), 2.0);
    m.SetRangedColor(ray.Light(), values.data());
    EXPECT_EQ(ray.Light().Distr()[1], (StkLightComp{{2.0, 0.0, 0.0, 0.0}}));
    EXPECT_EQ(ray.Light().Distr()[0], (StkLightComp{{0.0, 1.0, 2.0, 3.0}})); // outside: kept
    m.FillColor(ray, 3.0);
    EXPECT_EQ(ray.Light().Distr()[0], (StkLightComp{{3.0, 0.0, 0.0, 0.0}}));

    SurfColor<M> surf;
    ASSERT_EQ(surf.Distr().SetLength(n), 0);
    const std::vector<double> mueller = Sequence(16 * n, 0.5);
    m.SetSurfColor(surf, mueller.data());
    std::vector<double> back(mueller.size(), -1.0);
    m.SurfToArray(surf, back.data());
    EXPECT_EQ(back, mueller);
    SurfColor<M> other;
    m.CopyColor(surf, other);
    EXPECT_TRUE(m.IsEqualSurfColor(surf, other));
}
