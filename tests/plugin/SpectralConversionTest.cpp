// Conversions into the spectral model: each source branch against the host converter's own
// primitives, the refusals with their messages and codes, and the ray and surface shortcuts.
#include "ModelTestSupport.h"
#include "tests/support/TestModel.h"
#include "tests/support/Tolerances.h"

#include "hostkit/base/GlobTr.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>
#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;
using Values = std::vector<double>;
using USpec = SpectralModel<Unpolarized>;
using SSpec = SpectralModel<StokesPolarization>;
using RGBU = RGBModel<Unpolarized>;
using BWU = BWModel<Unpolarized>;

namespace {

template <class C> // a spectral colour of n wavelengths, or a fixed-size one holding v
C Make(int n, const Values& v = {}) {
    C c;
    if constexpr (std::is_same_v<typename C::Model, USpec> ||
                  std::is_same_v<typename C::Model, SSpec>)
        c.Distr().SetLength(n);
    for (std::size_t k = 0; k < v.size(); ++k)
        c.Values()[k] = v[k];
    return c;
}
template <class C>
Values Of(const C& c) {
    return {c.Values(), c.Values() + c.Count() * C::Component::kSize};
}
std::string Last() {
    return ReportLog::Entries().back().text;
}

class SpectralConversion : public testing::Test {
protected:
    SpectralConversion() { Translations::Clear(); }
    Values Spectrum(const TVect3<double>& rgb, bool reflectance = false) { // the converter's own
        TArray<double> s(10);
        const CIEConvAll& conv = *ColorModel::GetCIEConvAll();
        EXPECT_EQ(reflectance ? conv.RGB2SpectrumAttr(rgb, grid_, s)
                              : conv.RGB2Spectrum(rgb, grid_, s),
                  0);
        return {s.begin(), s.end()};
    }

    Testing::ScopedModelTypes types_;
    MArray<double> grid_ = Grid({400, 430, 460, 490, 520, 550, 580, 610, 640, 670, 700});
    TPlugRef<USpec> u_ = new GridModel<Unpolarized>(grid_);
    TPlugRef<SSpec> s_ = new GridModel<StokesPolarization>(grid_);
    TPlugRef<BWU> bw_ = new BWU();
    TPlugRef<RGBU> rgb_ = new RGBU();
    TPlugRef<XYZModel> xyz_ = new XYZModel();
    TPlugRef<XYYModel> xyy_ = new XYYModel();
};

} // namespace

TEST_F(SpectralConversion, ReconstructedSourcesGiveTheConvertersSpectrum) {
    // Colours with positive spectra, which the closing clamp keeps.
    auto out = Make<LgtColor<USpec>>(11);
    auto scalar = Make<ScalarColor<USpec>>(11);
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), Make<LgtColor<RGBU>>(0, {0.6, 0.5, 0.4}), out), 0);
    EXPECT_EQ(Of(out), Spectrum({0.6, 0.5, 0.4}));
    out.Distr().SetBand(2, 4); // a band the target had is dropped: the whole grid is written
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), Make<LgtColor<RGBU>>(0, {0.6, 0.5, 0.4}), out), 0);
    EXPECT_EQ(out.Distr().First(), 0);
    EXPECT_EQ(out.Distr().Last(), 10);
    EXPECT_EQ(Of(out), Spectrum({0.6, 0.5, 0.4}));
    ASSERT_EQ(u_->ConvertColor(bw_.Get(), Make<LgtColor<BWU>>(0, {0.3}), out), 0);
    EXPECT_EQ(Of(out), Spectrum({0.3, 0.3, 0.3}));
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), Make<ScalarColor<RGBU>>(0, {0.1, 0.9, 0.3}), scalar), 0);
    EXPECT_EQ(Of(scalar), Spectrum({0.1, 0.9, 0.3})); // the light form, not the reflectance

    // xyY is the XYZ (x Y q, Y, q Y - X - Y) with q = 1/y, or 1 when y is 0; XYZ comes back.
    for (const TVect3<double> v : {TVect3<double>(0.3, 0.4, 0.5), TVect3<double>(0.2, 0.0, 0.5)}) {
        const double q = v.y == 0.0 ? 1.0 : 1.0 / v.y;
        const double X = v.x * v.z * q;
        const Values xyz{X, v.z, q * v.z - X - v.z};
        ASSERT_EQ(u_->ConvertColor(xyz_.Get(), Make<LgtColor<RGBU>>(0, xyz), out), 0);
        const Values fromXYZ = Of(out);
        ASSERT_EQ(u_->ConvertColor(xyy_.Get(), Make<LgtColor<RGBU>>(0, {v.x, v.y, v.z}), out), 0);
        EXPECT_EQ(Of(out), fromXYZ);
        TVect3<double> back;
        CIEConv::spectrum2xyz(grid_, BArray<double>(out.Values(), 11), back);
        for (int i = 0; i < 3 && v.y != 0.0; ++i)
            EXPECT_NEAR(back[i], xyz[static_cast<std::size_t>(i)], Tol::kSpectralRoundTrip);
    }
}

