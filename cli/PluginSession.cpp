#include "cli/PluginSession.h"

#include <filesystem>

namespace Korvane::Cli {

PluginSession::PluginSession(const std::string& path) : path_(path.empty() ? DefaultPath() : path) {
    loader_.Load(path_.c_str());
}

std::string PluginSession::DefaultPath() {
    namespace fs = std::filesystem;
    std::error_code ec;
    fs::path self = fs::read_symlink("/proc/self/exe", ec);
    const fs::path dir = ec ? fs::current_path() : self.parent_path();
    return (dir / KORVANE_PLUGIN_FILE).string();
}

} // namespace Korvane::Cli
