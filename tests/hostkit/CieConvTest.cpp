// The built-in CIE converter: published colorimetric values, the laws of exact integration,
// the tests of CIE coordinates, spectra from RGB and XYZ, radiant power, the per-grid tables
// under threads, and the life of the built-in converter.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/cie/CIEConvAll.h"
#include "tables/Cie1931Cmf.h"
#include "tables/CieD65.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iostream>
#include <limits>
#include <thread>
#include <vector>

namespace Korvane {
namespace {

void Fill(TArray<double>& a, std::initializer_list<double> values) {
    a.Alloc(static_cast<int>(values.size()));
    int i = 0;
    for (double v : values)
        a[i++] = v;
}

void Range(TArray<double>& a, double first, double step, int n) {
    a.Alloc(n);
    for (int i = 0; i < n; ++i)
        a[i] = first + step * i;
}

// Runs check(name) with `w` set to the default grid, 380..780 nm at 10 nm, 360..830 nm at 1 nm,
// and an uneven grid.
template <class Check>
void OnEveryGrid(TArray<double>& w, Check check) {
    Range(w, 390.0, 10.0, 33);
    check("default grid");
    Range(w, 380.0, 10.0, 41);
    check("380..780");
    Range(w, 360.0, 1.0, 471);
    check("1 nm");
    Fill(w, {380.0, 395.0, 420.25, 433.0, 470.0, 500.0, 512.0, 560.0, 600.0, 655.0, 700.0, 780.0});
    check("uneven");
}

// D65 on the 1 nm grid 360..830 (rows 60.. of the 300..830 table).
void D65Light(TArray<double>& waves, TArray<double>& s) {
    Range(waves, 360.0, 1.0, 471);
    s.Alloc(471);
    for (int i = 0; i < 471; ++i)
        s[i] = Data::CieD65::d65[60 + i];
}

TVect2<double> Chromaticity(const TVect3<double>& v) {
    const double sum = v.x + v.y + v.z;
    return {v.x / sum, v.y / sum};
}

TEST(CieReference, IntegralsOfTheTablesMatchPublishedValues) {
    TArray<double> waves(10), s(10);
    Range(waves, 360.0, 1.0, 471);
    s.Alloc(471);
    s.Fill(1.0);
    TVect3<double> xyz;
    ASSERT_EQ(CIEConv::spectrum2xyz(waves, s, xyz), 0);
    // Sum of the 1 nm CIE 1931 ybar table (data/README.md).
    EXPECT_NEAR(xyz.y, 106.8569, Tol::kYbarIntegral);
    const TVect2<double> e = Chromaticity(xyz);
    EXPECT_NEAR(e.x, 1.0 / 3.0, Tol::kEqualEnergyChromaticity);
    EXPECT_NEAR(e.y, 1.0 / 3.0, Tol::kEqualEnergyChromaticity);

    // D65 white: ASTM E308 (95.047, 100, 108.883); chromaticity of the 1 nm tables (0.31273,
    // 0.32902), CIE 15:2004 (0.31272, 0.32903). As a light, and as the perfect white reflector.
    D65Light(waves, s);
    ASSERT_EQ(CIEConv::spectrum2xyz(waves, s, xyz), 0);
    TVect3<double> white;
    s.Fill(1.0);
    ASSERT_EQ(CIEConv::spectrum2xyzAttr(waves, s, white), 0);
    for (const TVect3<double>& v : {xyz, white}) {
        const double k = 100.0 / v.y;
        EXPECT_NEAR(v.x * k, 95.047, Tol::kWhiteXYZ);
        EXPECT_NEAR(v.z * k, 108.883, Tol::kWhiteXYZ);
        EXPECT_NEAR(Chromaticity(v).x, 0.31273, Tol::kWhiteChromaticity);
        EXPECT_NEAR(Chromaticity(v).y, 0.32902, Tol::kWhiteChromaticity);
    }
}

TEST(CieReference, TenDegreeObserverOnRequest) {
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create(Observer::CIE1964_10deg);
    ASSERT_TRUE(conv.Get());
    TArray<double> waves(10), s(10);
    D65Light(waves, s);
    // The static operations follow the current converter. CIE 15:2004: D65, 10 deg
    // (0.31382, 0.33100).
    CIEConv::SetCurrent(conv.Get());
    TVect3<double> xyz;
    const int status = CIEConv::spectrum2xyz(waves, s, xyz);
    CIEConv::SetCurrent(nullptr);
    ASSERT_EQ(status, 0);
    EXPECT_NEAR(Chromaticity(xyz).x, 0.31382, Tol::kWhiteChromaticity);
    EXPECT_NEAR(Chromaticity(xyz).y, 0.33100, Tol::kWhiteChromaticity);
}

TEST(CieReference, SRGBMatricesFromPrimariesAndWhite) {
    const CIEConv* conv = CIEConv::Current();
    const TMatrix3& m = conv->XYZ2RGB();
    const TMatrix3& n = conv->RGB2XYZ();
    // data/srgb_constants.md, section 3 (exact rational derivation) and section 2 (IEC 61966-2-1).
    const double derivedM[3][3] = {{3.2409699419045213, -1.5373831775700935, -0.4986107602930033},
                                   {-0.9692436362808798, 1.8759675015077206, 0.04155505740717561},
                                   {0.05563007969699361, -0.20397695888897657, 1.0569715142428786}};
    const double derivedN[3][3] = {{0.4123907992659595, 0.35758433938387796, 0.1804807884018343},
                                   {0.21263900587151036, 0.7151686787677559, 0.07219231536073371},
                                   {0.01933081871559185, 0.11919477979462599, 0.9505321522496606}};
    const double iecM[3][3] = {
        {3.2406, -1.5372, -0.4986}, {-0.9689, 1.8758, 0.0415}, {0.0557, -0.2040, 1.0570}};
    const double iecN[3][3] = {
        {0.4124, 0.3576, 0.1805}, {0.2126, 0.7152, 0.0722}, {0.0193, 0.1192, 0.9505}};
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) {
            EXPECT_NEAR(m[r][c], derivedM[r][c], Tol::kDerivedMatrix);
            EXPECT_NEAR(n[r][c], derivedN[r][c], Tol::kDerivedMatrix);
            EXPECT_NEAR(m[r][c], iecM[r][c], Tol::kPublishedMatrix);
            EXPECT_NEAR(n[r][c], iecN[r][c], Tol::kPublishedMatrix);
            const double mn = m[r][0] * n[0][c] + m[r][1] * n[1][c] + m[r][2] * n[2][c];
            EXPECT_NEAR(mn, r == c ? 1.0 : 0.0, Tol::kMatrixIdentity);
        }
        EXPECT_EQ(conv->LuminanceCoefs()[r], n[1][r]);
    }
}

