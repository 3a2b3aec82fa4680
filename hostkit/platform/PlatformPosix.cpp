#include "hostkit/platform/Platform.h"

#include <dlfcn.h>
#include <stdlib.h>

namespace Korvane::Platform {

void* OpenLibrary(const char* path, std::string& error) {
    void* lib = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!lib) {
        const char* why = dlerror();
        error = why ? why : "unknown dlopen failure";
    }
    return lib;
}

void* FindSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

void CloseLibrary(void* library) {
    dlclose(library);
}

std::string ModulePathOf(const void* address) {
    Dl_info info{};
    if (dladdr(address, &info) == 0 || !info.dli_fname)
        return std::string();
    return info.dli_fname;
}

void* AlignedAlloc(std::size_t bytes, std::size_t alignment) {
    void* p = nullptr;
    if (posix_memalign(&p, alignment, bytes == 0 ? alignment : bytes) != 0)
        return nullptr;
    return p;
}

void AlignedRelease(void* p) {
    free(p);
}

} // namespace Korvane::Platform
