// Plug files: a small plug type of the test saved and loaded in both formats, and every way a
// load can go wrong ending in an error, no plug handed out and nothing leaked.
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/Serializer.h"
#include "hostkit/base/User.h"
#include "hostkit/plugsys/PlugType.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <vector>

using namespace Korvane;

namespace {

PlugType* gProbeType = nullptr;

class Probe : public Plug {
public:
    PlugType* ObjType() const override { return gProbeType; }
    void OnLoad(int version) override { loadedVersion = version; }

    double value = 0.0;
    std::vector<double> samples;
    bool flag = false;
    int loadedVersion = -1;
};

class ProbeType : public PlugType {
public:
    ProbeType() : PlugType("TestProbe", nullptr, true, nullptr) {}
    Plug* NewInstance() override { return new Probe; }
    int SerializeInstance(Plug* plug, Serializer& s) override {
        auto* p = static_cast<Probe*>(plug);
        s.OpenGroup(group);
        s.Serialize(p->value);
        std::int32_t n = static_cast<std::int32_t>(p->samples.size());
        s.SerializeCount(n, 1);
        if (s.IsReading())
            p->samples.assign(static_cast<std::size_t>(n), 0.0);
        s.Serialize(p->samples.data(), n);
        s.Serialize("Flag", p->flag, false);
        return s.CloseGroup();
    }
    const char* group = "Probe"; // a reader that expects another group meets a mismatch
};

class PlugFileTest : public testing::Test {
protected:
    void SetUp() override {
        gProbeType = new ProbeType;
        path_ = testing::TempDir() + "plugfile_" +
                testing::UnitTest::GetInstance()->current_test_info()->name() + ".kor";
    }
    void TearDown() override {
        DeleteType(gProbeType);
        std::remove(path_.c_str());
    }
    // Saves a probe with known values in the given format.
    void SaveProbe(ArchiveFormat format) {
        PlugRef probe = new Probe;
        auto* p = static_cast<Probe*>(probe.Get());
        p->value = -0.0;
        p->samples = {380.0, 1e-310, 780.0};
        p->flag = true;
        ASSERT_EQ(PlugFile::Save(*p, path_.c_str(), format), 0);
    }
    std::string ReadBytes() {
        std::string bytes, error;
        EXPECT_TRUE(ArchiveBytes::ReadFile(path_.c_str(), bytes, error)) << error;
        return bytes;
    }
    void WriteBytes(const std::string& bytes) {
        std::string error;
        ASSERT_TRUE(ArchiveBytes::WriteFile(path_.c_str(), bytes, error)) << error;
    }

    std::string path_;
};

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_F(PlugFileTest, SavesAndLoadsInBothFormats) {
    for (const ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        SaveProbe(format);
        std::string error = "stale";
        const PlugRef loaded = PlugFile::Load(path_.c_str(), error);
        ASSERT_TRUE(loaded) << error;
        EXPECT_EQ(error, "");
        const auto* p = static_cast<const Probe*>(loaded.Get());
        EXPECT_TRUE(std::signbit(p->value));
        EXPECT_EQ(p->samples, (std::vector<double>{380.0, 1e-310, 780.0}));
        EXPECT_TRUE(p->flag);
        EXPECT_EQ(p->loadedVersion, 1);
        EXPECT_EQ(loaded.Get()->RefCount(), 1);
    }
}

TEST_F(PlugFileTest, DamagedFilesAreErrorsAndNoPlugSurvives) {
    SaveProbe(ArchiveFormat::Binary);
    const std::string whole = ReadBytes();
    const long long alive = PlugStats::Alive();
    std::string error;

    WriteBytes(whole.substr(0, whole.size() - 5));
    EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
    EXPECT_TRUE(Contains(error, path_)) << error;
    EXPECT_TRUE(Contains(error, "announces")) << error;

    WriteBytes("just some text\n");
    EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
    EXPECT_TRUE(Contains(error, "not a plug file")) << error;

    // A good file read by a routine that expects another group: the half-read plug is released.
    WriteBytes(whole);
    static_cast<ProbeType*>(gProbeType)->group = "Other";
    EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
    EXPECT_TRUE(Contains(error, "\"Other\"")) << error;
    EXPECT_EQ(PlugStats::Alive(), alive);

    std::remove(path_.c_str());
    EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
    EXPECT_TRUE(Contains(error, "cannot open")) << error;
}

TEST_F(PlugFileTest, UnknownTypeIsNamed) {
    SaveProbe(ArchiveFormat::Text);
    DeleteType(gProbeType);
    std::string error;
    EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
    EXPECT_TRUE(Contains(error, "unknown plug type \"TestProbe\"")) << error;
}

TEST_F(PlugFileTest, NoMemoryForTheNewPlugIsAnError) {
    SaveProbe(ArchiveFormat::Binary);
    std::string error;
    {
        FaultInjection::ScopedFailure noPlugs(FaultInjection::PlugAlloc, 1);
        EXPECT_FALSE(PlugFile::Load(path_.c_str(), error));
    }
    EXPECT_TRUE(Contains(error, "could not create a plug")) << error;
}

TEST_F(PlugFileTest, SaveFailuresReturnTheCodeOfTheirReport) {
    PlugRef untyped = new Plug;
    EXPECT_EQ(PlugFile::Save(*untyped.Get(), path_.c_str()), kInternalErrorCode);

    PlugRef probe = new Probe;
    const std::string nowhere = testing::TempDir() + "no-such-dir/probe.kor";
    EXPECT_EQ(probe.Get()->SaveToFile(nowhere.c_str()), kErrorMessageCode);

    const std::vector<Report> reports = ReportLog::Entries();
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_TRUE(Contains(reports[0].text, path_) && Contains(reports[0].text, "no type"))
        << reports[0].text;
    EXPECT_TRUE(Contains(reports[1].text, nowhere)) << reports[1].text;
}