TEST_F(SpectralConversion, SpectralSourcesAreResampledPolarizedOnesGivingIntensity) {
    TPlugRef<SSpec> coarse = new GridModel<StokesPolarization>(Grid({380, 520, 780}));
    const auto from = Make<LgtColor<SSpec>>(3, {1, -0.5, 0.25, 0, 2, -0.5, 0.25, 0, 3, 0, 0, 0});
    auto out = Make<LgtColor<USpec>>(11);
    auto scalar = Make<ScalarColor<USpec>>(11);
    ASSERT_EQ(u_->ConvertColor(coarse.Get(), from, out), 0);
    ASSERT_EQ(u_->ConvertColor(coarse.Get(), Make<ScalarColor<SSpec>>(3, {1, 2, 3}), scalar), 0);
    for (int k = 0; k < 11; ++k) { // 1 at 380 nm, 2 at 520 nm, 3 at 780 nm
        const double line =
            grid_[k] <= 520 ? 1 + (grid_[k] - 380) / 140 : 2 + (grid_[k] - 520) / 260;
        EXPECT_NEAR(Of(out)[static_cast<std::size_t>(k)], line, Tol::kResampleRounding);
        EXPECT_NEAR(Of(scalar)[static_cast<std::size_t>(k)], line, Tol::kResampleRounding);
    }
    // Back from the unpolarized model: 380 and 780 nm lie outside 400..700 and hold its ends.
    auto back = Make<ScalarColor<SSpec>>(3);
    ASSERT_EQ(coarse->ConvertColor(u_.Get(), scalar, back), 0);
    EXPECT_EQ(Of(back), (Values{Of(scalar)[0], Of(scalar)[4], Of(scalar)[10]}));

    EXPECT_EQ(u_->ConvertColor(coarse.Get(), Make<LgtColor<SSpec>>(2), out), kErrorMessageCode);
    EXPECT_EQ(Last(), "SPEC light color conversion failure");
}

