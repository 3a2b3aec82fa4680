// Windows: libraries through LoadLibraryW/GetProcAddress/FreeLibrary, files through _wfopen and
// the environment through _wgetenv, with the UTF-8 of the rest of the host kit converted to the
// system's UTF-16.
#include "hostkit/platform/Platform.h"

#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <malloc.h>
#include <windows.h>

namespace Korvane::Platform {
namespace {

// UTF-8 to UTF-16; false for text that is not valid UTF-8.
bool Widen(const char* text, std::wstring& wide) {
    wide.clear();
    if (!*text)
        return true;
    const int n = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, nullptr, 0);
    if (n <= 0)
        return false;
    wide.resize(static_cast<std::size_t>(n));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, wide.data(), n);
    wide.pop_back(); // the terminating null, counted by the call
    return true;
}

std::string Narrow(const wchar_t* text, std::size_t length) {
    if (length == 0)
        return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), nullptr, 0,
                                      nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(n > 0 ? n : 0), '\0');
    if (n > 0)
        WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), narrow.data(), n, nullptr,
                            nullptr);
    return narrow;
}

// The system's text for an error code, without its closing full stop and line break, and the code.
std::string Describe(DWORD code) {
    wchar_t* text = nullptr;
    const DWORD n = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                       FORMAT_MESSAGE_IGNORE_INSERTS,
                                   nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::string message = text ? Narrow(text, n) : std::string();
    LocalFree(text);
    while (!message.empty() && (message.back() == '\n' || message.back() == '\r' ||
                                message.back() == ' ' || message.back() == '.'))
        message.pop_back();
    // Some texts name the file as an insert ("%1 is not a valid Win32 application"); the report
    // around this text names the path already.
    for (std::size_t at = message.find("%1"); at != std::string::npos; at = message.find("%1"))
        message.replace(at, 2, "the module");
    if (message.empty())
        message = "LoadLibrary failed";
    return message + " (Windows error " + std::to_string(code) + ")";
}

} // namespace

// Forward slashes become backslashes (LoadLibrary takes a path with forward slashes as a module
// name to search for in some cases). The system's error boxes are kept off for the call: a host
// reports a library that cannot be opened through its own error report.
void* OpenLibrary(const char* path, std::string& error, OpenFailure* failure) {
    if (failure)
        *failure = OpenFailure::NotALibrary;
    std::wstring wide;
    if (!Widen(path, wide)) {
        error = "the path is not valid UTF-8";
        return nullptr;
    }
    for (wchar_t& c : wide)
        if (c == L'/')
            c = L'\\';
    DWORD previousMode = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &previousMode);
    HMODULE lib = LoadLibraryW(wide.c_str());
    const DWORD code = lib ? 0 : GetLastError();
    SetThreadErrorMode(previousMode, nullptr);
    if (!lib) {
        error = Describe(code);
        // The system ran the library's entry, which answered FALSE (the system has already called
        // it again with process detach and unloaded the library).
        if (code == ERROR_DLL_INIT_FAILED && failure)
            *failure = OpenFailure::EntryRefused;
    }
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
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCWSTR>(address), &module))
        return std::string();
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD n = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (n == 0)
            return std::string();
        if (n < path.size()) // a path cut short fills the whole buffer: read again with more room
            return Narrow(path.data(), n);
        path.resize(path.size() * 2);
    }
}

std::string FileBesideExecutable(const char* name) {
    std::wstring self(MAX_PATH, L'\0');
    for (;;) {
        const DWORD n = GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size()));
        if (n == 0)
            return std::string(".\\") + name;
        if (n < self.size()) { // a path cut short fills the whole buffer: read again with more room
            self.resize(n);
            break;
        }
        self.resize(self.size() * 2);
    }
    const std::size_t slash = self.find_last_of(L"\\/");
    const std::string dir =
        slash == std::wstring::npos ? std::string(".\\") : Narrow(self.data(), slash + 1);
    return dir + name;
}

std::FILE* OpenFile(const char* path, const char* mode) {
    std::wstring widePath, wideMode;
    if (!Widen(path, widePath) || !Widen(mode, wideMode)) {
        errno = EINVAL; // not valid UTF-8: no file has that name
        return nullptr;
    }
    return _wfopen(widePath.c_str(), wideMode.c_str());
}

// The CRT's narrow environment holds the system code page's rendering of each value; the wide
// one holds the value itself.
std::string EnvironmentVariable(const char* name) {
    std::wstring wideName;
    if (!Widen(name, wideName))
        return std::string();
    const wchar_t* value = _wgetenv(wideName.c_str());
    return value ? Narrow(value, std::wcslen(value)) : std::string();
}

void* AlignedAlloc(std::size_t bytes, std::size_t alignment) {
    return _aligned_malloc(bytes == 0 ? alignment : bytes, alignment);
}

void AlignedRelease(void* p) {
    _aligned_free(p);
}

} // namespace Korvane::Platform
