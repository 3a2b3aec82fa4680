// The small platform interface of the host kit: dynamic libraries, the running executable's
// location, files, the environment and aligned memory. One implementation per platform family
// (PlatformPosix.cpp, PlatformWindows.cpp). Paths are UTF-8 on every platform.
#pragma once

#include "hostkit/HostExport.h"

#include <cstddef>
#include <cstdio>
#include <string>

namespace Korvane::Platform {

// Why OpenLibrary gave no library.
enum class OpenFailure {
    NotALibrary,  // missing, unreadable, not a library of this platform, or a dependency missing
    EntryRefused, // Windows only: the library's DllMain answered FALSE inside LoadLibrary
};

// Opens a shared library; null with `error` set (and `failure`, when given) when it cannot be
// opened. On Windows the system calls the library's DllMain with process attach in here, and with
// process detach in CloseLibrary; elsewhere nothing of the library's own code runs but its static
// initialisers.
void* OpenLibrary(const char* path, std::string& error, OpenFailure* failure = nullptr);
// The address of an exported symbol, or null.
void* FindSymbol(void* library, const char* name);
void CloseLibrary(void* library);

// The file of the loaded module (shared library or executable) that contains `address`; empty
// when the platform cannot tell.
std::string ModulePathOf(const void* address);
// The file `name` in the folder of the running executable, joined with the platform's separator;
// "./name" (".\name" on Windows) when the executable's location cannot be found.
KOR_HOST_API std::string FileBesideExecutable(const char* name);

// std::fopen for a UTF-8 path (Windows reads a narrow path in the system's code page, so a name
// that is not ASCII would open another file or none). Null with errno set when it cannot open.
std::FILE* OpenFile(const char* path, const char* mode);
// The value of an environment variable in UTF-8; empty when it is not set.
std::string EnvironmentVariable(const char* name);

void* AlignedAlloc(std::size_t bytes, std::size_t alignment);
void AlignedRelease(void* p);

} // namespace Korvane::Platform
