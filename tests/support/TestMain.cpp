// Test main shared by every test binary: reports go to the log only (tests read them there),
// and after each test the "TArray" memory statistics and the live plug count must be back where
// they were when the test started.
#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"
#include "hostkit/plugsys/Plug.h"

#include <gtest/gtest.h>

namespace {

class BalanceCheck : public testing::EmptyTestEventListener {
public:
    void OnTestStart(const testing::TestInfo&) override {
        Korvane::ReportLog::Clear();
        blocks_ = Korvane::MemStats::Get("TArray").blocksOutstanding;
        bytes_ = Korvane::MemStats::Get("TArray").bytesOutstanding;
        plugs_ = Korvane::PlugStats::Alive();
    }
    void OnTestEnd(const testing::TestInfo& info) override {
        const auto now = Korvane::MemStats::Get("TArray");
        if (now.blocksOutstanding != blocks_ || now.bytesOutstanding != bytes_)
            ADD_FAILURE() << info.name() << " left " << (now.blocksOutstanding - blocks_)
                          << " \"TArray\" blocks (" << (now.bytesOutstanding - bytes_)
                          << " bytes) outstanding";
        if (Korvane::PlugStats::Alive() != plugs_)
            ADD_FAILURE() << info.name() << " left " << (Korvane::PlugStats::Alive() - plugs_)
                          << " plugs alive";
    }

private:
    long long blocks_ = 0;
    long long bytes_ = 0;
    long long plugs_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    Korvane::SetReportSink(Korvane::SilentSink());
    testing::UnitTest::GetInstance()->listeners().Append(new BalanceCheck);
    return RUN_ALL_TESTS();
}