TEST(CieIntegration, FlatReflectanceIsWhiteOnEveryGrid) {
    TArray<double> waves(10), r(10);
    const auto check = [&](const char* what) {
        r.Alloc(waves.Count());
        r.Fill(1.0);
        TVect3<double> rgb, xyz;
        ASSERT_EQ(CIEConv::Current()->spectrum2rgbAttr(waves, r, rgb), 0) << what;
        EXPECT_EQ(rgb, TVect3<double>(1.0, 1.0, 1.0)) << what;
        EXPECT_EQ(CIEConv::Current()->Spectr2RGBAttr(r, waves, false), rgb) << what;
        ASSERT_EQ(CIEConv::spectrum2xyzAttr(waves, r, xyz), 0) << what;
        EXPECT_EQ(xyz.y, 1.0) << what;
    };
    OnEveryGrid(waves, check);
    Fill(waves, {301.5, 395.0, 420.25, 433.0, 470.0, 512.0, 560.0, 655.0, 700.0, 901.0});
    check("uneven, beyond the tables");
    Fill(waves, {555.0});
    check("one point");
}

TEST(CieIntegration, XYZUnchangedWhenResampledOntoAFinerGrid) {
    TArray<double> w(10), s(10), fw(10), fs(10);
    Fill(w, {380.0, 395.0, 420.0, 433.0, 470.0, 500.0, 512.0, 560.0, 600.0, 655.0, 700.0, 780.0});
    const int n = w.Count();
    s.Alloc(n);
    for (int i = 0; i < n; ++i)
        s[i] = 1.0 + std::sin(w[i] / 37.0);
    // Every old wavelength, plus three inside each interval (off the 1 nm steps of the tables).
    fw.Alloc(4 * (n - 1) + 1);
    fs.Alloc(fw.Count());
    for (int i = 0; i + 1 < n; ++i) {
        const double t[4] = {0.0, 0.13, 0.5, 0.71};
        for (int k = 0; k < 4; ++k) {
            fw[4 * i + k] = w[i] + t[k] * (w[i + 1] - w[i]);
            fs[4 * i + k] = (1.0 - t[k]) * s[i] + t[k] * s[i + 1];
        }
    }
    fw[fw.Count() - 1] = w[n - 1];
    fs[fs.Count() - 1] = s[n - 1];
    TVect3<double> a, b, ra, rb;
    ASSERT_EQ(CIEConv::spectrum2xyz(w, s, a), 0);
    ASSERT_EQ(CIEConv::spectrum2xyz(fw, fs, b), 0);
    ASSERT_EQ(CIEConv::spectrum2xyzAttr(w, s, ra), 0);
    ASSERT_EQ(CIEConv::spectrum2xyzAttr(fw, fs, rb), 0);
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(b[c], a[c], a[c] * Tol::kSpectralRoundTrip);
        EXPECT_NEAR(rb[c], ra[c], ra[c] * Tol::kSpectralRoundTrip);
    }
}

