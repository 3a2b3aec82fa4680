// The RGB model in both polarizations: every source branch of its conversions against values
// computed from the converter's own primitives (M, N, spectrum2xyz, Spectr2RGB), spectra that
// give their colour back, failure reports and codes, the energy a ray colour takes over from a
// spectral light, and arithmetic that keeps a polarized channel a whole Stokes vector.
#include "ModelTestSupport.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/RGBOps.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/support/TestModel.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

using namespace Korvane;
using RGBOps::Intensities;
using T3 = TVect3<double>;
using U = Unpolarized;
using S = StokesPolarization;
using RU = RGBModel<U>;
using RS = RGBModel<S>;
using SpU = SpectralModel<U>;
using SpS = SpectralModel<S>;

namespace {

// A spectral model whose light energy the test fixes.
template <class Pol>
struct FixedEnergyModel : SpectralModel<Pol> {
    double energy = 0.0;
    double LgtEnergy(const ILgtColor&) const override { return energy; }
};

struct Models {
    Testing::ScopedModelTypes types;
    Testing::ScopedDefaultGrid grid;
    TPlugRef<RU> rgbU{new RU()};
    TPlugRef<RS> rgbS{new RS()};
    TPlugRef<BWModel<S>> bwS{new BWModel<S>()};
    TPlugRef<XYZModel> xyz{new XYZModel()};
    TPlugRef<XYYModel> xyy{new XYYModel()};
    TPlugRef<FixedEnergyModel<U>> specU{new FixedEnergyModel<U>()};
    TPlugRef<FixedEnergyModel<S>> specS{new FixedEnergyModel<S>()};
    const MArray<double>& waves = specU->GetWaveLengths();
};

const CIEConv& Cie() {
    return *ColorModel::GetCIEConv();
}

template <class V>
V Make(const T3& v) {
    V c;
    RGBOps::SetIntensities(c, v);
    return c;
}

// `from`, a colour of `src`, converted by `dst` into a new To; the status must be 0.
template <class To, class D, class Src, class From>
To Convert(const TPlugRef<D>& dst, const TPlugRef<Src>& src, const From& from) {
    To to;
    EXPECT_EQ(dst->ConvertColor(src.Get(), from, to), 0);
    return to;
}

// A light (or reflectance) spectrum of colour (0.2, 0.5, 0.1), times f.
TArray<double> Spectrum(const MArray<double>& waves, bool attr, double f = 1.0) {
    TArray<double> s(10);
    const CIEConvAll& conv = *CIEConvAll::Default();
    EXPECT_EQ(attr ? conv.RGB2SpectrumAttr({0.2, 0.5, 0.1}, waves, s)
                   : conv.RGB2Spectrum({0.2, 0.5, 0.1}, waves, s),
              0);
    for (double& v : s)
        v *= f;
    return s;
}

// A spectral colour of the samples s; when polarized, element k of sample i is s[i] kScale[k % 4].
constexpr double kScale[4] = {1.0, 0.5, -0.25, 0.1};
template <class C>
C Spectral(const TArray<double>& s) {
    C c;
    c.Distr().SetLength(s.Count());
    for (int i = 0; i < s.Count(); ++i)
        for (int k = 0; k < C::Component::kSize; ++k)
            c.Distr()[i][k] = s[i] * kScale[k % 4];
    return c;
}

// Channel c is the Stokes vector (v[c], v[c] / 2, -v[c] / 4, v[c] / 8).
LgtColor<RS> Stokes(const T3& v) {
    LgtColor<RS> c;
    for (int ch = 0; ch < 3; ++ch)
        c.Channel(ch) = {{v[ch], v[ch] / 2, -v[ch] / 4, v[ch] / 8}};
    return c;
}

// The code tells the kind of report (InternalError 2, ErrorMessageEx 3, ErrorNoMemory 4).
void ExpectReport(int code, int wantCode, const std::string& text) {
    EXPECT_EQ(code, wantCode) << text;
    EXPECT_EQ(ReportLog::Entries().back().text, text);
}

} // namespace

