#include "hostkit/plugsys/PluginLocation.h"

#include "hostkit/platform/Platform.h"

#ifndef KORVANE_PLUGIN_FILE_NAME
#error "the build defines KORVANE_PLUGIN_FILE_NAME, the plug-in's file name"
#endif

namespace Korvane {
namespace {
// Any address inside this library names it.
const char kAnchor = 0;
} // namespace

const char* PluginFileName() {
    return KORVANE_PLUGIN_FILE_NAME;
}

std::string HostKitFolder() {
    const std::string self = Platform::ModulePathOf(&kAnchor);
    const std::size_t cut = self.find_last_of("/\\");
    return cut == std::string::npos ? std::string() : self.substr(0, cut);
}

std::string DefaultPluginPath() {
    std::string chosen = Platform::EnvironmentVariable(kPluginPathVariable);
    if (!chosen.empty())
        return chosen;
    const std::string folder = HostKitFolder();
    if (folder.empty())
        return PluginFileName();
#if defined(_WIN32)
    return folder + "\\" + PluginFileName();
#else
    return folder + "/" + PluginFileName();
#endif
}

} // namespace Korvane