TEST(CieIntegration, OnePointGridIsABandOfOneNanometre) {
    TArray<double> w(10), s(10);
    Fill(w, {550.0});
    Fill(s, {2.0});
    TVect3<double> xyz;
    ASSERT_EQ(CIEConv::spectrum2xyz(w, s, xyz), 0);
    // The integral of the interpolated table over [549.5, 550.5], rows 189..191.
    const double* y = Data::Cie1931Cmf::ybar;
    EXPECT_NEAR(xyz.y, 2.0 * (0.125 * y[189] + 0.75 * y[190] + 0.125 * y[191]),
                xyz.y * Tol::kSpectralRoundTrip);
    double grey = 0.0;
    ASSERT_EQ(CIEConv::spectrum2bw(w, s, grey), 0);
    EXPECT_EQ(grey, 2.0);
}

TEST(CieIntegration, CurvesUseTheGridsTrapezoidWeightsByDefault) {
    TArray<double> w(10), s(10);
    Fill(w, {400.0, 500.0, 700.0});
    Fill(s, {1.0, 3.0, 2.0});
    // No c4: the trapezoid weights of the grid, 50, 150, 100 nm.
    TArray<double> c1(10), c2(10), c3(10), c4(10);
    Fill(c1, {1.0, 0.0, 0.0});
    Fill(c2, {0.0, 1.0, 0.0});
    Fill(c3, {1.0, 1.0, 1.0});
    TVect3<double> out;
    ASSERT_EQ(CIEConv::spectrum2rgbByCurves(w, s, c1, c2, c3, c4, out), 0);
    EXPECT_EQ(out, TVect3<double>(50.0, 450.0, 50.0 + 450.0 + 200.0));
    Fill(c4, {2.0, 2.0, 2.0});
    ASSERT_EQ(CIEConv::spectrum2rgbByCurves(w, s, c1, c2, c3, c4, out), 0);
    EXPECT_EQ(out, TVect3<double>(2.0, 6.0, 12.0));
}

