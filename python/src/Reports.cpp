#include "python/src/Reports.h"

namespace Korvane::Py {

void ReportCollector::Receive(const Report& report) {
    std::lock_guard<std::mutex> lock(mutex_);
    kept_.push_back(report);
    if (kept_.size() > kKept) {
        kept_.pop_front();
        ++dropped_;
    }
    ++received_;
}

unsigned long long ReportCollector::Mark() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return received_;
}

std::vector<Report> ReportCollector::Since(unsigned long long mark) const {
    std::lock_guard<std::mutex> lock(mutex_);
    // kept_ holds reports received_ - kept_.size() .. received_ - 1.
    const unsigned long long first = received_ - kept_.size();
    std::vector<Report> out;
    for (std::size_t i = 0; i < kept_.size(); ++i)
        if (first + i >= mark)
            out.push_back(kept_[i]);
    return out;
}

unsigned long long ReportCollector::Dropped() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return dropped_;
}

void ReportCollector::Clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    kept_.clear();
    dropped_ = 0;
}

const char* KindName(ReportKind kind) {
    switch (kind) {
    case ReportKind::InternalError:
        return "internal error";
    case ReportKind::ErrorMessage:
        return "error";
    case ReportKind::NoMemory:
        return "no memory";
    case ReportKind::Log:
        break;
    }
    return "log";
}

namespace {

std::string Message(const std::string& context, const std::string& text, int code,
                    long long index) {
    std::string m = context;
    if (index >= 0)
        m += " (colour " + std::to_string(index) + ")";
    return m + ": " + text + " (code " + std::to_string(code) + ")";
}

int CodeOf(ReportKind kind) {
    switch (kind) {
    case ReportKind::InternalError:
        return kInternalErrorCode;
    case ReportKind::ErrorMessage:
        return kErrorMessageCode;
    case ReportKind::NoMemory:
        return kNoMemoryCode;
    case ReportKind::Log:
        break;
    }
    return 0;
}

} // namespace

LibraryError::LibraryError(const std::string& context, std::string text, int code,
                           std::vector<std::string> reports, long long index)
    : std::runtime_error(Message(context, text, code, index)), text_(std::move(text)), code_(code),
      reports_(std::move(reports)), index_(index) {}

void ThrowFailure(const ReportCollector& reports, unsigned long long mark,
                  const std::string& context, int code, long long index) {
    std::vector<std::string> errors;
    std::string matching, last;
    for (const Report& r : reports.Since(mark)) {
        if (r.kind == ReportKind::Log)
            continue;
        errors.push_back(r.text);
        last = r.text;
        if (CodeOf(r.kind) == code)
            matching = r.text;
    }
    std::string text = !matching.empty() ? matching : !last.empty() ? last : "no report was made";
    throw LibraryError(context, std::move(text), code, std::move(errors), index);
}

} // namespace Korvane::Py
