// Module handles and the base library's record of the plug-in module being loaded.
#pragma once

#include "hostkit/HostExport.h"

// The module handle and the entry's answer, under the names a DllMain is written with. On Windows
// they are the system's own types (HINSTANCE is a pointer to the incomplete HINSTANCE__, BOOL an
// int), declared here without <windows.h>, whose macros would reach every file of a host.
#if defined(_WIN32)
struct HINSTANCE__;
namespace Korvane {
using HINSTANCE = ::HINSTANCE__*;
using BOOL = int;
} // namespace Korvane
#else
namespace Korvane {
using HINSTANCE = void*;
using BOOL = int;
} // namespace Korvane
#endif

namespace Korvane {

// Process attach and detach reasons passed to a module's DllMain.
inline constexpr unsigned long kProcessDetach = 0;
inline constexpr unsigned long kProcessAttach = 1;

// Called by a module's entry on process attach: records the handle of the module being loaded.
KOR_HOST_API void PluginLoading(HINSTANCE module);
// The handle last recorded by PluginLoading (null before any), and how many modules reported.
KOR_HOST_API HINSTANCE LoadingModule();
KOR_HOST_API int PluginLoadingCalls();

} // namespace Korvane