TEST_F(SpectralConversion, RefusalsReportTheirTextsUnderTheModelsContext) {
    auto light = Make<LgtColor<USpec>>(11);
    auto stokes = Make<LgtColor<SSpec>>(11);
    const auto rgb = Make<LgtColor<RGBU>>(0, {0.2, 0.3, 0.4});
    EXPECT_EQ(s_->ConvertColor(rgb_.Get(), rgb, stokes), kErrorMessageCode);
    EXPECT_EQ(Last(), "Not supported spectral light color conversion");
    TPlugRef<RGBModel<StokesPolarization>> rgbStokes = new RGBModel<StokesPolarization>();
    EXPECT_EQ(u_->ConvertColor(rgbStokes.Get(), LgtColor<RGBModel<StokesPolarization>>(), light),
              kErrorMessageCode);

    // A model of no known kind is an internal error, not translated.
    PlugType type("OtherModel", TColorModel, false, nullptr);
    TPlugRef<Testing::TestModel> other = new Testing::TestModel(&type);
    EXPECT_EQ(u_->ConvertColor(other.Get(), rgb, light), kInternalErrorCode);
    EXPECT_EQ(Last(), "Not supported light color conversion");

    // A one-point grid shows no three colours: the converter refuses; the scalar RGB branch
    // reports the XYZ text on purpose.
    TPlugRef<USpec> point = new GridModel<Unpolarized>(Grid({550}));
    auto one = Make<LgtColor<USpec>>(1);
    auto oneScalar = Make<ScalarColor<USpec>>(1);
    EXPECT_EQ(point->ConvertColor(bw_.Get(), LgtColor<BWU>(), one), kErrorMessageCode);
    EXPECT_EQ(Last(), "Error converting grayscale to spectrum");
    EXPECT_EQ(Translations::LookupCount("SpectralModel<class Korvane::Unpolarized>::ConvertColor",
                                        Last().c_str()),
              1);
    EXPECT_EQ(point->ConvertColor(rgb_.Get(), ScalarColor<RGBU>(), oneScalar), kErrorMessageCode);
    EXPECT_EQ(Last(), "Error converting XYZ to spectrum");

    // A light colour of the model's length takes its reconstruction in place: nothing to
    // allocate. Other lengths (and Stokes light) go through a scratch array, whose failure is
    // reported as no memory (once the converter keeps its tables for the grid).
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), rgb, light), 0);
    auto longer = Make<LgtColor<USpec>>(12);
    auto grey = Make<LgtColor<BWU>>(0, {0.5});
    FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1, /*failAfter=*/true);
    EXPECT_EQ(u_->ConvertColor(rgb_.Get(), rgb, light), 0);
    EXPECT_EQ(u_->ConvertColor(bw_.Get(), grey, light), 0);
    EXPECT_EQ(u_->ConvertColor(rgb_.Get(), rgb, longer), kNoMemoryCode);
    EXPECT_EQ(s_->ConvertColor(bw_.Get(), grey, stokes), kNoMemoryCode);
}

TEST_F(SpectralConversion, SurfacesScaleRGBByItsLargestMagnitudeAndStokesGetsDepolarizers) {
    auto surface = Make<SurfColor<USpec>>(11);
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), Make<SurfColor<RGBU>>(0, {0, 0, 0}), surface), 0);
    EXPECT_EQ(Of(surface), Values(11, 0.0));
    const Values expected = Spectrum({0.8, 0.4, 0.2}, true);
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), Make<SurfColor<RGBU>>(0, {0.8, 0.4, 0.2}), surface), 0);
    for (std::size_t k = 0; k < 11; ++k) // made at (1, 0.5, 0.25) and scaled by 0.8: linear
        EXPECT_NEAR(Of(surface)[k], expected[k], Tol::kSpectralRoundTrip);

    // Into Stokes a grey is the depolarizer times the grey; RGBConvertToSurfaceColor does not
    // scale and gives depolarizers too.
    auto mueller = Make<SurfColor<SSpec>>(11);
    ASSERT_EQ(s_->ConvertColor(bw_.Get(), Make<SurfColor<BWU>>(0, {0.4}), mueller), 0);
    EXPECT_EQ(Of(mueller)[160], 0.4);
    s_->RGBConvertToSurfaceColor({0.8, 0.4, 0.2}, mueller);
    for (std::size_t k = 0; k < 176; ++k)
        EXPECT_EQ(Of(mueller)[k], k % 16 ? 0.0 : expected[k / 16]);
}

