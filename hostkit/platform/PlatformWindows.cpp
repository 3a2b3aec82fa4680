#include "hostkit/platform/Platform.h"

#include <malloc.h>
#include <windows.h>

namespace Korvane::Platform {

void* OpenLibrary(const char* path, std::string& error) {
    HMODULE lib = LoadLibraryA(path);
    if (!lib)
        error = "LoadLibrary failed with error " + std::to_string(GetLastError());
    return reinterpret_cast<void*>(lib);
}

void* FindSymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void CloseLibrary(void* library) {
    FreeLibrary(static_cast<HMODULE>(library));
}

std::string ModulePathOf(const void* address) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCSTR>(address), &module))
        return std::string();
    char path[MAX_PATH];
    const DWORD n = GetModuleFileNameA(module, path, MAX_PATH);
    if (n == 0 || n >= MAX_PATH)
        return std::string();
    return std::string(path, n);
}

void* AlignedAlloc(std::size_t bytes, std::size_t alignment) {
    return _aligned_malloc(bytes == 0 ? alignment : bytes, alignment);
}

void AlignedRelease(void* p) {
    _aligned_free(p);
}

} // namespace Korvane::Platform
