// Spectra from RGB and XYZ, radiant power, the converter's per-grid tables under threads, and
// the life of the built-in converter.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/cie/CIEConvAll.h"
#include "tests/support/Tolerances.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iostream>
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
    Range(w, 390.0, 10.0, 33);
    check("default grid");
    Range(w, 380.0, 10.0, 41);
    check("380..780");
    Range(w, 360.0, 1.0, 471);
    check("1 nm");
    Fill(w, {380.0, 395.0, 420.0, 433.0, 470.0, 500.0, 512.0, 560.0, 600.0, 655.0, 700.0, 780.0});
    check("uneven");
}

TEST(CieReconstruction, FailsCleanlyWithoutThreeIndependentColours) {
    const CIEConvAll* conv = CIEConvAll::Default();
    TArray<double> w(10), s(10);
    const auto refuses = [&](const char* grid) {
        s.Alloc(w.Count());
        s.Fill(NAN);
        EXPECT_NE(conv->RGB2Spectrum({0.2, 0.5, 0.1}, w, s), 0) << grid;
        for (double v : s)
            EXPECT_EQ(v, 0.0) << grid;
        s.Fill(NAN);
        EXPECT_NE(conv->RGB2SpectrumAttr({0.2, 0.5, 0.1}, w, s), 0) << grid;
        for (double v : s)
            EXPECT_EQ(v, 0.0) << grid;
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
    double plain[40];
    std::fill(plain, plain + 40, 5.0);
    EXPECT_NE(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, plain, 32), 0);
    EXPECT_EQ(plain[31], 0.0);
    EXPECT_EQ(plain[32], 5.0);
    EXPECT_EQ(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, plain, 33), 0);
    BArray<double> view(plain, 33);
    EXPECT_EQ(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, view), 0);
    ASSERT_EQ(conv->RGB2Spectrum({1.0, 1.0, 1.0}, w, s), 0);
    EXPECT_EQ(s.Count(), 33);
    EXPECT_TRUE(std::equal(s.begin(), s.end(), plain));
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
    {
        TPlugRef<CIEConvAll> conv = CIEConvAll::Create();
        for (int g = 0; g < kGrids; ++g)
            convert(conv.Get(), g, serial);
    }
    TPlugRef<CIEConvAll> conv = CIEConvAll::Create();
    std::thread t1([&] {
        for (int g = 0; g < kGrids; ++g)
            convert(conv.Get(), g, first);
    });
    std::thread t2([&] {
        for (int g = 0; g < kGrids; ++g)
            convert(conv.Get(), g, second);
    });
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
    for (int g = 0; g < 80; ++g) {
        Range(w, 400.0 + g, 10.0, 20);
        ASSERT_EQ(conv->RGB2SpectrumAttr({0.1, 0.7, 0.3}, w, s), 0);
        ASSERT_EQ(conv->spectrum2rgbAttr(w, s, rgb), 0);
        ExpectSameColour(rgb, {0.1, 0.7, 0.3}, "grid beyond the cache");
    }
    EXPECT_EQ(conv->CachedGrids(), 64);
}

TEST(CieConverterLife, DefaultOutlivesEveryReference) {
    const CIEConvAll* def = CIEConvAll::Default();
    EXPECT_EQ(def->ObjType(), TCIEConvAll);
    EXPECT_EQ(PlugType::Find("CIEConvAll"), TCIEConvAll);
    EXPECT_EQ(CIEConv::Current(), def);
    const int refs = def->RefCount();
    {
        PlugRef r(const_cast<CIEConvAll*>(def));
        EXPECT_EQ(def->RefCount(), refs + 1);
    }
    EXPECT_EQ(def->RefCount(), refs);
    EXPECT_GE(refs, 1);
    EXPECT_EQ(def->RGB2Watts({0.0, 0.0, 0.0}), 0.0);
}

TEST(CieConverterLife, CreateFailsCleanlyWithoutMemory) {
    FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 1);
    EXPECT_EQ(CIEConvAll::Create(), nullptr);
    const auto log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].kind, ReportKind::NoMemory);
}

} // namespace
} // namespace Korvane
