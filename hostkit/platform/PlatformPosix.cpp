#include "hostkit/platform/Platform.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace Korvane::Platform {

void* OpenLibrary(const char* path, std::string& error, OpenFailure* failure) {
    void* lib = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!lib) {
        const char* why = dlerror();
        error = why ? why : "unknown dlopen failure";
        if (failure)
            *failure = OpenFailure::NotALibrary;
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

// The executable is read from /proc/self/exe (Linux); elsewhere the fallback applies.
std::string FileBesideExecutable(const char* name) {
    std::vector<char> buffer(256);
    for (;;) {
        const ssize_t n = readlink("/proc/self/exe", buffer.data(), buffer.size());
        if (n < 0)
            return std::string("./") + name;
        const auto length = static_cast<std::size_t>(n);
        if (length < buffer.size()) {
            std::string self(buffer.data(), length);
            return self.substr(0, self.rfind('/') + 1) + name;
        }
        buffer.resize(buffer.size() * 2); // possibly cut short: read again with more room
    }
}

// File names and the environment are bytes here, UTF-8 by convention.
std::FILE* OpenFile(const char* path, const char* mode) {
    return std::fopen(path, mode);
}

std::string EnvironmentVariable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : std::string();
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