TEST_F(SpectralConversion, RaysCarryTheGridWeightsAndRGBRaysTheScaledLuminance) {
    RayColor<SSpec> ray;
    ray.Light().Distr().SetLength(11);
    TPlugRef<BWModel<StokesPolarization>> bwStokes = new BWModel<StokesPolarization>();
    const Values stokes{0.5, 0.1, -0.2, 0.05};
    const auto grey = Make<LgtColor<BWModel<StokesPolarization>>>(0, stokes);
    ASSERT_EQ(s_->ConvertToRayColor(bwStokes.Get(), grey, ray), 0);
    const MArray<double>& w = s_->GetWeights();
    for (std::size_t k = 0; k < 44; ++k)
        EXPECT_EQ(Of(ray.Light())[k], stokes[k % 4] * w[static_cast<int>(k / 4)]);
    EXPECT_EQ(s_->ConvertToRayColor(rgb_.Get(), Make<LgtColor<RGBU>>(0, {1, 1, 1}), ray), -1);

    // Spectra from another grid: resampled, then made band energies.
    TPlugRef<USpec> coarse = new GridModel<Unpolarized>(Grid({400, 700}));
    ASSERT_EQ(s_->SpectralConvertToRayColor(coarse.Get(), Grid({1.0, 2.0}), ray), 0);
    EXPECT_EQ(Of(ray.Light())[40], 2.0 * w[10]);
    EXPECT_EQ(Of(ray.Light())[41], 0.0);

    // Per-nm values (the ray over its weights) have 537/683 of the RGB's luminance.
    const TVect3<double> rgb{0.2, 0.7, 0.1};
    RayColor<USpec> unp;
    unp.Light().Distr().SetLength(11);
    u_->RGBConvertToRayColor(rgb, unp);
    const TVect3<double>& kY = ColorModel::GetCIEConv()->LuminanceCoefs();
    double luminance = 0.0;
    for (int k = 0; k < 11; ++k)
        luminance += unp.Light().Distr()[k][0] / w[k] * u_->GetMassColConv()->LightXYZ()[k].g;
    EXPECT_NEAR(luminance, 537.0 / 683.0 * (kY.x * rgb.x + kY.y * rgb.y + kY.z * rgb.z),
                Tol::kRayScaling);
}

// The model keeps its grid's converter tables (resolved when its converter is renewed). A
// conversion after the host's converter changed, or after the grid changed, must use the new
// converter's tables for the new grid, never the ones kept before.
TEST_F(SpectralConversion, ReconstructionsFollowTheConverterAndTheGridTheModelHasNow) {
    TPlugRef<CIEConvAll> other = CIEConvAll::Create(Observer::CIE1964_10deg);
    ASSERT_TRUE(u_->GridTables());
    const auto rgb = Make<LgtColor<RGBU>>(0, {0.6, 0.5, 0.4});
    auto out = Make<LgtColor<USpec>>(11);
    const Values before = Spectrum({0.6, 0.5, 0.4});

    bw_->ColorModel::SetCIEConvAll(other.Get()); // not told to the model: it looks the grid up
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), rgb, out), 0);
    EXPECT_EQ(Of(out), Spectrum({0.6, 0.5, 0.4}));
    EXPECT_NE(Of(out), before);
    u_->SetCIEConvAll(other.Get()); // told: its tables come from the new converter
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), rgb, out), 0);
    EXPECT_EQ(Of(out), Spectrum({0.6, 0.5, 0.4}));
    u_->SetCIEConvAll(CIEConvAll::Default());
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), rgb, out), 0);
    EXPECT_EQ(Of(out), before);

    grid_.Assign(Grid({400, 450, 500, 550, 600, 650, 700, 710, 720, 730, 740}));
    static_cast<GridModel<Unpolarized>*>(u_.Get())->SetWaveLengths(grid_);
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), rgb, out), 0);
    EXPECT_EQ(Of(out), Spectrum({0.6, 0.5, 0.4}));
    auto surface = Make<SurfColor<USpec>>(11);
    u_->RGBConvertToSurfaceColor({0.2, 0.3, 0.9}, surface);
    EXPECT_EQ(Of(surface), Spectrum({0.2, 0.3, 0.9}, true));
}