TEST(CieIntegration, RefusesGridsItCannotRead) {
    TArray<double> w(10), s(10);
    TVect3<double> xyz{7.0, 7.0, 7.0};
    EXPECT_NE(CIEConv::spectrum2xyz(w, s, xyz), 0); // empty
    EXPECT_EQ(xyz, TVect3<double>(0.0, 0.0, 0.0));
    Fill(w, {400.0, 500.0, 600.0});
    Fill(s, {1.0, 1.0});
    EXPECT_NE(CIEConv::spectrum2xyz(w, s, xyz), 0); // lengths differ
    Fill(w, {400.0, 400.0});
    EXPECT_NE(CIEConv::spectrum2xyz(w, s, xyz), 0); // not increasing
    // Beyond 830 nm nothing is seen: light is black, reflectance and grey are undefined.
    Fill(w, {850.0, 900.0});
    EXPECT_EQ(CIEConv::spectrum2xyz(w, s, xyz), 0);
    EXPECT_EQ(xyz, TVect3<double>(0.0, 0.0, 0.0));
    double grey = 1.0;
    EXPECT_NE(CIEConv::spectrum2xyzAttr(w, s, xyz), 0);
    EXPECT_NE(CIEConv::spectrum2bw(w, s, grey), 0);
    EXPECT_EQ(grey, 0.0);
    EXPECT_TRUE(ReportLog::Entries().empty());
}

TEST(CieCoordinates, ClipRGBScale) {
    TVect3<double> v{-0.2, 0.5, 2.0};
    EXPECT_TRUE(CIEConv::ClipRGBScale(v));
    EXPECT_EQ(v, TVect3<double>(0.0, 0.25, 1.0));
    v = {0.2, 0.0, 1.0};
    EXPECT_FALSE(CIEConv::ClipRGBScale(v));
    EXPECT_EQ(v, TVect3<double>(0.2, 0.0, 1.0));
}

TEST(CieCoordinates, ValidityFollowsTheSpectralLocus) {
    const CIEConv* conv = CIEConv::Current();
    const double* x = Data::Cie1931Cmf::xbar;
    const double* y = Data::Cie1931Cmf::ybar;
    const double* z = Data::Cie1931Cmf::zbar;
    // 520 nm (row 160) is a corner of the locus: on it is valid, a step outward is not.
    const TVect2<double> c = Chromaticity({x[160], y[160], z[160]});
    EXPECT_TRUE(conv->IsValidXY(c.x, c.y));
    EXPECT_FALSE(conv->IsValidXY(c.x - 1e-3, c.y + 1e-3));
    // The purple line closes the locus: at x = 0.4 it passes near y = 0.11.
    EXPECT_TRUE(conv->IsValidXY(0.4, 0.15));
    EXPECT_FALSE(conv->IsValidXY(0.4, 0.05));
    EXPECT_TRUE(conv->IsValidXYY(0.3127, 0.3290, 0.0));
    EXPECT_FALSE(conv->IsValidXYY(0.3127, 0.3290, -1e-9));
    EXPECT_TRUE(conv->IsValidXYZ(0.0, 0.0, 0.0));
    EXPECT_TRUE(conv->IsValidXYZ(0.95047, 1.0, 1.08883));
    EXPECT_FALSE(conv->IsValidXYZ(1.0, 0.0, 0.0)); // y = 0
    EXPECT_FALSE(conv->IsValidXYZ(0.5, 1.0, -0.1));
}

void ExpectSameColour(const TVect3<double>& got, const TVect3<double>& want, const char* what) {
    const double scale = std::max({std::fabs(want.x), std::fabs(want.y), std::fabs(want.z)});
    for (int c = 0; c < 3; ++c)
        EXPECT_NEAR(got[c], want[c], scale * Tol::kSpectralRoundTrip) << what << " channel " << c;
}

