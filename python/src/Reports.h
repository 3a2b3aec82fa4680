// Reports: what the library and the host kit report while the Python module holds the plug-in,
// and the exception that carries a failure to Python.
//
// The module installs a ReportCollector as the host's report sink for as long as it holds the
// plug-in: reports then reach Python (as the text of an exception, or through korvane.reports())
// instead of standard error. The collector keeps the most recent kKept reports only, so a long
// session does not grow without bound, and counts the older ones it let go; the host kit's own
// report log is not touched.
#pragma once

#include "hostkit/base/User.h"

#include <cstddef>
#include <deque>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace Korvane::Py {

class ReportCollector final : public IReportSink {
public:
    static constexpr std::size_t kKept = 256;

    void Receive(const Report& report) override;
    // The number of reports received so far: a mark that Since() counts from.
    unsigned long long Mark() const;
    // The reports received after `mark` that are still kept, oldest first.
    std::vector<Report> Since(unsigned long long mark) const;
    // Every report still kept, oldest first.
    std::vector<Report> Kept() const { return Since(0); }
    // The number of reports let go, oldest first, to keep at most kKept since the last Clear.
    unsigned long long Dropped() const;
    // Forgets the kept reports and sets Dropped() to 0; marks stay valid.
    void Clear();

private:
    mutable std::mutex mutex_;
    std::deque<Report> kept_;
    unsigned long long received_ = 0;
    unsigned long long dropped_ = 0;
};

// The report kinds as Python sees them: "internal error", "error", "no memory", "log".
const char* KindName(ReportKind kind);

// A failure on its way to Python, where it becomes korvane.KorvaneError: the library's report
// text, the code the failing operation returned (2 internal error, 3 error message, 4 no memory,
// -1 where no report was made), every error report of the call, and the row of the colour that
// failed (-1 when the failure is not about one colour).
class LibraryError : public std::runtime_error {
public:
    LibraryError(const std::string& context, std::string text, int code,
                 std::vector<std::string> reports, long long index = -1);

    const std::string& Text() const { return text_; }
    int Code() const { return code_; }
    const std::vector<std::string>& Reports() const { return reports_; }
    long long Index() const { return index_; }

private:
    std::string text_;
    int code_;
    std::vector<std::string> reports_;
    long long index_;
};

// Throws the LibraryError of an operation that returned `code`: its text is that of the last
// error report made since `mark` whose kind returns `code` (else the last error report made
// since `mark`, else "no report was made").
[[noreturn]] void ThrowFailure(const ReportCollector& reports, unsigned long long mark,
                               const std::string& context, int code, long long index = -1);

} // namespace Korvane::Py
