// Holders made by a spectral model start with empty colours, as holders made by their types do:
// the host sizes them (here by the distribution's SetLength, or by copying a sized colour).
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

TEST_F(SpectralHolders, EveryKindStartsEmpty) {
    const SSpectral* m = SSpectral::GetModel();
    ReportLog::Clear();
    TPlugRef<Holder<ILgtColor>> light = m->NewLgtColorHold();
    TPlugRef<Holder<IRayColor>> ray = m->NewRayColorHold();
    TPlugRef<Holder<ISurfColor>> surf = m->NewSurfColorHold();
    TPlugRef<Holder<IScalarColor>> scalar = m->NewScalarColorHold();
    TPlugRef<Holder<IDualLgtColor>> dual = m->NewDualLgtColorHold();
    TPlugRef<ArrayLgtColorHolder> array = m->NewArrayLgtColorHold(2);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(light->Color()).Count(), 0);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(ray->Color()).Light().Count(), 0);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(surf->Color()).Count(), 0);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(scalar->Color()).Count(), 0);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(dual->Color()).Count(), 0);
    ASSERT_NE(array.Get(), nullptr);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(*array->Element(0)).Count(), 0);
    EXPECT_EQ(ColourAccess::Value<SSpectral>(*array->Element(1)).Count(), 0);
    TVect3<double> xort;
    ASSERT_TRUE(m->GetXOrt(ray->Color(), xort));
    EXPECT_EQ(xort, TVect3<double>(1.0, 0.0, 0.0));
    EXPECT_EQ(ReportLog::Count(), 0u);
}

// Making holders allocates no samples, so a failing sample allocation changes nothing; an array
// that cannot be sized fails without a message and leaves nothing alive (the test main counts).
TEST_F(SpectralHolders, MakingHoldersAllocatesNoSamples) {
    const USpectral* m = USpectral::GetModel();
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 1, true);
        TPlugRef<Holder<ILgtColor>> light = m->NewLgtColorHold();
        TPlugRef<ArrayLgtColorHolder> array = m->NewArrayLgtColorHold(4);
        EXPECT_NE(light.Get(), nullptr);
        EXPECT_NE(array.Get(), nullptr);
        EXPECT_EQ(FaultInjection::Counted(), 0);
    }
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(m->NewArrayLgtColorHold(4), nullptr);
    }
    EXPECT_EQ(ReportLog::Count(), 0u);
}

TEST_F(SpectralHolders, AConversionIntoAHolderSizedByTheHostFillsEveryWavelength) {
    const USpectral* spectral = USpectral::GetModel();
    const RGBModel<Unpolarized>* rgb = RGBModel<Unpolarized>::GetModel();
    TPlugRef<Holder<ILgtColor>> in = rgb->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> out = spectral->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> copy = spectral->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> back = rgb->NewLgtColorHold();
    ASSERT_EQ(ColourAccess::Value<USpectral>(out->Color()).Distr().SetLength(spectral->NWaves()),
              0);
    const double white[3] = {1.0, 1.0, 1.0};
    rgb->SetLgtColor(in->Color(), white);
    ASSERT_EQ(spectral->ConvertColor(rgb, in->Color(), out->Color()), 0);
    // A colour copied from a sized one is sized too.
    spectral->CopyRangedColor(out->Color(), copy->Color());
    const auto& d = ColourAccess::Value<USpectral>(copy->Color()).Distr();
    ASSERT_EQ(d.Count(), spectral->NWaves());
    for (int k = 0; k < spectral->NWaves(); ++k)
        EXPECT_GT(d.Get(k)[0], 0.0) << "wavelength " << k;
    // White light has a positive spectrum everywhere, so no clamp changes it: it comes back.
    ASSERT_EQ(rgb->ConvertColor(spectral, copy->Color(), back->Color()), 0);
    double rgbBack[3];
    rgb->LgtToArray(back->Color(), rgbBack);
    for (double v : rgbBack)
        EXPECT_NEAR(v, 1.0, Tol::kSpectralRoundTrip);
}

} // namespace
} // namespace Korvane
