// Where a host finds the colour-model plug-in module.
//
// The build and the install both put the plug-in in the same folder as the host kit library
// (the library folder, lib/ or lib64/, for ELF shared objects; bin/ for DLLs). So the default is
// found from the host kit itself, wherever an installed prefix has been moved to:
//
//   1. the environment variable KORVANE_PLUGIN, when it is set and not empty (a full path);
//   2. otherwise PluginFileName() in the folder of the loaded host kit library.
//
// A host that takes a path from its user (an argument, a setting) passes that to
// PluginLoader::Load instead; this is only the default.
#pragma once

#include "hostkit/HostExport.h"

#include <string>

namespace Korvane {

// The name of the environment variable that overrides the default plug-in path.
inline constexpr const char* kPluginPathVariable = "KORVANE_PLUGIN";

// The plug-in module's file name on this platform, e.g. "libkorvane_colour.so".
KOR_HOST_API const char* PluginFileName();

// The folder of the loaded host kit library (no trailing separator); empty when the platform
// cannot tell.
KOR_HOST_API std::string HostKitFolder();

// The plug-in path a host loads by default: KORVANE_PLUGIN when set and not empty, else
// PluginFileName() in HostKitFolder() (just the file name when that folder is unknown, which
// leaves the search to the platform's loader).
KOR_HOST_API std::string DefaultPluginPath();

} // namespace Korvane