TEST(RGBModelConversion, FixedSizeSourcesByChannelOrThroughM) {
    Models m;
    LgtColor<BWModel<S>> bw;
    for (int k = 0; k < 4; ++k)
        bw[k] = kScale[k];
    const auto stk = Convert<LgtColor<RS>>(m.rgbS, m.bwS, bw);
    for (int k = 0; k < 12; ++k)
        EXPECT_EQ(stk[k], kScale[k % 4]);
    EXPECT_EQ(Intensities(Convert<LgtColor<RU>>(m.rgbU, m.rgbS, stk)), T3(1, 1, 1));
    SurfColor<RS> mueller;
    mueller[1] = 7.0;
    EXPECT_EQ(m.rgbS->ConvertColor(m.rgbU.Get(), Make<SurfColor<RU>>({1, 2, 3}), mueller), 0);
    EXPECT_EQ(mueller, Make<SurfColor<RS>>({1, 2, 3})); // (0,0) set, all else 0

    // XYZ (0, 1, 0) is out of gamut, red and blue negative: only a Stokes light keeps them.
    const T3 g = Cie().XYZ2RGB() * T3(0, 1, 0);
    ASSERT_TRUE(g.x < 0.0 && g.z < 0.0);
    const auto green = Make<LgtColor<XYZModel>>({0, 1, 0});
    EXPECT_EQ(Intensities(Convert<LgtColor<RS>>(m.rgbS, m.xyz, green)), g);
    EXPECT_EQ(Intensities(Convert<LgtColor<RU>>(m.rgbU, m.xyz, green)), T3(0, g.y, 0));
    EXPECT_EQ(
        Intensities(Convert<SurfColor<RS>>(m.rgbS, m.xyz, Make<SurfColor<XYZModel>>({0, 1, 0}))),
        T3(0, g.y, 0));
    // The light clamp sets only what is below 0: a -0 channel (row 0 of M is (+, -, -), so
    // XYZ (-0, +0, +0) gives three -0 products) stays -0, NaN stays NaN.
    const TMatrix3& M = Cie().XYZ2RGB();
    ASSERT_TRUE(M[0][0] > 0.0 && M[0][1] < 0.0 && M[0][2] < 0.0);
    const auto negZero =
        Convert<LgtColor<RU>>(m.rgbU, m.xyz, Make<LgtColor<XYZModel>>({-0.0, 0, 0}));
    EXPECT_TRUE(negZero[0] == 0.0 && std::signbit(negZero[0]));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto notANumber =
        Convert<LgtColor<RU>>(m.rgbU, m.xyz, Make<LgtColor<XYZModel>>({nan, 0, 0}));
    for (int c = 0; c < 3; ++c)
        EXPECT_TRUE(std::isnan(notANumber[c])) << c;
    // xyY with y = 0 reads 1/y as 1: (0.3, 0, 0.5) is XYZ (0.15, 0.5, -0.15), Z clamped.
    EXPECT_EQ(
        Intensities(Convert<LgtColor<RS>>(m.rgbS, m.xyy, Make<LgtColor<XYYModel>>({0.3, 0, 0.5}))),
        Cie().XYZ2RGB() * T3(0.3 * 0.5, 0.5, 0));
    // A scalar is one value v in all three coordinates: xyY v is XYZ (v, v, 1 - 2v) clamped.
    EXPECT_EQ(Intensities(Convert<ScalarColor<RU>>(m.rgbU, m.xyy,
                                                   Make<ScalarColor<XYYModel>>({0.75, 9, 9}))),
              Cie().XYZ2RGB() * T3(0.75, 0.75, 0));
}

