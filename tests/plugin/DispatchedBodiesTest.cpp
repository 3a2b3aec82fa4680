// The per-ray paths give the same bits whichever kernel body runs them: every body this
// processor offers converts the same random colours (RGB into spectra, spectra into RGB and XYZ,
// resampling both ways between lined-up grids and onto a grid that does not line up, the mass
// converter's RGB, the ray weights), and every double must equal the baseline's.
#include "hostkit/base/Kernels.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/plugin/HolderTestSupport.h"
#include "tests/plugin/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

using namespace Korvane;
using USpec = SpectralModel<Unpolarized>;
using URGB = RGBModel<Unpolarized>;

namespace {

using DispatchedBodies = Testing::Registered;

template <class C>
void Append(std::vector<double>& out, const C& c, int doubles) {
    out.insert(out.end(), c.Values(), c.Values() + doubles);
}

// Everything the paths give for `colours` random colours, in one list of doubles.
std::vector<double> RunPaths(int colours) {
    USpec* spectral = USpec::GetModel();
    USpec* by10 = USpec::GetModel_380_780();
    URGB* rgb = URGB::GetModel();
    XYZModel* xyz = XYZModel::GetModel();
    TPlugRef<USpec> by5 = new USpec(Testing::EvenGrid(380.0, 5.0, 81));
    TPlugRef<USpec> uneven = new USpec(Testing::EvenGrid(383.3, 13.1, 30));
    const int n = spectral->NWaves();

    std::mt19937 rng(99);
    std::uniform_real_distribution<double> channel(-0.2, 1.5);
    std::vector<double> out;
    LgtColor<URGB> source{}, rgbOut{};
    LgtColor<USpec> light, fine, onBy10, onUneven, back;
    light.Distr().SetLength(n);
    fine.Distr().SetLength(81);
    onBy10.Distr().SetLength(by10->NWaves());
    onUneven.Distr().SetLength(uneven->NWaves());
    back.Distr().SetLength(n);
    for (int k = 0; k < colours; ++k) {
        for (int c = 0; c < 3; ++c)
            source[c] = channel(rng);
        EXPECT_EQ(spectral->ConvertColor(rgb, source, light), 0);
        Append(out, light, n);
        EXPECT_EQ(by5->ConvertColor(rgb, source, fine), 0);
        EXPECT_EQ(spectral->ConvertColor(by5.Get(), fine, back), 0); // every second sample
        Append(out, back, n);
        EXPECT_EQ(by10->ConvertColor(spectral, light, onBy10), 0); // one step, shifted
        Append(out, onBy10, by10->NWaves());
        EXPECT_EQ(uneven->ConvertColor(spectral, light, onUneven), 0); // the walk
        Append(out, onUneven, uneven->NWaves());
        EXPECT_EQ(rgb->ConvertColor(spectral, light, rgbOut), 0);
        Append(out, rgbOut, 3);
        EXPECT_EQ(xyz->ConvertColor(spectral, light, rgbOut), 0);
        Append(out, rgbOut, 3);
        TVect3<double> display;
        spectral->LgtColorToRGB(light, display, false, false);
        out.insert(out.end(), {display.x, display.y, display.z});
        spectral->DensityToEnergy(light);
        Append(out, light, n);
    }
    for (auto* c : {&light, &fine, &onBy10, &onUneven, &back})
        c->Distr().SetLength(0);
    return out;
}

} // namespace

TEST_F(DispatchedBodies, EveryBodyGivesTheBaselinesBits) {
    const Kernels::Isa picked = Kernels::Active();
    ASSERT_TRUE(Kernels::Select(Kernels::Isa::Baseline));
    const std::vector<double> baseline = RunPaths(200);
    for (const Kernels::Isa isa : {Kernels::Isa::Avx2}) {
        if (!Kernels::Select(isa))
            continue; // not on this processor or build
        const std::vector<double> got = RunPaths(200);
        ASSERT_EQ(got.size(), baseline.size());
        EXPECT_EQ(std::memcmp(got.data(), baseline.data(), got.size() * sizeof(double)), 0);
    }
    Kernels::Select(picked);
}
