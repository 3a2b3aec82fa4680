#include "cli/PluginSession.h"

#include "hostkit/platform/Platform.h"

namespace Korvane::Cli {

PluginSession::PluginSession(const std::string& path) : path_(path.empty() ? DefaultPath() : path) {
    loader_.Load(path_.c_str());
}

std::string PluginSession::DefaultPath() {
    return Platform::FileBesideExecutable(KORVANE_PLUGIN_FILE);
}

} // namespace Korvane::Cli