// Every failure a host can see from a spectral source whose colour does not fit its grid, and from
// a polarized spectral source where none is taken: the code returned, the kind of report, its
// exact text, and for the spectral model's own texts the translation context it was looked up
// under (the polarized model's own).
TEST_F(SpectralConversion, EveryFailureReportsItsTextKindAndContext) {
    const char* const kUnpContext = "SpectralModel<class Korvane::Unpolarized>::ConvertColor";
    const char* const kStkContext =
        "SpectralModel<class Korvane::StokesPolarization>::ConvertColor";
    const auto longLight = Make<LgtColor<USpec>>(12);
    const auto longSurface = Make<SurfColor<USpec>>(12);
    const auto longScalar = Make<ScalarColor<USpec>>(12);
    const auto longStokes = Make<LgtColor<SSpec>>(12);
    const auto longStokesSurface = Make<SurfColor<SSpec>>(12);
    const auto longStokesScalar = Make<ScalarColor<SSpec>>(12);
    const auto stokes = Make<LgtColor<SSpec>>(11);
    const auto stokesSurface = Make<SurfColor<SSpec>>(11);
    auto light = Make<LgtColor<USpec>>(11);
    auto surface = Make<SurfColor<USpec>>(11);
    auto scalar = Make<ScalarColor<USpec>>(11);
    auto stokesOut = Make<LgtColor<SSpec>>(11);
    auto stokesScalarOut = Make<ScalarColor<SSpec>>(11);
    LgtColor<RGBU> rgbLight;
    SurfColor<RGBU> rgbSurface;
    ScalarColor<RGBU> rgbScalar;
    LgtColor<XYZModel> xyzLight;
    SurfColor<XYZModel> xyzSurface;
    LgtColor<XYYModel> xyyLight;
    SurfColor<XYYModel> xyySurface;
    RayColor<XYZModel> xyzRay;
    RayColor<XYYModel> xyyRay;
    const RGBU& rgb = *rgb_.Get();
    TPlugRef<RGBModel<StokesPolarization>> rgbStokes = new RGBModel<StokesPolarization>();
    const LgtColor<RGBModel<StokesPolarization>> rgbStokesLight{};
    struct Case {
        const char* what;
        std::function<int()> convert;
        int code;
        const char* text;
        const char* context; // null: not looked up for translation
    };
    const Case cases[] = {
        // An unpolarized spectral source of another count gives its first NWaves samples and
        // converts (SampleCountTest); the polarized ones below are refused.
        {"RGB light, Stokes source",
         [&] { return rgb.ConvertColor(s_.Get(), longStokes, rgbLight); }, kErrorMessageCode,
         "RGB light color conversion failure", nullptr},
        {"RGB surface, Stokes source",
         [&] { return rgb.ConvertColor(s_.Get(), longStokesSurface, rgbSurface); },
         kErrorMessageCode, "RGB surface color conversion failure", nullptr},
        {"RGB scalar, Stokes source",
         [&] { return rgb.ConvertColor(s_.Get(), longStokesScalar, rgbScalar); }, kErrorMessageCode,
         "RGB scalar color conversion failure", nullptr},
        {"spectral light", [&] { return u_->ConvertColor(u_.Get(), longLight, light); },
         kErrorMessageCode, "SPEC light color conversion failure", kUnpContext},
        {"spectral surface", [&] { return u_->ConvertColor(u_.Get(), longSurface, surface); },
         kErrorMessageCode, "SPEC surface color conversion failure", kUnpContext},
        {"spectral scalar", [&] { return u_->ConvertColor(s_.Get(), longStokesScalar, scalar); },
         kErrorMessageCode, "SPEC scalar color conversion failure", kUnpContext},
        {"spectral scalar into Stokes",
         [&] { return s_->ConvertColor(s_.Get(), longStokesScalar, stokesScalarOut); },
         kErrorMessageCode, "SPEC scalar color conversion failure", kStkContext},
        {"Stokes light from RGB", [&] { return s_->ConvertColor(rgb_.Get(), rgbLight, stokesOut); },
         kErrorMessageCode, "Not supported spectral light color conversion", kStkContext},
        {"light from Stokes RGB",
         [&] { return u_->ConvertColor(rgbStokes.Get(), rgbStokesLight, light); },
         kErrorMessageCode, "Not supported spectral light color conversion", kUnpContext},
        {"XYZ light", [&] { return xyz_->ConvertColor(s_.Get(), stokes, xyzLight); },
         kErrorMessageCode, "Not supported XYZ light color conversion", nullptr},
        {"XYZ surface", [&] { return xyz_->ConvertColor(s_.Get(), stokesSurface, xyzSurface); },
         kErrorMessageCode, "Not supported XYZ surface color conversion", nullptr},
        {"XYY light", [&] { return xyy_->ConvertColor(s_.Get(), stokes, xyyLight); },
         kErrorMessageCode, "Not supported XYY light color conversion", nullptr},
        {"XYY surface", [&] { return xyy_->ConvertColor(s_.Get(), stokesSurface, xyySurface); },
         kErrorMessageCode, "Not supported XYY surface color conversion", nullptr},
        {"XYZ ray", [&] { return xyz_->ConvertToRayColor(s_.Get(), stokes, xyzRay); },
         kErrorMessageCode, "Not supported light to XYZ ray color conversion", nullptr},
        {"XYY ray", [&] { return xyy_->ConvertToRayColor(s_.Get(), stokes, xyyRay); },
         kErrorMessageCode, "Not supported light to XYY ray color conversion", nullptr},
    };
    // The user object the host installs sees the text itself as the format, and again as the
    // message (not "%s" with the text as its argument).
    struct FormatRecorder : IUser {
        std::vector<std::string> formats, messages;
        int ErrorMessageEx(const char* format, const char* message) override {
            formats.push_back(format ? format : "(null)");
            messages.push_back(message ? message : "(null)");
            return IUser::ErrorMessageEx(format, message);
        }
    } recorder;
    SetUser(&recorder);
    struct Restore {
        ~Restore() { SetUser(nullptr); }
    } restore;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        ReportLog::Clear();
        Translations::Clear();
        recorder.formats.clear();
        recorder.messages.clear();
        EXPECT_EQ(c.convert(), c.code);
        EXPECT_EQ(recorder.formats, std::vector<std::string>{c.text});
        EXPECT_EQ(recorder.messages, std::vector<std::string>{c.text});
        const std::vector<Report> reports = ReportLog::Entries();
        ASSERT_EQ(reports.size(), 1u);
        EXPECT_EQ(reports[0].kind, ReportKind::ErrorMessage);
        EXPECT_EQ(reports[0].text, c.text);
        if (c.context) {
            const char* other = c.context == kUnpContext ? kStkContext : kUnpContext;
            EXPECT_EQ(Translations::LookupCount(c.context, c.text), 1);
            EXPECT_EQ(Translations::LookupCount(other, c.text), 0);
        }
    }

    // An installed translation is what the host is shown, under the polarized model's context.
    Translations::Add(kStkContext, "Not supported spectral surface color conversion",
                      "surface refused (Stokes)");
    ReportLog::Clear();
    auto stokesSurfaceOut = Make<SurfColor<SSpec>>(11);
    EXPECT_EQ(s_->ConvertColor(rgb_.Get(), rgbSurface, stokesSurfaceOut), kErrorMessageCode);
    EXPECT_EQ(Last(), "surface refused (Stokes)");
    // The table is process-wide: later tests in this process see the untranslated text again.
    Translations::Withdraw(kStkContext, "Not supported spectral surface color conversion");
}