TEST(CieReconstruction, RoundTripsOnEveryGrid) {
    const CIEConvAll* conv = CIEConvAll::Default();
    TArray<double> w(10), s(10);
    const auto check = [&](const char* grid) {
        for (const TVect3<double>& rgb :
             {TVect3<double>(1.0, 1.0, 1.0), TVect3<double>(0.8, 0.1, 0.05),
              TVect3<double>(0.02, 0.3, 0.9), TVect3<double>(-0.2, 1.4, 0.5)}) {
            ASSERT_EQ(conv->RGB2SpectrumAttr(rgb, w, s), 0) << grid;
            TVect3<double> back;
            ASSERT_EQ(conv->spectrum2rgbAttr(w, s, back), 0);
            ExpectSameColour(back, rgb, grid);
            ASSERT_EQ(conv->RGB2Spectrum(rgb, w, s), 0) << grid;
            ExpectSameColour(conv->Spectr2RGB(s, w, false), rgb, grid);
            // XYZ input: the same reconstruction of M xyz.
            const TVect3<double> xyz = conv->RGB2XYZ() * rgb;
            ASSERT_EQ(conv->XYZ2Spectrum(xyz, w, s), 0);
            ASSERT_EQ(CIEConv::spectrum2xyz(w, s, back), 0);
            ExpectSameColour(back, xyz, grid);
            // A reflectance's RGB is balanced to the white of the grid, its XYZ is not: the
            // reflectance of xyz is the one whose RGB is M xyz.
            ASSERT_EQ(conv->XYZ2SpectrumAttr(xyz, w, s), 0);
            ASSERT_EQ(conv->spectrum2rgbAttr(w, s, back), 0);
            ExpectSameColour(back, conv->XYZ2RGB() * xyz, grid);
        }
        // White is the flat reflectance.
        ASSERT_EQ(conv->RGB2SpectrumAttr({1.0, 1.0, 1.0}, w, s), 0);
        for (double v : s)
            EXPECT_NEAR(v, 1.0, Tol::kSpectralRoundTrip) << grid;
    };
    OnEveryGrid(w, check);
}

TEST(CieReconstruction, FailsCleanlyWithoutThreeIndependentColours) {
    const CIEConvAll* conv = CIEConvAll::Default();
    TArray<double> w(10), s(10);
    const auto refuses = [&](const char* grid) {
        for (bool attr : {false, true}) {
            s.Alloc(w.Count());
            s.Fill(std::numeric_limits<double>::quiet_NaN());
            EXPECT_NE(attr ? conv->RGB2SpectrumAttr({0.2, 0.5, 0.1}, w, s)
                           : conv->RGB2Spectrum({0.2, 0.5, 0.1}, w, s),
                      0)
                << grid;
            EXPECT_TRUE(std::all_of(s.begin(), s.end(), [](double v) { return v == 0.0; })) << grid;
        }
    };
    Fill(w, {550.0});
    refuses("one point");
    Fill(w, {500.0, 600.0});
    refuses("two points");
    Range(w, 840.0, 10.0, 5);
    refuses("above 830 nm");
    Range(w, 700.0, 10.0, 14);
    refuses("700..830 nm: no blue");
    // Three points across the visible range do see three colours.
    Fill(w, {450.0, 550.0, 650.0});
    EXPECT_EQ(conv->RGB2SpectrumAttr({0.2, 0.5, 0.1}, w, s), 0);
}

TEST(CieReconstruction, OutputMustFitTheGrid) {
    const CIEConvAll* conv = CIEConvAll::Default();
    TArray<double> w(10), s(10);
    Range(w, 390.0, 10.0, 33);
    double plain[34] = {};
    plain[33] = 5.0;
    EXPECT_NE(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, plain, 34), 0);
    EXPECT_EQ(plain[33], 0.0);
    BArray<double> view(plain, 33);
    EXPECT_EQ(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, view), 0);
    ASSERT_EQ(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, s), 0); // resized to the grid
    EXPECT_TRUE(s.Count() == 33 && std::equal(s.begin(), s.end(), plain));
}

