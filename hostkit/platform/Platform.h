// The small platform interface of the host kit: dynamic libraries and aligned memory.
// One implementation per platform family (PlatformPosix.cpp, PlatformWindows.cpp).
#pragma once

#include <cstddef>
#include <string>

namespace Korvane::Platform {

// Opens a shared library; null with `error` set when it cannot be opened.
void* OpenLibrary(const char* path, std::string& error);
// The address of an exported symbol, or null.
void* FindSymbol(void* library, const char* name);
void CloseLibrary(void* library);

// The file of the loaded module (shared library or executable) that contains `address`; empty
// when the platform cannot tell.
std::string ModulePathOf(const void* address);

void* AlignedAlloc(std::size_t bytes, std::size_t alignment);
void AlignedRelease(void* p);

} // namespace Korvane::Platform
