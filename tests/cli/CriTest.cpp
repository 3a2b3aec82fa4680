// CIE 13.3-1995 colour rendering of the CIE fluorescent illuminants F1, F5 and F8, read from the
// CGATS files that Debian's argyll-ref package ships, against the published general indices:
// CIE 15:2004 Table T.8.1 gives Ra 76 (F1), 72 (F5) and 95 (F8), and CCTs 6430 K, 6350 K and
// 5000 K.
#include "cli/analysis/Analysis.h"
#include "cli/io/SpectrumReader.h"

#include <gtest/gtest.h>

#include <fstream>

namespace Korvane::Analysis {
namespace {

const char* const kRefDir = "/usr/share/color/argyll/ref/";

SpectrumIO::Spectrum ReadOne(const std::string& name) {
    std::ifstream in(kRefDir + name, std::ios::binary);
    SpectrumIO::Spectrum out;
    SpectrumIO::ReadError error;
    const bool ok = SpectrumIO::ReadSpectra(
        in, name,
        [&](SpectrumIO::Spectrum& s) {
            out = std::move(s);
            return false;
        },
        error);
    EXPECT_TRUE(ok) << error.Text();
    return out;
}

struct Published {
    const char* file;
    double ra;
    double cct;
    double raTolerance;
    bool daylightReference;
};

TEST(ColourRendering, FluorescentIlluminantsMatchThePublishedRa) {
    // Ra is published rounded to an integer: within half a unit (F1 75.79, F5 71.64 here). F8 sits
    // on the reference switch: the table lists it at 5000 K, so its Ra came from the daylight
    // reference (95.17 here); Ohno's method puts it at 4994.6 K, below 5000 K, where the standard
    // takes the Planckian reference, which gives 95.52: within 0.6. The CCTs are published to
    // 10 K from an older locus computation; ours are 5 to 8 K below them: within 10 K.
    constexpr double kRaRounding = 0.5;
    constexpr double kF8ReferenceSwitch = 0.6;
    constexpr double kCctRounding = 10.0;
    for (const Published& p : {Published{"F1.sp", 76.0, 6430.0, kRaRounding, true},
                               Published{"F5.sp", 72.0, 6350.0, kRaRounding, true},
                               Published{"F8.sp", 95.0, 5000.0, kF8ReferenceSwitch, false}}) {
        const SpectrumIO::Spectrum s = ReadOne(p.file);
        ASSERT_EQ(s.nm.size(), 81u) << p.file;
        const auto cri =
            ColourRenderingIndex({s.nm.data(), s.values.data(), static_cast<int>(s.nm.size())});
        ASSERT_TRUE(cri.has_value()) << p.file;
        EXPECT_NEAR(cri->ra, p.ra, p.raTolerance) << p.file;
        EXPECT_NEAR(cri->cct, p.cct, kCctRounding) << p.file;
        EXPECT_EQ(cri->daylightReference, p.daylightReference) << p.file;
    }
}

TEST(ColourRendering, ReferenceIlluminantsRenderPerfectly) {
    // A source that is its own reference renders every sample as itself: R_i = 100, up to the
    // reference being rebuilt at the CCT read back from the sampled source (the converter's exact
    // integral of the 5 nm samples against the locus of 1 nm sums: about a kelvin), which moves
    // R_i by a few thousandths.
    constexpr double kSelfReference = 0.01;
    const std::vector<double> nm = EvenGrid(360.0, 830.0, 5.0);
    std::vector<double> planck(nm.size());
    for (std::size_t i = 0; i < nm.size(); ++i)
        planck[i] = Planck(nm[i], 3000.0);
    std::vector<double> daylight = Daylight(6500.0, nm);
    for (const std::vector<double>* s : {&planck, &daylight}) {
        const auto cri = ColourRenderingIndex({nm.data(), s->data(), static_cast<int>(nm.size())});
        ASSERT_TRUE(cri.has_value());
        EXPECT_NEAR(cri->ra, 100.0, kSelfReference);
        for (double r : cri->r)
            EXPECT_NEAR(r, 100.0, kSelfReference);
    }
    // A narrow-band green light is far from the locus: no CRI.
    std::vector<double> green(nm.size(), 0.0);
    green[(530 - 360) / 5] = 1.0;
    EXPECT_FALSE(
        ColourRenderingIndex({nm.data(), green.data(), static_cast<int>(nm.size())}).has_value());
}

} // namespace
} // namespace Korvane::Analysis