TEST(CieReconstruction, RadiantPowerOfRGBLight) {
    const CIEConvAll* conv = CIEConvAll::Default();
    TArray<double> w(10), s(10);
    Range(w, 360.0, 1.0, 471);
    const TVect3<double> rgb{0.3, 0.6, 0.2};
    ASSERT_EQ(conv->RGB2Spectrum(rgb, w, s), 0);
    double trapezoid = 0.0;
    for (int i = 0; i + 1 < s.Count(); ++i)
        trapezoid += 0.5 * (s[i] + s[i + 1]);
    EXPECT_NEAR(conv->RGB2Watts(rgb), trapezoid, trapezoid * Tol::kSpectralRoundTrip);
    const TVect3<double> xyz = conv->RGB2XYZ() * rgb;
    EXPECT_NEAR(TCIEConvAll->XYZ2Watts(xyz.x, xyz.y, xyz.z), conv->RGB2Watts(rgb),
                trapezoid * Tol::kSpectralRoundTrip);
}

// How far reflectances of in-gamut colours leave [0, 1] on the default grid.
TEST(CieReconstruction, InGamutReflectancesStayNearTheUnitRange) {
    const CIEConvAll* conv = CIEConvAll::Default();
    TArray<double> w(10), s(10);
    Range(w, 390.0, 10.0, 33);
    constexpr int kSteps = 64;
    double lo = 0.0, hi = 1.0;
    for (int r = 0; r <= kSteps; ++r)
        for (int g = 0; g <= kSteps; ++g)
            for (int b = 0; b <= kSteps; ++b) {
                const TVect3<double> rgb{static_cast<double>(r) / kSteps,
                                         static_cast<double>(g) / kSteps,
                                         static_cast<double>(b) / kSteps};
                ASSERT_EQ(conv->RGB2SpectrumAttr(rgb, w, s), 0);
                for (double v : s) {
                    lo = std::min(lo, v);
                    hi = std::max(hi, v);
                }
            }
    std::cout << "in-gamut reflectances on 390..710 nm: min " << lo << ", max " << hi << "\n";
    RecordProperty("min", std::to_string(lo));
    RecordProperty("max", std::to_string(hi));
    EXPECT_GE(lo, -Tol::kInGamutExcursion);
    EXPECT_LE(hi, 1.0 + Tol::kInGamutExcursion);
}

// Tables of grids seen for the first time by two threads at once match a serial run bit for bit.
TEST(CieGridTables, ConcurrentConversionsMatchASerialRun) {
    constexpr int kGrids = 12;
    const auto convert = [](const CIEConvAll* conv, int grid, std::vector<double>& out) {
        TArray<double> w(10), s(10);
        Range(w, 380.0 + grid, 5.0 + 0.5 * grid, 30);
        TVect3<double> v;
        conv->RGB2Spectrum({0.3, 0.2, 0.7}, w, s);
        out.insert(out.end(), s.begin(), s.end());
        conv->RGB2SpectrumAttr({0.3, 0.2, 0.7}, w, s);
        conv->spectrum2rgbAttr(w, s, v);
        out.insert(out.end(), {v.x, v.y, v.z});
        v = conv->Spectr2RGB(s, w, false);
        out.insert(out.end(), {v.x, v.y, v.z});
    };
    std::vector<double> serial, first, second;
    for (int g = 0; g < kGrids; ++g)
        convert(CIEConvAll::Default(), g, serial);
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create();
    const auto run = [&](std::vector<double>* out) {
        for (int g = 0; g < kGrids; ++g)
            convert(conv.Get(), g, *out);
    };
    std::thread t1(run, &first), t2(run, &second);
    t1.join();
    t2.join();
    EXPECT_EQ(first, serial);
    EXPECT_EQ(second, serial);
    EXPECT_EQ(conv->CachedGrids(), kGrids + 1); // and the 1 nm grid of RGB2Watts
}

TEST(CieGridTables, ManyGridsBeyondTheCacheStillConvert) {
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create();
    TArray<double> w(10), s(10);
    TVect3<double> rgb;
    for (int g = 0; g < 40; ++g) {
        Range(w, 400.0 + g, 10.0, 20);
        ASSERT_EQ(conv->RGB2SpectrumAttr({0.1, 0.7, 0.3}, w, s), 0);
        ASSERT_EQ(conv->spectrum2rgbAttr(w, s, rgb), 0);
        ExpectSameColour(rgb, {0.1, 0.7, 0.3}, "grid beyond the cache");
    }
    EXPECT_EQ(conv->CachedGrids(), 16); // the 1 nm grid and the first 15 of these
}

