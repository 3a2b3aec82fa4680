// The tool's host side in one process, with the plug-in linked and registered: the reasons it
// gives for a failure come from the host's report log, including when that log is full and drops
// its oldest reports.
#include "cli/Host.h"
#include "cli/ToolError.h"

#include "hostkit/base/User.h"
#include "hostkit/colormodel/GridModel.h"
#include "plugin/frame/ModuleEntry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace Korvane::Cli {
namespace {

class ToolHost : public testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(InitClasses(), 0); }
    void TearDown() override { TermClasses(); }

    // More error reports than the log keeps, and a log line after them.
    static void FillTheLog() {
        for (std::size_t i = 0; i < ReportLog::Capacity() + 10; ++i)
            User()->ErrorMessageEx("earlier failure %s", std::to_string(i).c_str());
        User()->LogMessage("a log line");
        ASSERT_EQ(ReportLog::Count(), ReportLog::Capacity());
        ASSERT_GT(ReportLog::Dropped(), 0u);
    }
};

// The reason a conversion failed, as the tool's convert command reads it.
std::string ReasonOfARefusedConversion() {
    const std::vector<double> grid = {400.0, 500.0, 600.0};
    PlugRef stokes = SpectralModelOn(grid, true);
    HeldColour in(RegisteredModel("URGB"), Kind::Light),
        out(static_cast<const ColorModel*>(stokes.Get()), Kind::Light);
    in.Set({0.2, 0.4, 0.6});
    const ReportMarker mark = ReportMark();
    EXPECT_NE(out.ConvertFrom(in), 0);
    return ReportsSince(mark);
}

TEST_F(ToolHost, AFailureGivesItsOwnReasonBeforeAndAfterTheLogFills) {
    const std::string reason = "Not supported spectral light color conversion";
    EXPECT_EQ(ReasonOfARefusedConversion(), reason);

    ReportLog::Clear();
    FillTheLog();
    EXPECT_EQ(ReasonOfARefusedConversion(), reason);
    EXPECT_EQ(ReasonOfARefusedConversion(), reason) << "and the next one too, only its own";

    const ReportMarker mark = ReportMark();
    User()->ErrorMessageEx("first %s", "reason");
    User()->LogMessage("not a reason");
    User()->InternalError("second %s", "reason");
    EXPECT_EQ(ReportsSince(mark), "first reason; second reason");
    EXPECT_EQ(ReportsSince(ReportMark()), "");
}

TEST_F(ToolHost, ARefusedGridNamesTheModelsReasonWithTheLogFull) {
    FillTheLog();
    try {
        SpectralModelOn({500.0, 400.0, 600.0}, false);
        FAIL() << "a decreasing grid was taken";
    } catch (const ToolError& e) {
        EXPECT_EQ(e.Code(), kExitData);
        EXPECT_NE(std::string(e.what()).find("positive and increasing"), std::string::npos)
            << e.what();
        EXPECT_EQ(std::string(e.what()).find("earlier failure"), std::string::npos) << e.what();
    }
}

// The tool's models are the host kit's: the same grid and the same equidistant flag, also where a
// rule of its own (each step against the first, or no flag for one wavelength) would differ.
TEST_F(ToolHost, ModelsOnAGridEqualTheHostKitsOnTheSameGrid) {
    const std::vector<std::vector<double>> grids = {{550.0},
                                                    EvenGrid(380.3, 3.7, 108),
                                                    {400.0, 401.0, 402.0000002, 403.0000006},
                                                    {400.0, 410.0, 430.0}};
    for (const std::vector<double>& grid : grids)
        for (bool stokes : {false, true}) {
            PlugRef tools = SpectralModelOn(grid, stokes);
            std::string error;
            PlugRef kits = MakeSpectralModel(stokes ? "StkSpectr" : "USpectr", grid, error);
            ASSERT_TRUE(kits) << error;
            EXPECT_TRUE(static_cast<const ColorModel*>(tools.Get())
                            ->IsEqual(static_cast<const ColorModel*>(kits.Get())))
                << grid.size() << " wavelengths from " << grid[0] << ", stokes " << stokes;
        }
}

TEST_F(ToolHost, GridsBeyondTheToolsBoundAreRefusedBeforeAModelIsMade) {
    try {
        SpectralModelOn(EvenGrid(300.0, 0.1, kMaxGridPoints + 1), false);
        FAIL() << "a grid beyond the bound was taken";
    } catch (const ToolError& e) {
        EXPECT_EQ(e.Code(), kExitData);
        EXPECT_EQ(std::string(e.what()), "the grid has 4002 wavelengths; the tool's spectral "
                                         "models take at most 4001");
    }
    PlugRef largest = SpectralModelOn(EvenGrid(300.0, 0.1, kMaxGridPoints), false);
    EXPECT_EQ(static_cast<const ColorModel*>(largest.Get())->NWaves(), kMaxGridPoints);
}

} // namespace
} // namespace Korvane::Cli
