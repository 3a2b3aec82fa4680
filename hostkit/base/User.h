// The host's user object: where libraries report errors and log lines.
//
// Every report is recorded in the report log (kind, formatted text, order) and passed on to a
// sink (standard error unless a program installs its own). Each error report returns a distinct
// non-zero code other than -1, so a caller can tell which report produced a returned status:
// InternalError 2, ErrorMessageEx 3, ErrorNoMemory 4.
#pragma once

#include "hostkit/HostExport.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Korvane {

enum class ReportKind { InternalError, ErrorMessage, NoMemory, Log };

inline constexpr int kInternalErrorCode = 2;
inline constexpr int kErrorMessageCode = 3;
inline constexpr int kNoMemoryCode = 4;

struct Report {
    ReportKind kind;
    std::string text;
    unsigned long long sequence; // increases by one per report, process-wide
};

// Receives every report after it is recorded.
class KOR_HOST_API IReportSink {
public:
    virtual ~IReportSink();
    virtual void Receive(const Report& report) = 0;
};

class KOR_HOST_API IUser {
public:
    virtual ~IUser();
    virtual int InternalError(const char* format, ...) KOR_PRINTF_FORMAT(2, 3);
    virtual int ErrorMessageEx(const char* format, const char* message);
    virtual int ErrorNoMemory(long long size);
    virtual void LogMessage(const char* format, ...) KOR_PRINTF_FORMAT(2, 3);

protected:
    // Records the report and hands it to the sink; the base of every slot above.
    void Emit(ReportKind kind, std::string text);
};

// The current user object: the one installed by SetUser, else the host's default.
KOR_HOST_API IUser* User();
// Installs a user object (null restores the default). The caller keeps ownership.
KOR_HOST_API void SetUser(IUser* user);

// The sink that receives reports; null restores the standard-error sink. The caller keeps
// ownership. SilentSink() drops everything (tests record through the log instead).
KOR_HOST_API void SetReportSink(IReportSink* sink);
KOR_HOST_API IReportSink* SilentSink();

// The report log: the most recent reports, oldest first.
//
// The log is bounded: it keeps the last Capacity() reports (kDefaultReportLogCapacity unless a
// program sets another) and counts the older ones it dropped, so a host that fails millions of
// conversions keeps a log of constant size. Every report still reaches the sink, and sequence
// numbers keep counting through drops.
namespace ReportLog {
// How many reports the log keeps unless SetCapacity says otherwise.
inline constexpr std::size_t kDefaultReportLogCapacity = 1000;
// A copy of the kept reports, oldest first: at most Capacity() of them. When Dropped() is not 0,
// older reports were made and are no longer kept.
KOR_HOST_API std::vector<Report> Entries();
// The number of reports kept (at most Capacity()).
KOR_HOST_API std::size_t Count();
// The number of reports dropped, oldest first, to stay within the capacity since the last Clear.
KOR_HOST_API unsigned long long Dropped();
// Empties the log and sets Dropped() to 0; the capacity stays.
KOR_HOST_API void Clear();
// Keeps at most `n` reports from now on (0 keeps none; every report is then dropped and
// counted). Shrinking drops the oldest kept reports and counts them.
KOR_HOST_API void SetCapacity(std::size_t n);
KOR_HOST_API std::size_t Capacity();
} // namespace ReportLog

} // namespace Korvane
