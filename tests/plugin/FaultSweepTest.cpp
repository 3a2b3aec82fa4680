// Fault sweeps: the n-th allocation fails, for every n that the operation makes (once, and from n
// on), at every fault site at once. Whatever fails, nothing crashes, nothing leaks, a failure is
// reported (or returned) as the code that each path names, and no object is handed out as good
// when it is not whole.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/colormodel/Holders.h"
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/frame/ModuleEntry.h"
#include "plugin/masscolconv/MassColConv.h"
#include "plugin/models/SpectralModel.h"
#include "tests/plugin/HolderTestSupport.h"
#include "tests/plugin/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <functional>
#include <string>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;

namespace {

using FaultSweep = Korvane::Testing::Registered;

// What an operation leaves allocated and alive: must be the same after it as before.
struct Balance {
    long long blocks = MemStats::Get("TArray").blocksOutstanding;
    long long bytes = MemStats::Get("TArray").bytesOutstanding;
    long long plugs = PlugStats::Alive();
    void Expect(const std::string& where) const {
        EXPECT_EQ(MemStats::Get("TArray").blocksOutstanding, blocks) << where;
        EXPECT_EQ(MemStats::Get("TArray").bytesOutstanding, bytes) << where;
        EXPECT_EQ(PlugStats::Alive(), plugs) << where;
    }
};

// Runs `op` with the n-th allocation at any site failing, for every n up to the number of
// allocations `op` makes when nothing fails, once and from n on. `op` checks its own outcome.
void Sweep(const std::function<void(const std::string& where)>& op) {
    long total = 0;
    {
        FaultInjection::ScopedFailure count(FaultInjection::AnySite, LONG_MAX);
        op("no failure");
        total = FaultInjection::Counted();
    }
    ASSERT_GT(total, 0);
    for (bool after : {false, true})
        for (long n = 1; n <= total; ++n) {
            const std::string where =
                "allocation " + std::to_string(n) + (after ? " and on" : " only");
            ReportLog::Clear();
            FaultInjection::ScopedFailure fail(FaultInjection::AnySite, n, after);
            op(where);
        }
}

// Every table of a loaded spectral model equals the one of the model it was saved from.
void ExpectWhole(const SpectralModel<Unpolarized>& got, const SpectralModel<Unpolarized>& want,
                 const std::string& where) {
    ASSERT_TRUE(got.IsEqual(&want)) << where;
    const int n = want.NWaves();
    ASSERT_EQ(got.GetSpectral2XYZWeights().Count(), n) << where;
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(got.GetSpectral2XYZWeights()[i], want.GetSpectral2XYZWeights()[i]) << where;
    MassColConv* conv = got.GetMassColConv();
    ASSERT_NE(conv, nullptr) << where;
    const TVect3<double>* rows = conv->WeightsForLight();
    const TVect3<double>* wantRows = want.GetMassColConv()->WeightsForLight();
    ASSERT_NE(rows, nullptr) << where;
    for (int i = 0; i < n; ++i)
        EXPECT_EQ(rows[i], wantRows[i]) << where;
}

} // namespace

// A plug file read while memory runs out: the load fails with a message that says so, or the
// model it hands out is whole.
TEST_F(FaultSweep, PlugFileLoadOfASpectralModel) {
    const GridModel<Unpolarized> saved(Grid({380.0, 390.5, 450.0, 520.0, 700.0}));
    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        const std::string path = testing::TempDir() + "fault_sweep_model.plug";
        ASSERT_EQ(PlugFile::Save(saved, path.c_str(), format), 0);
        int refused = 0;
        Sweep([&](const std::string& where) {
            const Balance balance;
            {
                std::string error;
                PlugRef loaded = PlugFile::Load(path.c_str(), error);
                if (loaded) {
                    ExpectWhole(*static_cast<SpectralModel<Unpolarized>*>(loaded.Get()), saved,
                                where);
                } else {
                    ++refused;
                    EXPECT_NE(error.find("memory"), std::string::npos) << where << ": " << error;
                }
            }
            balance.Expect(where);
        });
        EXPECT_GT(refused, 0);
        std::remove(path.c_str());
    }
}

// Registration at every site: a failed InitClasses returns -1 after a no-memory report or a
// refused step, and TermClasses leaves nothing behind.
TEST(FaultSweepInit, InitClassesAtEverySite) {
    const std::size_t types = PlugType::Registered().size();
    Sweep([&](const std::string& where) {
        const Balance balance;
        const int result = InitClasses();
        if (result != 0) {
            EXPECT_EQ(result, -1) << where;
            bool noMemory = false;
            for (const Report& r : ReportLog::Entries())
                noMemory = noMemory || r.kind == ReportKind::NoMemory;
            EXPECT_TRUE(noMemory) << where;
        }
        FaultInjection::Disarm();
        TermClasses();
        EXPECT_EQ(PlugType::Registered().size(), types) << where;
        EXPECT_TRUE(TColorModel->Models().empty()) << where;
        balance.Expect(where);
    });
}

// Changing the converter of every model, and converting colours between models, while memory
// runs out: a conversion answers 0 or the code of a report it made; a model keeps working.
TEST_F(FaultSweep, ConverterChangeAndConversions) {
    const ColorModel* rgb = TColorModel->FindModel("URGB");
    const ColorModel* spectral = TColorModel->FindModel("USpectr");
    const ColorModel* xyz = TColorModel->FindModel("XYZ");
    ASSERT_TRUE(rgb && spectral && xyz);
    // A converter change that runs out of memory may leave a model's tables unbuilt (they are
    // built again on use); a change with memory back makes every model whole again.
    Sweep([&](const std::string&) { TColorModel->SetCIEConvAllForAll(CIEConvAll::Default()); });
    FaultInjection::Disarm();
    TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
    ASSERT_NE(spectral->GetMassColConv(), nullptr);
    EXPECT_NE(spectral->GetMassColConv()->WeightsForLight(), nullptr);
    Sweep([&](const std::string& where) {
        const Balance balance;
        {
            TPlugRef<Holder<ILgtColor>> from = rgb->NewLgtColorHold();
            TPlugRef<Holder<ILgtColor>> spectrum = spectral->NewLgtColorHold();
            TPlugRef<Holder<ILgtColor>> back = xyz->NewLgtColorHold();
            if (from && spectrum && back) {
                const double values[3] = {0.25, 0.5, 0.75};
                rgb->SetLgtColor(from->Color(), values);
                for (int result : {spectral->ConvertColor(rgb, from->Color(), spectrum->Color()),
                                   xyz->ConvertColor(spectral, spectrum->Color(), back->Color())}) {
                    if (result != 0 && result != -1) {
                        EXPECT_TRUE(result == kNoMemoryCode || result == kErrorMessageCode ||
                                    result == kInternalErrorCode)
                            << where << ": " << result;
                        EXPECT_FALSE(ReportLog::Entries().empty()) << where;
                    }
                }
                TVect3<double> v;
                spectral->LgtColorToDisplayRGB(spectrum->Color(), v);
            }
        }
        balance.Expect(where);
    });
}