// Named edges: a colour from a model on the same grid is copied sample for sample, +inf
// included (the light clamp only touches negatives, so +inf shows); an RGB whose reconstruction
// has a negative luminance is not scaled to it (only a positive sum scales), and its ray keeps
// the weights.
TEST_F(SpectralConversion, SameGridCopiesAndNegativeLuminanceRays) {
    const double inf = std::numeric_limits<double>::infinity();
    TPlugRef<USpec> twin = new GridModel<Unpolarized>(grid_);
    auto source = Make<LgtColor<USpec>>(11);
    auto surfaceSource = Make<SurfColor<USpec>>(11);
    for (int k = 0; k < 11; ++k) {
        source.Values()[k] = k == 4 ? inf : 0.125 * (k + 1);
        surfaceSource.Values()[k] = k == 7 ? inf : 0.0625 * (k + 1);
    }
    auto light = Make<LgtColor<USpec>>(11);
    auto surface = Make<SurfColor<USpec>>(11);
    ASSERT_EQ(u_->ConvertColor(twin.Get(), source, light), 0);
    ASSERT_EQ(u_->ConvertColor(twin.Get(), surfaceSource, surface), 0);
    EXPECT_EQ(Of(light), Of(source));
    EXPECT_EQ(Of(surface), Of(surfaceSource));

    const TVect3<double> dark{-0.2, -0.3, -0.1};
    const Values reconstruction = Spectrum(dark);
    ASSERT_LT(reconstruction[5], 0.0);
    RayColor<USpec> ray;
    ray.Light().Distr().SetLength(11);
    u_->RGBConvertToRayColor(dark, ray);
    const MArray<double>& w = u_->GetWeights();
    for (int k = 0; k < 11; ++k)
        EXPECT_EQ(Of(ray.Light())[k], reconstruction[k] * w[k]) << k;
}

