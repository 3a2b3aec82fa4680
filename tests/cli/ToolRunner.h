// Runs the built command-line tool as a user would and captures its exit code, standard output
// and standard error.
#pragma once

#include <string>

namespace Korvane::ToolTest {

struct ToolResult {
    int code;
    std::string out;
    std::string err;
};

// `args` is passed to /bin/sh after the tool's path (quote as in a shell); `input` becomes the
// tool's standard input.
ToolResult Tool(const std::string& args, const std::string& input = "");

// A fresh file under the test's temporary folder holding `text`; returns its path.
std::string TempFile(const std::string& name, const std::string& text);

// Test data shipped with the tests (tests/cli/data/name).
std::string DataFile(const std::string& name);

} // namespace Korvane::ToolTest
