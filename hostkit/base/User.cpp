#include "hostkit/base/User.h"

#include "hostkit/base/MemStat.h"

#include <cstdarg>
#include <cstdio>
#include <deque>
#include <mutex>

namespace Korvane {
namespace {

class StderrSink final : public IReportSink {
public:
    void Receive(const Report& r) override {
        static const char* const kinds[] = {"internal error", "error", "no memory", "log"};
        std::fprintf(stderr, "korvane %s: %s\n", kinds[static_cast<int>(r.kind)], r.text.c_str());
    }
};

class NullSink final : public IReportSink {
public:
    void Receive(const Report&) override {}
};

class DefaultUser final : public IUser {};

struct ReportState {
    std::mutex mutex;
    std::deque<Report> log; // the last `capacity` reports
    std::size_t capacity = ReportLog::kDefaultReportLogCapacity;
    unsigned long long dropped = 0;
    unsigned long long next = 1;
    IReportSink* sink = nullptr;
    IUser* user = nullptr;
};

ReportState& State() {
    static ReportState state;
    return state;
}

StderrSink& DefaultSink() {
    static StderrSink sink;
    return sink;
}

std::string FormatV(const char* format, va_list args) {
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(nullptr, 0, format, copy);
    va_end(copy);
    if (n <= 0)
        return n == 0 ? std::string() : std::string(format);
    std::string text(static_cast<std::size_t>(n) + 1, '\0');
    std::vsnprintf(text.data(), text.size(), format, args);
    text.resize(static_cast<std::size_t>(n));
    return text;
}

} // namespace

IReportSink::~IReportSink() = default;
IUser::~IUser() = default;

void IUser::Emit(ReportKind kind, std::string text) {
    ReportState& st = State();
    Report report;
    IReportSink* sink;
    {
        std::lock_guard<std::mutex> lock(st.mutex);
        report = Report{kind, std::move(text), st.next++};
        if (st.capacity == 0) {
            ++st.dropped;
        } else {
            if (st.log.size() == st.capacity) {
                st.log.pop_front();
                ++st.dropped;
            }
            st.log.push_back(report);
        }
        sink = st.sink ? st.sink : &DefaultSink();
    }
    sink->Receive(report);
}

int IUser::InternalError(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    Emit(ReportKind::InternalError, std::move(text));
    return kInternalErrorCode;
}

int IUser::ErrorMessageEx(const char* format, const char* message) {
    // The message is the argument of the format; a format without a conversion stands alone.
    std::string text;
    const std::string f(format ? format : "");
    const std::size_t at = f.find("%s");
    if (at == std::string::npos)
        text = f;
    else
        text = f.substr(0, at) + (message ? message : "") + f.substr(at + 2);
    Emit(ReportKind::ErrorMessage, std::move(text));
    return kErrorMessageCode;
}

int IUser::ErrorNoMemory(long long size) {
    MemStats::RecordFailure();
    Emit(ReportKind::NoMemory, size < 0
                                   ? std::string("out of memory")
                                   : "out of memory allocating " + std::to_string(size) + " bytes");
    return kNoMemoryCode;
}

void IUser::LogMessage(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    Emit(ReportKind::Log, std::move(text));
}

IUser* User() {
    static DefaultUser defaultUser;
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    return st.user ? st.user : &defaultUser;
}

void SetUser(IUser* user) {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    st.user = user;
}

void SetReportSink(IReportSink* sink) {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    st.sink = sink;
}

IReportSink* SilentSink() {
    static NullSink sink;
    return &sink;
}

namespace ReportLog {
std::vector<Report> Entries() {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    return std::vector<Report>(st.log.begin(), st.log.end());
}
std::size_t Count() {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    return st.log.size();
}
void Clear() {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    st.log.clear();
    st.dropped = 0;
}
unsigned long long Dropped() {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    return st.dropped;
}
void SetCapacity(std::size_t n) {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    st.capacity = n;
    while (st.log.size() > n) {
        st.log.pop_front();
        ++st.dropped;
    }
}
std::size_t Capacity() {
    ReportState& st = State();
    std::lock_guard<std::mutex> lock(st.mutex);
    return st.capacity;
}
} // namespace ReportLog

} // namespace Korvane