// Grey sources fill every sample (the first included) with their value; a surface from RGB is
// the reflectance reconstruction of the RGB divided by its largest magnitude, scaled back by it
// (bit for bit that product); a Stokes ray from RGB carries the scaled reconstruction as its
// intensities with Q, U and V zero; a one-wavelength model's energy is its single value.
TEST_F(SpectralConversion, GreySurfacesScalarsAndStokesRaysFromRGB) {
    auto surface = Make<SurfColor<USpec>>(11);
    auto scalar = Make<ScalarColor<USpec>>(11);
    ASSERT_EQ(u_->ConvertColor(bw_.Get(), Make<SurfColor<BWU>>(0, {0.4}), surface), 0);
    ASSERT_EQ(u_->ConvertColor(bw_.Get(), Make<ScalarColor<BWU>>(0, {0.7}), scalar), 0);
    EXPECT_EQ(Of(surface), Values(11, 0.4));
    EXPECT_EQ(Of(scalar), Values(11, 0.7));

    const Values unit = Spectrum({1.0, 0.5, 0.25}, true);
    ASSERT_EQ(u_->ConvertColor(rgb_.Get(), Make<SurfColor<RGBU>>(0, {0.8, 0.4, 0.2}), surface), 0);
    for (std::size_t k = 0; k < 11; ++k)
        EXPECT_EQ(Of(surface)[k], unit[k] * 0.8) << k;

    RayColor<SSpec> stokesRay;
    stokesRay.Light().Distr().SetLength(11);
    RayColor<USpec> ray;
    ray.Light().Distr().SetLength(11);
    s_->RGBConvertToRayColor({0.2, 0.7, 0.1}, stokesRay);
    u_->RGBConvertToRayColor({0.2, 0.7, 0.1}, ray);
    for (std::size_t k = 0; k < 44; ++k)
        EXPECT_EQ(Of(stokesRay.Light())[k], k % 4 ? 0.0 : Of(ray.Light())[k / 4]) << k;

    TPlugRef<USpec> point = new GridModel<Unpolarized>(Grid({550}));
    auto one = Make<LgtColor<USpec>>(1, {0.375});
    EXPECT_EQ(point->LgtEnergy(one), 0.375);
}

