// ToolError: what ends a command early, with the tool's exit code: 1 for bad input data (a file,
// a number, a grid or a conversion the models refuse), 2 for bad usage (options and arguments).
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
