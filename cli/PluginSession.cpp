#include "cli/PluginSession.h"

#include "hostkit/plugsys/PluginLocation.h"

namespace Korvane::Cli {

PluginSession::PluginSession(const std::string& path) : path_(path.empty() ? DefaultPath() : path) {
    loader_.Load(path_.c_str());
}

// The host kit's default: KORVANE_PLUGIN, else the plug-in beside the host kit library, which is
// where the build and the install put it.
std::string PluginSession::DefaultPath() {
    return DefaultPluginPath();
}

} // namespace Korvane::Cli
