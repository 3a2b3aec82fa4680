// Holders made by a spectral model hold colours of the model's length, so that conversions and
// arithmetic into a fresh holder reach every wavelength.
#include "HolderTestSupport.h"
#include "tests/support/Tolerances.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/User.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"

namespace Korvane {
namespace {

using Testing::Registered;
using USpectral = SpectralModel<Unpolarized>;
using SSpectral = SpectralModel<StokesPolarization>;

class SpectralHolders : public Registered {};

TEST_F(SpectralHolders, EveryKindHoldsOneZeroComponentPerWavelength) {
    const SSpectral* m = SSpectral::GetModel();
    const int n = m->NWaves();
    TPlugRef<Holder<ILgtColor>> light = m->NewLgtColorHold();
    TPlugRef<Holder<IRayColor>> ray = m->NewRayColorHold();
    TPlugRef<Holder<ISurfColor>> surf = m->NewSurfColorHold();
    TPlugRef<Holder<IScalarColor>> scalar = m->NewScalarColorHold();
    TPlugRef<Holder<IDualLgtColor>> dual = m->NewDualLgtColorHold();
    const auto& l = ColourAccess::Value<SSpectral>(light->Color()).Distr();
    ASSERT_EQ(l.Count(), n);
    EXPECT_EQ(l.First(), 0);
    EXPECT_EQ(l.Last(), n - 1);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(ray->Color()).Light().Distr().Count(), n);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(surf->Color()).Distr().Count(), n);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(scalar->Color()).Distr().Count(), n);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(dual->Color()).Distr().Count(), n);
    const double* s = ColourAccess::Value<SSpectral>(surf->Color()).Values();
    for (int k = 0; k < n * 16; ++k)
        ASSERT_EQ(s[k], 0.0) << "Mueller element " << k;
    TVect3<double> xort;
    ASSERT_TRUE(m->GetXOrt(ray->Color(), xort));
    EXPECT_EQ(xort, TVect3<double>(1.0, 0.0, 0.0));
}

TEST_F(SpectralHolders, AConversionIntoAFreshHolderFillsEveryWavelength) {
    const USpectral* spectral = USpectral::GetModel();
    const RGBModel<Unpolarized>* rgb = RGBModel<Unpolarized>::GetModel();
    TPlugRef<Holder<ILgtColor>> in = rgb->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> out = spectral->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> back = rgb->NewLgtColorHold();
    const double white[3] = {1.0, 1.0, 1.0};
    rgb->SetLgtColor(in->Color(), white);
    ASSERT_EQ(spectral->ConvertColor(rgb, in->Color(), out->Color()), 0);
    const auto& d = ColourAccess::Value<USpectral>(out->Color()).Distr();
    for (int k = 0; k < spectral->NWaves(); ++k)
        EXPECT_GT(d.Get(k)[0], 0.0) << "wavelength " << k;
    // White light has a positive spectrum everywhere, so no clamp changes it: it comes back.
    ASSERT_EQ(rgb->ConvertColor(spectral, out->Color(), back->Color()), 0);
    double rgbBack[3];
    rgb->LgtToArray(back->Color(), rgbBack);
    for (double v : rgbBack)
        EXPECT_NEAR(v, 1.0, Tol::kSpectralRoundTrip);
}

TEST_F(SpectralHolders, ColoursThatCannotBeSizedAreReportedAndNothingIsHandedOut) {
    const USpectral* m = USpectral::GetModel();
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 1);
        EXPECT_EQ(m->NewLgtColorHold(), nullptr);
    }
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 3);
        EXPECT_EQ(m->NewArrayLgtColorHold(4), nullptr);
    }
    const auto reports = ReportLog::Entries();
    ASSERT_EQ(reports.size(), 2u);
    for (const Report& r : reports)
        EXPECT_EQ(r.kind, ReportKind::NoMemory);
    // A sized array holds colours of the model's length.
    TPlugRef<ArrayLgtColorHolder> array = m->NewArrayLgtColorHold(2);
    ASSERT_NE(array.Get(), nullptr);
    EXPECT_EQ(ColourAccess::Value<USpectral>(*array->Element(1)).Distr().Count(), m->NWaves());
}

} // namespace
} // namespace Korvane
