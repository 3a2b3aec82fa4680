// Plug files: a small plug type of the test saved and loaded in both formats, and every way a
// load can go wrong ending in an error, no plug handed out and nothing leaked (the test main
// checks the live plug count).
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/Serializer.h"
#include "hostkit/base/User.h"
#include "hostkit/plugsys/PlugType.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <vector>

using namespace Korvane;

namespace {

PlugType* gProbeType = nullptr;

// A new probe is blank; SaveProbe gives it the values that a load must bring back.
struct Probe : Plug {
    PlugType* ObjType() const override { return gProbeType; }
    void OnLoad(int version) override { loadedVersion = version; }

    double value = 1.0;
    std::vector<double> samples;
    bool flag = false;
    int loadedVersion = -1;
};

struct ProbeType : PlugType {
    ProbeType() : PlugType("TestProbe", nullptr, true, nullptr) {}
    Plug* NewInstance() override { return new Probe; }
    int SerializeInstance(Plug* plug, Serializer& s) override {
        auto* p = static_cast<Probe*>(plug);
        s.OpenGroup(group);
        s.Serialize(p->value);
        std::int32_t n = static_cast<std::int32_t>(p->samples.size());
        s.SerializeCount(n, 1);
        p->samples.resize(static_cast<std::size_t>(n));
        s.Serialize(p->samples.data(), n);
        s.Serialize("Flag", p->flag, false);
        return s.CloseGroup();
    }
    const char* group = "Probe"; // a reader expecting another group meets a mismatch
};

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class PlugFileTest : public testing::Test {
protected:
    void SetUp() override {
        gProbeType = new ProbeType;
        path_ = testing::TempDir() + "plugfile_" +
                testing::UnitTest::GetInstance()->current_test_info()->name() + ".kor";
    }
    void TearDown() override {
        DeleteType(gProbeType);
        std::error_code ec;
        std::filesystem::remove(std::filesystem::u8path(path_), ec);
    }
    void SaveProbe(ArchiveFormat format) {
        Probe probe;
        probe.value = -0.0;
        probe.samples = {380.0, 1e-310, 780.0};
        probe.flag = true;
        ASSERT_EQ(PlugFile::Save(probe, path_.c_str(), format), 0);
    }
    // Loads the file, expecting a failure whose message holds `part`.
    void ExpectLoadError(const std::string& part) {
        std::string error;
        EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
        EXPECT_TRUE(Contains(error, part) && Contains(error, path_)) << error;
    }

    std::string path_;
};

} // namespace

TEST_F(PlugFileTest, SavesAndLoadsInBothFormats) {
    for (const ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        SaveProbe(format);
        std::string error = "stale";
        const PlugRef loaded = PlugFile::Load(path_.c_str(), error);
        ASSERT_TRUE(loaded) << error;
        EXPECT_EQ(error, "");
        const auto* p = static_cast<const Probe*>(loaded.Get());
        EXPECT_TRUE(p->value == 0.0 && std::signbit(p->value));
        EXPECT_EQ(p->samples, (std::vector<double>{380.0, 1e-310, 780.0}));
        EXPECT_TRUE(p->flag);
        EXPECT_EQ(p->loadedVersion, 1);
        EXPECT_EQ(loaded.Get()->RefCount(), 1);
    }
}

// Paths are UTF-8 on every platform: the file made is the one of that name (on Windows a narrow
// path would be read in the system's code page, and save and load would meet under another name).
TEST_F(PlugFileTest, SavesAndLoadsUnderANonAsciiName) {
    namespace fs = std::filesystem;
    path_ = testing::TempDir() + "plug-m\xC3\xB3"
                                 "dulo-\xE5\x85\x89.kor"; // "plug-módulo-光.kor"
    for (const ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        std::error_code ec;
        fs::remove(fs::u8path(path_), ec);
        SaveProbe(format);
        EXPECT_TRUE(fs::exists(fs::u8path(path_))) << path_;
        std::string error;
        const PlugRef loaded = PlugFile::Load(path_.c_str(), error);
        ASSERT_TRUE(loaded) << error;
        EXPECT_EQ(static_cast<const Probe*>(loaded.Get())->samples.size(), 3u);
    }
    fs::remove(fs::u8path(path_));
    ExpectLoadError("cannot open");
}

TEST_F(PlugFileTest, DamagedOrForeignFilesAreErrors) {
    SaveProbe(ArchiveFormat::Binary);
    std::string whole, error;
    ASSERT_TRUE(ArchiveBytes::ReadFile(path_.c_str(), whole, error));

    ASSERT_TRUE(ArchiveBytes::WriteFile(path_.c_str(), whole.substr(0, whole.size() - 5), error));
    ExpectLoadError("truncated");
    ASSERT_TRUE(ArchiveBytes::WriteFile(path_.c_str(), "just some text\n", error));
    ExpectLoadError("not a plug file");
    std::remove(path_.c_str());
    ExpectLoadError("cannot open");
}

TEST_F(PlugFileTest, AHalfReadPlugIsReleased) {
    SaveProbe(ArchiveFormat::Text);
    static_cast<ProbeType*>(gProbeType)->group = "Other";
    const long long alive = PlugStats::Alive();
    ExpectLoadError("\"Other\"");
    EXPECT_EQ(PlugStats::Alive(), alive);
}

TEST_F(PlugFileTest, UnknownTypeIsNamed) {
    SaveProbe(ArchiveFormat::Text);
    DeleteType(gProbeType);
    ExpectLoadError("unknown plug type \"TestProbe\"");
}

TEST_F(PlugFileTest, NoMemoryForTheNewPlugIsAnError) {
    SaveProbe(ArchiveFormat::Binary);
    FaultInjection::ScopedFailure noPlugs(FaultInjection::PlugAlloc, 1);
    ExpectLoadError("could not create a plug");
}

TEST_F(PlugFileTest, SaveFailuresReturnTheCodeOfTheirReport) {
    EXPECT_EQ(PlugFile::Save(Plug(), path_.c_str()), kInternalErrorCode);
    const std::string nowhere = testing::TempDir() + "no-such-dir/probe.kor";
    EXPECT_EQ(Probe().SaveToFile(nowhere.c_str()), kErrorMessageCode);

    const std::vector<Report> reports = ReportLog::Entries();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_TRUE(Contains(reports[0].text, path_) && Contains(reports[0].text, "no type"))
        << reports[0].text;
    EXPECT_TRUE(Contains(reports[1].text, nowhere)) << reports[1].text;
}