// A reconstruction the converter refuses (a one-point grid shows no three colours) leaves no
// old values behind: the surface and the ray made from RGB are zero.
TEST_F(SpectralConversion, RefusedRGBReconstructionsGiveZeros) {
    TPlugRef<USpec> point = new GridModel<Unpolarized>(Grid({550}));
    auto surface = Make<SurfColor<USpec>>(1, {0.75});
    point->RGBConvertToSurfaceColor({0.2, 0.7, 0.1}, surface);
    EXPECT_EQ(Of(surface), Values{0.0});
    RayColor<USpec> ray;
    ray.Light().Distr().SetLength(1);
    ray.Light().Values()[0] = 0.75;
    point->RGBConvertToRayColor({0.2, 0.7, 0.1}, ray);
    EXPECT_EQ(Of(ray.Light()), Values{0.0});

    // Stokes: the converter zeroes one double per wavelength; Q, U, V and the other fifteen
    // Mueller elements must not keep their old values either.
    TPlugRef<SSpec> stokesPoint = new GridModel<StokesPolarization>(Grid({550}));
    RayColor<SSpec> stokesRay;
    stokesRay.Light().Distr().SetLength(1);
    for (int c = 0; c < 4; ++c)
        stokesRay.Light().Values()[c] = 0.75 - 0.125 * c;
    stokesPoint->RGBConvertToRayColor({0.2, 0.7, 0.1}, stokesRay);
    EXPECT_EQ(Of(stokesRay.Light()), Values(4, 0.0));
    SurfColor<SSpec> mueller;
    mueller.Distr().SetLength(1);
    for (int c = 0; c < 16; ++c)
        mueller.Values()[c] = 0.5 + c;
    stokesPoint->RGBConvertToSurfaceColor({0.2, 0.7, 0.1}, mueller);
    EXPECT_EQ(Of(mueller), Values(16, 0.0));
}

// A model of this very class clamps a resampled light as it writes it; a derived class keeps
// its own ClampLgtColor. The same bits either way (negatives 0, -0.0 and NaN kept), on lined-up
// grids of two steps and of one and on a grid that does not line up; a derived clamp that keeps
// negatives is the one obeyed.
TEST_F(SpectralConversion, ResampledLightsAreClampedByTheClampOfTheModelsClass) {
    class Unclamped : public GridModel<Unpolarized> {
    public:
        using GridModel<Unpolarized>::GridModel;
        void ClampLgtColor(ILgtColor&) const override {}
    };
    TPlugRef<USpec> own = new USpec(grid_), unclamped = new Unclamped(grid_);
    for (const MArray<double>& from :
         {Testing::EvenGrid(400.0, 15.0, 21), Testing::EvenGrid(370.0, 30.0, 13),
          Testing::EvenGrid(383.0, 17.0, 20)}) {
        TPlugRef<USpec> source = new USpec(from);
        auto light = Make<LgtColor<USpec>>(from.Count());
        for (int k = 0; k < from.Count(); ++k)
            light.Values()[k] = k % 4 == 1   ? -0.0
                                : k == 6     ? std::numeric_limits<double>::quiet_NaN()
                                : k % 4 == 2 ? -0.5 * k
                                             : 0.25 * k;
        auto a = Make<LgtColor<USpec>>(11), b = a, c = a;
        ASSERT_EQ(own->ConvertColor(source.Get(), light, a), 0);
        ASSERT_EQ(u_->ConvertColor(source.Get(), light, b), 0);
        ASSERT_EQ(unclamped->ConvertColor(source.Get(), light, c), 0);
        EXPECT_EQ(std::memcmp(a.Values(), b.Values(), 11 * sizeof(double)), 0) << from[1];
        bool negative = false;
        for (int k = 0; k < 11; ++k)
            negative = negative || c.Values()[k] < 0.0;
        EXPECT_TRUE(negative) << from[1];
    }
}