TEST(RGBModelConversion, SpectraGiveTheirColourBack) {
    Models m;
    const auto near = [](const T3& got, const T3& want) {
        for (int c = 0; c < 3; ++c)
            EXPECT_NEAR(got[c], want[c], Tol::kSpectralRoundTrip * want[c]) << c;
    };
    const TArray<double> s = Spectrum(m.waves, false);
    const TArray<double> r3 = Spectrum(m.waves, true, 3.0);
    near(Intensities(Convert<LgtColor<RS>>(m.rgbS, m.specU, Spectral<LgtColor<SpU>>(s))),
         {0.2, 0.5, 0.1});
    near(Intensities(Convert<ScalarColor<RU>>(m.rgbU, m.specU, Spectral<ScalarColor<SpU>>(s))),
         {0.2, 0.5, 0.1});
    // Three times the reflectance has green 1.5: ClipRGBScale divides the triple by it.
    near(Intensities(Convert<SurfColor<RU>>(m.rgbU, m.specU, Spectral<SurfColor<SpU>>(r3))),
         {0.4, 1.0, 0.2});

    // Polarized: element k of every sample is one spectrum; surfaces are not clipped.
    const auto stk = Convert<LgtColor<RS>>(m.rgbS, m.specS, Spectral<LgtColor<SpS>>(s));
    const auto mueller = Convert<SurfColor<RS>>(m.rgbS, m.specS, Spectral<SurfColor<SpS>>(r3));
    for (int k = 0; k < 16; ++k) {
        TArray<double> sk(s), rk(r3);
        for (int i = 0; i < s.Count(); ++i) {
            sk[i] *= kScale[k % 4];
            rk[i] *= kScale[k % 4];
        }
        const T3 light = Cie().Spectr2RGB(sk, m.waves, false);
        const T3 surf = Cie().Spectr2RGBAttr(rk, m.waves, false);
        for (int c = 0; c < 3; ++c) {
            if (k < 4) {
                EXPECT_EQ(stk.Channel(c)[k], light[c]) << k << " " << c;
            }
            EXPECT_EQ(mueller.Channel(c)[k], surf[c]) << k << " " << c;
        }
    }
    EXPECT_GT(mueller.Channel(1)[0], 1.0);
}

TEST(RGBModelConversion, FailuresReportTheirTextAndCode) {
    Models m;
    PlugType otherType{"RGBTestOtherModel", TColorModel, false, nullptr};
    const Testing::TestModel other(&otherType);
    LgtColor<RS> lgt;
    SurfColor<RS> surf;
    ScalarColor<RS> scalar;
    const int internal = kInternalErrorCode, message = kErrorMessageCode;
    ExpectReport(m.rgbS->ConvertColor(&other, lgt, lgt), internal,
                 "Not supported light color conversion");
    ExpectReport(m.rgbS->ConvertColor(nullptr, surf, surf), internal,
                 "Not supported surface color conversion");
    ExpectReport(m.rgbS->ConvertColor(&other, scalar, scalar), internal,
                 "Not supported scalar color conversion");

    // Polarized spectral colours of 5 samples on a grid of 33 fail with the conversion's report;
    // the ray conversion refuses silently. (Unpolarized ones convert as their first samples:
    // SampleCountTest.)
    TArray<double> five(10);
    five.Alloc(5);
    five.Fill(1.0);
    const auto shortLight = Spectral<LgtColor<SpS>>(five);
    ExpectReport(m.rgbS->ConvertColor(m.specS.Get(), shortLight, lgt), message,
                 "RGB light color conversion failure");
    ExpectReport(m.rgbS->ConvertColor(m.specS.Get(), Spectral<SurfColor<SpS>>(five), surf), message,
                 "RGB surface color conversion failure");
    ReportLog::Clear();
    RayColor<RS> ray;
    EXPECT_EQ(m.rgbS->ConvertToRayColor(m.specS.Get(), shortLight, ray), -1);
    EXPECT_EQ(ReportLog::Count(), 0u);

    // No scratch spectrum: no memory on the unpolarized paths, a failure on the polarized ones.
    const TArray<double> s = Spectrum(m.waves, false);
    const auto unp = Spectral<ScalarColor<SpU>>(s);
    const auto pol = Spectral<LgtColor<SpS>>(s);
    FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1, true);
    ExpectReport(m.rgbU->ConvertColor(m.specU.Get(), unp, scalar), kNoMemoryCode, "out of memory");
    ExpectReport(m.rgbS->ConvertToRayColor(m.specS.Get(), pol, ray), message,
                 "Light to RGB ray color conversion failure");
}

