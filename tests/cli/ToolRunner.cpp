#include "ToolRunner.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace Korvane::ToolTest {
namespace {

std::string Slurp(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream s;
    s << in.rdbuf();
    return s.str();
}

std::string TempDir() {
    static const std::string dir = [] {
        const auto d = std::filesystem::temp_directory_path() /
                       ("korvane_tool_test_" + std::to_string(::getpid()));
        std::filesystem::create_directories(d);
        return d.string();
    }();
    return dir;
}

} // namespace

ToolResult Tool(const std::string& args, const std::string& input) {
    const std::string in = TempFile("stdin", input);
    const std::string out = TempDir() + "/stdout", err = TempDir() + "/stderr";
    const std::string cmd = std::string("'") + KORVANE_TOOL + "' " + args + " <'" + in + "' >'" +
                            out + "' 2>'" + err + "'";
    const int status = std::system(cmd.c_str());
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return {code, Slurp(out), Slurp(err)};
}

std::string TempFile(const std::string& name, const std::string& text) {
    const std::string path = TempDir() + "/" + name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
}

std::string DataFile(const std::string& name) {
    return std::string(KORVANE_TEST_DATA) + "/" + name;
}

} // namespace Korvane::ToolTest