// The cache is bounded in bytes too: a grid whose tables would pass 8 MiB is converted with
// tables of its own, freed after the call, and the kept bytes stay within the bound.
TEST(CieGridTables, AGridBeyondTheByteBoundConvertsAndIsNotKept) {
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create();
    const std::size_t before = conv->CachedGridBytes();
    EXPECT_EQ(before, std::size_t{471} * 17 * sizeof(double)); // the 1 nm grid: grid + 4 tables
    TArray<double> w(10), s(10);
    Range(w, 360.0, 470.0 / 69999.0, 70000); // 70,000 points: 9.5 MB of tables
    TVect3<double> rgb;
    ASSERT_EQ(conv->RGB2SpectrumAttr({0.4, 0.5, 0.6}, w, s), 0);
    ASSERT_EQ(conv->spectrum2rgbAttr(w, s, rgb), 0);
    ExpectSameColour(rgb, {0.4, 0.5, 0.6}, "grid beyond the byte bound");
    EXPECT_EQ(conv->CachedGrids(), 1);
    EXPECT_EQ(conv->CachedGridBytes(), before);
}

// A grid resolved once gives the bits of the lookup by wavelengths; handed to another converter,
// or for another length, it is ignored and the grid is looked up as usual.
TEST(CieGridTables, AResolvedGridGivesTheLookupsBitsAndOnlyToItsConverter) {
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create(),
                         other = CIEConvAll::Create(Observer::CIE1964_10deg);
    TArray<double> w(10), big(10);
    Range(w, 390.0, 10.0, 33);
    Range(big, 360.0, 470.0 / 69999.0, 70000); // tables of its own, kept alive by the CIEGrid
    for (const TArray<double>* grid : {&w, &big}) {
        const int n = grid->Count();
        const CIEGrid resolved = conv->ResolveGrid(*grid);
        ASSERT_TRUE(resolved);
        std::vector<double> byGrid(static_cast<std::size_t>(n)), byWaves = byGrid;
        for (bool attr : {false, true}) {
            const TVect3<double> rgb{0.8, -0.1, 0.35};
            for (const CIEConvAll* c : {conv.Get(), other.Get()}) {
                ASSERT_EQ(attr ? c->RGB2SpectrumAttr(rgb, resolved, *grid, byGrid.data(), n)
                               : c->RGB2Spectrum(rgb, resolved, *grid, byGrid.data(), n),
                          0);
                ASSERT_EQ(attr ? c->RGB2SpectrumAttr(rgb, *grid, byWaves.data(), n)
                               : c->RGB2Spectrum(rgb, *grid, byWaves.data(), n),
                          0);
                EXPECT_EQ(byGrid, byWaves);
            }
        }
        // A length that is not the grid's is refused as the lookup refuses it.
        EXPECT_EQ(conv->RGB2Spectrum({1, 1, 1}, resolved, *grid, byGrid.data(), n - 1), -1);
    }
    EXPECT_FALSE(conv->ResolveGrid(TArray<double>(10)));
}

TEST(CieConverterLife, DefaultOutlivesEveryReferenceAndCreateMayFail) {
    const CIEConvAll* def = CIEConvAll::Default();
    EXPECT_EQ(def->ObjType(), TCIEConvAll);
    EXPECT_EQ(PlugType::Find("CIEConvAll"), TCIEConvAll);
    EXPECT_EQ(CIEConv::Current(), def);
    // Its own reference keeps it alive when the last outside reference goes.
    { PlugRef r(const_cast<CIEConvAll*>(def)); }
    EXPECT_GE(def->RefCount(), 1);

    FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 1);
    EXPECT_EQ(CIEConvAll::Create(), nullptr);
    const auto log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].kind, ReportKind::NoMemory);
}

} // namespace
} // namespace Korvane