TEST(RGBModelRay, SpectralLightCarriesTheSourceEnergy) {
    Models m;
    const TArray<double> s = Spectrum(m.waves, false);
    const auto unp = Spectral<LgtColor<SpU>>(s);
    const auto plain = Convert<LgtColor<RU>>(m.rgbU, m.specU, unp);
    RayColor<RU> ray;
    ASSERT_EQ(m.rgbU->ConvertToRayColor(m.specU.Get(), unp, ray), 0);
    EXPECT_EQ(ray.Light(), plain); // energy 0: unscaled
    // The samples are read in place: nothing is allocated, so every allocation may fail.
    m.specU->energy = 2.5;
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1, true);
        ASSERT_EQ(m.rgbU->ConvertToRayColor(m.specU.Get(), unp, ray), 0);
    }
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(ray.Light()[c], plain[c] * (2.5 / RGBOps::SumIntensities(plain)));
    EXPECT_NEAR(RGBOps::SumIntensities(ray.Light()), 2.5, 2.5 * Tol::kRGBRayEnergy);
    // With the spectral model's own energy, R + G + B of the ray is that energy.
    TPlugRef<SpU> spectral{new SpU()};
    ASSERT_EQ(m.rgbU->ConvertToRayColor(spectral.Get(), unp, ray), 0);
    const double e = spectral->LgtEnergy(unp);
    EXPECT_NEAR(RGBOps::SumIntensities(ray.Light()), e, e * Tol::kRGBRayEnergy);
    // The library's own model reads its samples in place and its own energy: the same bits as
    // another model of its grid and energy, for a banded light too (stored samples, band energy).
    LgtColor<SpU> banded = unp;
    banded.Distr().SetBand(3, s.Count() - 4);
    const LgtColor<SpU>* lights[] = {&unp, &banded};
    for (const LgtColor<SpU>* c : lights) {
        m.specU->energy = spectral->LgtEnergy(*c);
        RayColor<RU> own, other;
        ASSERT_EQ(m.rgbU->ConvertToRayColor(spectral.Get(), *c, own), 0);
        ASSERT_EQ(m.rgbU->ConvertToRayColor(m.specU.Get(), *c, other), 0);
        EXPECT_EQ(own.Light(), other.Light());
    }
    EXPECT_NE(m.specU->energy, e);

    // Polarized: all twelve values scaled by E / (sum of intensities); X orientation kept.
    const auto pol = Spectral<LgtColor<SpS>>(s);
    const auto stk = Convert<LgtColor<RS>>(m.rgbS, m.specS, pol);
    m.specS->energy = 4.0;
    RayColor<RS> stkRay;
    stkRay.XOrt() = {0.0, 0.0, 1.0};
    ASSERT_EQ(m.rgbS->ConvertToRayColor(m.specS.Get(), pol, stkRay), 0);
    for (int k = 0; k < 12; ++k)
        EXPECT_EQ(stkRay.Light()[k], stk[k] * (4.0 / RGBOps::SumIntensities(stk))) << k;
    EXPECT_EQ(stkRay.XOrt(), T3(0, 0, 1));

    // A spectrum of the source's grid, 1 at 500 nm only: a green with negative red, which the
    // unpolarized model clamps.
    MArray<double> spike(10);
    spike.Alloc(m.waves.Count());
    spike.Fill(0.0);
    spike[11] = 1.0;
    ASSERT_EQ(m.rgbS->SpectralConvertToRayColor(m.specU.Get(), spike, stkRay), 0);
    ASSERT_EQ(m.rgbU->SpectralConvertToRayColor(m.specU.Get(), spike, ray), 0);
    const T3 g = Intensities(stkRay.Light());
    ASSERT_LT(g.x, 0.0);
    EXPECT_EQ(Intensities(ray.Light()), T3(0, g.y, g.z));
}

TEST(RGBModelArithmetic, StokesChannelsChangeAsWholeVectors) {
    Models m;
    LgtColor<RS> c = Stokes({1, 2, 4});
    m.rgbS->AddLgtColor(Stokes({1, 1, 1}), c);
    m.rgbS->ScaleLgtColor(c, 2.0);
    const double factors[3] = {0.5, 2.0, 0.25};
    m.rgbS->MulLgtColorByArray(c, factors);
    EXPECT_EQ(c, Stokes({2, 12, 2.5}));
    // A ratio whose denominator is not above 0 (0, NaN) leaves its channel alone.
    const double a[3] = {3.0, 5.0, 5.0}, b[3] = {2.0, 0.0, std::nan("")};
    m.rgbS->MulLgtColorByRatio(c, a, b);
    RayColor<RS> ray;
    ray.Light() = Stokes({1, 1, 1});
    m.rgbS->AddScaledLgt3(ray, 2.0, c);
    EXPECT_EQ(c, Stokes({5, 14, 4.5}));

    // Normalizing scales the intensities to sum 1; black becomes 1/3 each; a negative sum
    // divides all the same.
    c = Stokes({1, 2, 5});
    m.rgbS->NormalizeLgtColor(c);
    EXPECT_EQ(c, Stokes({0.125, 0.25, 0.625}));
    ray.Light() = Stokes({0, 0, 0});
    m.rgbS->NormalizeLgtColor(ray);
    EXPECT_EQ(ray.Light(), Make<LgtColor<RS>>({1.0 / 3, 1.0 / 3, 1.0 / 3}));
    auto u = Make<LgtColor<RU>>({-2, 1, 0});
    m.rgbU->NormalizeLgtColor(u);
    EXPECT_EQ(Intensities(u), T3(2, -1, 0));
}

