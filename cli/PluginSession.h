// PluginSession: the tool's hold on the colour-model plug-in for one run. It loads the module
// (by default Korvane::DefaultPluginPath(): beside the host kit), lets it register its classes, and
// unloads it when the session ends.
#pragma once

#include "hostkit/plugsys/PluginLoader.h"

#include <string>

namespace Korvane::Cli {

class PluginSession {
public:
    // Loads `path`, or DefaultPath() when `path` is empty.
    explicit PluginSession(const std::string& path);
    ~PluginSession() { loader_.Unload(); }
    PluginSession(const PluginSession&) = delete;
    PluginSession& operator=(const PluginSession&) = delete;

    bool Loaded() const { return loader_.IsLoaded(); }
    const std::string& Error() const { return loader_.Error(); }
    const std::string& Path() const { return path_; }
    int Version() const { return loader_.VersionId(); }

    // The host kit's default plug-in path (KORVANE_PLUGIN, else beside the host kit).
    static std::string DefaultPath();

private:
    PluginLoader loader_;
    std::string path_;
};

} // namespace Korvane::Cli
