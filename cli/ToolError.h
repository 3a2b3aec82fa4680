// ToolError: what ends a command early, with the tool's exit code: 1 for bad input data (what a
// file holds, a file that cannot be opened or written, a conversion the models refuse), 2 for bad
// usage (options and arguments, the numbers and grids given on the command line included).
// main catches it, writes the message to standard error and exits with the code.
#pragma once

#include <stdexcept>
#include <string>

namespace Korvane::Cli {

inline constexpr int kExitData = 1;
inline constexpr int kExitUsage = 2;

class ToolError : public std::runtime_error {
public:
    ToolError(int code, const std::string& message) : std::runtime_error(message), code_(code) {}
    int Code() const { return code_; }

private:
    int code_;
};

[[noreturn]] inline void DataError(const std::string& message) {
    throw ToolError(kExitData, message);
}
[[noreturn]] inline void UsageError(const std::string& message) {
    throw ToolError(kExitUsage, message);
}

} // namespace Korvane::Cli
