// The user object and its report log, the report sink, and translation lookup.
#include "hostkit/base/GlobTr.h"
#include "hostkit/base/User.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvane;

namespace {

// Restores the tests' silent sink however a test ends.
struct SinkGuard {
    explicit SinkGuard(IReportSink* sink) { SetReportSink(sink); }
    ~SinkGuard() { SetReportSink(SilentSink()); }
};

struct UserGuard {
    explicit UserGuard(IUser* user) { SetUser(user); }
    ~UserGuard() { SetUser(nullptr); }
};

} // namespace

TEST(Reports, CodesTellTheReportsApart) {
    // Distinct, non-zero and not -1, so a returned status names the report behind it.
    const std::vector<int> codes = {User()->InternalError("a"), User()->ErrorMessageEx("b", "b"),
                                    User()->ErrorNoMemory(-1)};
    EXPECT_EQ(codes, (std::vector<int>{kInternalErrorCode, kErrorMessageCode, kNoMemoryCode}));
    EXPECT_EQ(codes, (std::vector<int>{2, 3, 4}));
}

TEST(Reports, LogRecordsKindTextAndOrder) {
    User()->InternalError("TArray: new_size=%d < 0", -5);
    User()->ErrorMessageEx("conversion of %s failed", "BW light");
    User()->ErrorMessageEx("BW light color conversion failure",
                           "BW light color conversion failure");
    User()->ErrorNoMemory(-1);
    User()->LogMessage("RGB color model %d is created", 1);

    const std::vector<Report> log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 5u);
    const std::vector<ReportKind> kinds = {ReportKind::InternalError, ReportKind::ErrorMessage,
                                           ReportKind::ErrorMessage, ReportKind::NoMemory,
                                           ReportKind::Log};
    for (std::size_t i = 0; i < log.size(); ++i) {
        EXPECT_EQ(log[i].kind, kinds[i]) << i;
        if (i > 0) {
            EXPECT_EQ(log[i].sequence, log[i - 1].sequence + 1) << i;
        }
    }
    EXPECT_EQ(log[0].text, "TArray: new_size=-5 < 0");
    EXPECT_EQ(log[1].text, "conversion of BW light failed");
    EXPECT_EQ(log[2].text, "BW light color conversion failure");
    EXPECT_EQ(log[4].text, "RGB color model 1 is created");

    ReportLog::Clear();
    EXPECT_EQ(ReportLog::Count(), 0u);
    User()->LogMessage("after");
    EXPECT_GT(ReportLog::Entries().at(0).sequence, log[4].sequence); // order survives a clear
}

TEST(Reports, SinkReceivesEveryReportAfterItIsLogged) {
    struct Collect : IReportSink {
        std::vector<std::string> texts;
        std::vector<std::size_t> logged;
        void Receive(const Report& r) override {
            texts.push_back(r.text);
            logged.push_back(ReportLog::Count());
        }
    } sink;
    {
        SinkGuard guard(&sink);
        User()->LogMessage("first");
        User()->InternalError("second %s", "report");
    }
    User()->LogMessage("not received");
    EXPECT_EQ(sink.texts, (std::vector<std::string>{"first", "second report"}));
    EXPECT_EQ(sink.logged, (std::vector<std::size_t>{1, 2}));
}

TEST(Reports, ProgramCanInstallItsOwnUser) {
    struct Counting : IUser {
        int internal = 0;
        int InternalError(const char*, ...) override {
            ++internal;
            return 9;
        }
    } user;
    {
        UserGuard guard(&user);
        EXPECT_EQ(User(), &user);
        EXPECT_EQ(User()->InternalError("x"), 9);
        EXPECT_EQ(User()->ErrorNoMemory(-1), kNoMemoryCode); // slots not replaced still log
    }
    EXPECT_EQ(user.internal, 1);
    EXPECT_NE(User(), &user);
    EXPECT_EQ(User()->InternalError("y"), kInternalErrorCode);
    const std::vector<Report> log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].kind, ReportKind::NoMemory);
    EXPECT_EQ(log[1].text, "y");
}

TEST(Translations, GlobTrReturnsTheTextOrTheInstalledTranslation) {
    const char* context = "ReportTest::Translate";
    const char* text = "Not supported light color conversion";
    EXPECT_EQ(GlobTr(context, text, nullptr), text); // the caller's own pointer
    Translations::Add(context, text, "translated");
    EXPECT_STREQ(GlobTr(context, text, nullptr), "translated");
    EXPECT_EQ(GlobTr("ReportTest::OtherContext", text, nullptr), text);
    Translations::Add(context, text, "replacement");
    EXPECT_STREQ(GlobTr(context, text, nullptr), "translated"); // the first one stays
    EXPECT_EQ(GlobTr(context, nullptr, nullptr), nullptr);
}

TEST(Translations, LookupCountTellsUnderWhichContextATextWasAsked) {
    const char* text = "BW light color conversion failure";
    Translations::Clear();
    GlobTr("ReportTest::A", text, nullptr);
    GlobTr("ReportTest::A", text, nullptr);
    GlobTr("ReportTest::B", text, nullptr);
    GlobTr(nullptr, text, nullptr);
    EXPECT_EQ(Translations::LookupCount("ReportTest::A", text), 2);
    EXPECT_EQ(Translations::LookupCount("ReportTest::B", text), 1);
    EXPECT_EQ(Translations::LookupCount("", text), 1);
    EXPECT_EQ(Translations::LookupCount("ReportTest::A", "other text"), 0);
    Translations::Clear();
    EXPECT_EQ(Translations::LookupCount("ReportTest::A", text), 0);
}

TEST(Reports, LogKeepsTheLastReportsAndCountsTheDropped) {
    struct CapacityGuard {
        ~CapacityGuard() { ReportLog::SetCapacity(ReportLog::kDefaultReportLogCapacity); }
    } guard;
    EXPECT_EQ(ReportLog::Capacity(), 1000u);
    for (int i = 0; i < 1005; ++i)
        User()->LogMessage("report %d", i);
    std::vector<Report> log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 1000u);
    EXPECT_EQ(ReportLog::Dropped(), 5u);
    EXPECT_EQ(log.front().text, "report 5");
    EXPECT_EQ(log.back().text, "report 1004");
    EXPECT_EQ(log.back().sequence - log.front().sequence, 999u);

    // Shrinking drops the oldest kept reports and counts them.
    ReportLog::SetCapacity(3);
    log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 3u);
    EXPECT_EQ(log[0].text, "report 1002");
    EXPECT_EQ(ReportLog::Dropped(), 1002u);
    User()->ErrorNoMemory(-1);
    log = ReportLog::Entries();
    EXPECT_EQ(log[0].text, "report 1003");
    EXPECT_EQ(log[2].kind, ReportKind::NoMemory);
    EXPECT_EQ(ReportLog::Dropped(), 1003u);

    // Capacity 0 keeps nothing but still counts, and the sink still hears every report.
    struct Counting final : IReportSink {
        int heard = 0;
        void Receive(const Report&) override { ++heard; }
    } counting;
    SinkGuard sink(&counting);
    ReportLog::SetCapacity(0);
    User()->InternalError("x");
    EXPECT_EQ(ReportLog::Count(), 0u);
    EXPECT_EQ(ReportLog::Dropped(), 1007u);
    EXPECT_EQ(counting.heard, 1);

    ReportLog::Clear();
    EXPECT_EQ(ReportLog::Dropped(), 0u);
    EXPECT_EQ(ReportLog::Capacity(), 0u) << "Clear keeps the capacity";
}