TEST(RGBModelArithmetic, EnergiesLuminanceValidityAndDisplayReadIntensities) {
    Models m;
    const CIEConvAll& conv = *ColorModel::GetCIEConvAll();
    const LgtColor<RS> s = Stokes({0.25, 0.5, 2.0});
    EXPECT_EQ(m.rgbS->LgtEnergy(s), 2.75);
    // The luminance weights are the middle row of N: the luminance is the colour's Y.
    EXPECT_EQ(m.rgbS->LgtLuminance(s), (conv.RGB2XYZ() * T3(0.25, 0.5, 2.0)).y);
    EXPECT_EQ(m.rgbS->SumLgtValues(s), conv.RGB2Watts({0.25, 0.5, 2.0}));
    m.rgbU->SetCIEConvAll(nullptr);
    EXPECT_EQ(m.rgbS->LgtLuminance(s) + m.rgbS->SumLgtValues(s), 0.0);
    TArray<double> spectrum(10);
    EXPECT_EQ(BRGBModel::RGB2Spectrum({0.2, 0.5, 0.1}, m.waves, spectrum, false), -1);
    m.rgbU->SetCIEConvAll(&conv);
    ASSERT_EQ(BRGBModel::RGB2Spectrum({0.2, 0.5, 0.1}, m.waves, spectrum, true), 0);
    EXPECT_EQ(spectrum, Spectrum(m.waves, true));

    EXPECT_TRUE(m.rgbS->IsValidLgtColor(s)); // its negative U does not count
    auto c = Make<LgtColor<RU>>({-1, 2, -0.5});
    m.rgbU->ClampLgtColor(c);
    EXPECT_EQ(Intensities(c), T3(0, 2, 0));
    LgtColor<RS> neg = Stokes({-1, 2, -0.5});
    m.rgbS->ClampLgtColor(neg);
    EXPECT_EQ(neg, Stokes({-1, 2, -0.5}));
    // Surfaces: [0, 1] ends included; a Mueller matrix has its (0,0) clamped, the rest kept.
    EXPECT_TRUE(m.rgbU->IsValidSurfColor(Make<SurfColor<RU>>({0, 1, 0.5})));
    auto mueller = Make<SurfColor<RS>>({-0.5, 0.5, 1.5});
    mueller[1] = -0.5;
    EXPECT_FALSE(m.rgbS->IsValidSurfColor(mueller));
    EXPECT_EQ(m.rgbS->ClampSurfColor(mueller), 0);
    EXPECT_EQ(Intensities(mueller), T3(0, 0.5, 1));
    EXPECT_EQ(mueller[1], -0.5);
    auto bright = Make<SurfColor<RU>>({0.5, 1.5, 0.25}); // above 1 alone is outside too
    EXPECT_FALSE(m.rgbU->IsValidSurfColor(bright));
    m.rgbU->ClampSurfColor(bright);
    EXPECT_EQ(Intensities(bright), T3(0.5, 1, 0.25));

    // Display: by the largest magnitude, then negatives 0; LgtColorToRGB: clamp, then by the sum.
    T3 rgb;
    m.rgbS->LgtColorToDisplayRGB(Stokes({-2, 1, 0}), rgb);
    EXPECT_EQ(rgb, T3(0, 0.5, 0));
    m.rgbU->LgtColorToDisplayRGB(Make<LgtColor<RU>>({0, 0, 0}), rgb);
    EXPECT_EQ(rgb, T3(1, 1, 1));
    m.rgbS->LgtColorToRGB(Stokes({1, 2, -1}), rgb, true, false);
    EXPECT_EQ(rgb, T3(0.5, 1, -0.5));
    m.rgbS->LgtColorToRGB(Stokes({1, 2, -1}), rgb, true, true);
    EXPECT_EQ(rgb, T3(1.0 / 3, 2.0 / 3, 0));
    m.rgbS->LgtColorToRGB(Stokes({1, 2, -1}), rgb, false, false);
    EXPECT_EQ(rgb, T3(1, 2, -1));
}
