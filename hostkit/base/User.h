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

// The report log. Reading returns a copy; clearing starts a fresh log.
namespace ReportLog {
KOR_HOST_API std::vector<Report> Entries();
KOR_HOST_API std::size_t Count();
KOR_HOST_API void Clear();
} // namespace ReportLog

} // namespace Korvane
