// Setting a grid builds the spike tables of the model and of its mass converter from the
// converter's per-grid tables: the same values, bit for bit, as converting every spike through
// the whole-spectrum conversions, at a cost linear in the grid.
#include "hostkit/cie/CIEConv.h"
#include "hostkit/plugsys/PlugFile.h"
#include "plugin/masscolconv/MassColConv.h"
#include "tests/plugin/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <string>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;
using Korvane::Testing::ScopedDefaultGrid;
using Korvane::Testing::ScopedModelTypes;

using Korvane::Testing::EvenGrid;

namespace {

bool SameBits(const TVect3<double>& a, const TVect3<double>& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}
bool SameBits(const RGBColourDistr<double>& a, const TVect3<double>& b) {
    return std::memcmp(&a, &b, sizeof b) == 0;
}

} // namespace

// The tables against the conversions of each whole spike, as they were built before.
TEST(GridLoadCost, SpikeTablesAreTheWholeSpikeConversionsBitForBit) {
    ScopedModelTypes types;
    ScopedDefaultGrid defaults;
    const MArray<double> grids[] = {
        Grid({550.0}),
        Grid({400.0, 500.0, 700.0}),
        EvenGrid(390.0, 10.0, 33),
        Grid({300.0, 359.5, 361.25, 452.7, 600.0, 829.9, 830.0, 900.0}), // past both ends
        EvenGrid(360.0, 1.0, 471),
        EvenGrid(700.0, 0.5, 300), // sees too little light for reflectances
    };
    for (const MArray<double>& grid : grids) {
        const std::string where = std::to_string(grid.Count()) + " points";
        GridModel<Unpolarized> model(grid);
        MassColConv* conv = model.GetMassColConv();
        ASSERT_NE(conv, nullptr) << where;
        const int n = grid.Count();
        ASSERT_EQ(model.GetSpectral2XYZWeights().Count(), n) << where;
        TArray<double> spike(10, 1);
        ASSERT_EQ(spike.Alloc(n), 0);
        const CIEConv& cie = *CIEConv::Current();
        for (int i = 0; i < n; ++i) {
            spike.Fill(0.0);
            spike[i] = 1.0;
            TVect3<double> xyz;
            ASSERT_EQ(CIEConv::spectrum2xyz(grid, spike, xyz), 0) << where;
            // A one-point grid's row is (1, 1, 1) by definition, not a conversion.
            const TVect3<double> row = n < 2 ? TVect3<double>(1.0, 1.0, 1.0) : xyz;
            EXPECT_TRUE(SameBits(model.GetSpectral2XYZWeights()[i], row)) << where << " " << i;
            EXPECT_TRUE(SameBits(conv->WeightForLight(i), cie.Spectr2RGB(spike, grid, false)))
                << where << " " << i;
            EXPECT_TRUE(SameBits(conv->WeightForSurface(i), cie.Spectr2RGBAttr(spike, grid, false)))
                << where << " " << i;
        }
    }
}

// A grid of 32,000 points (a plug file of 256 KB) costs what its tables cost: about 40 ms in a
// release build, a few hundred under the sanitizers. Converting every spike through the whole
// spectrum made it some 3 x 10^9 steps (17 s in a release build, 4 s at 16,000 points). Timing
// at these sizes is dominated by page faults and cache effects that grow with the tables, so the
// test does not measure growth; it sets a bound far above the linear cost on a slow, busy machine
// and far below the quadratic one.
TEST(GridLoadCost, LargeGridLoadsWithoutQuadraticCost) {
    ScopedModelTypes types;
    ScopedDefaultGrid defaults;
    constexpr int kPoints = 32000;
    constexpr double kSecondsBound = 2.0;
    const auto start = std::chrono::steady_clock::now();
    GridModel<Unpolarized> model(EvenGrid(380.0, 400.0 / kPoints, kPoints));
    EXPECT_NE(model.GetMassColConv()->WeightsForLight(), nullptr);
    EXPECT_EQ(model.GetSpectral2XYZWeights().Count(), kPoints);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    EXPECT_LT(took.count(), kSecondsBound);
}

// A plug file may hold a grid of PlugFile::kMaxGridPoints; a larger one is refused before the
// model builds any table for it.
TEST(GridLoadCost, PlugFilesRefuseGridsAboveTheLimit) {
    ScopedModelTypes types;
    ScopedDefaultGrid defaults;
    const GridModel<Unpolarized> huge(EvenGrid(380.0, 0.001, PlugFile::kMaxGridPoints + 1));
    const std::string path = testing::TempDir() + "grid_limit.plug";
    ASSERT_EQ(PlugFile::Save(huge, path.c_str()), 0);
    std::string error;
    EXPECT_FALSE(PlugFile::Load(path.c_str(), error));
    EXPECT_NE(error.find("a wavelength grid of 100001 points is more than the 100000"),
              std::string::npos)
        << error;
    std::remove(path.c_str());
}
