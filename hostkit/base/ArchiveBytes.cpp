#include "hostkit/base/ArchiveBytes.h"

#include "hostkit/platform/Platform.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

namespace Korvane::ArchiveBytes {
namespace {

std::array<std::uint32_t, 256> MakeCrcTable() {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint32_t c = i;
        for (int k = 0; k < 8; ++k)
            c = (c & 1u) ? 0xEDB88320u ^ (c >> 1) : c >> 1;
        table[i] = c;
    }
    return table;
}

std::string Describe(const char* what, const char* path) {
    return std::string(what) + " \"" + (path ? path : "") + "\": " + std::strerror(errno);
}

// Closes the file on every path out of the functions below.
struct FileCloser {
    std::FILE* f;
    ~FileCloser() {
        if (f)
            std::fclose(f);
    }
};

} // namespace

std::uint32_t Crc32(const char* data, std::size_t size) {
    static const std::array<std::uint32_t, 256> table = MakeCrcTable();
    std::uint32_t c = 0xFFFFFFFFu;
    for (std::size_t i = 0; i < size; ++i)
        c = table[(c ^ static_cast<unsigned char>(data[i])) & 0xFFu] ^ (c >> 8);
    return c ^ 0xFFFFFFFFu;
}

bool ReadFile(const char* path, std::string& bytes, std::string& error) {
    bytes.clear();
    FileCloser file{path ? Platform::OpenFile(path, "rb") : nullptr};
    if (!file.f) {
        error = Describe("cannot open", path);
        return false;
    }
    char chunk[65536];
    for (;;) {
        const std::size_t got = std::fread(chunk, 1, sizeof chunk, file.f);
        try {
            bytes.append(chunk, got);
        } catch (const std::bad_alloc&) {
            error = std::string("out of memory reading \"") + path + "\"";
            bytes.clear();
            return false;
        }
        if (got < sizeof chunk)
            break;
    }
    if (std::ferror(file.f)) {
        error = Describe("cannot read", path);
        bytes.clear();
        return false;
    }
    return true;
}

bool WriteFile(const char* path, const std::string& bytes, std::string& error) {
    FileCloser file{path ? Platform::OpenFile(path, "wb") : nullptr};
    if (!file.f) {
        error = Describe("cannot create", path);
        return false;
    }
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.f) == bytes.size();
    const int closed = std::fclose(file.f);
    file.f = nullptr;
    if (!written || closed != 0) {
        error = Describe("cannot write", path);
        return false;
    }
    return true;
}

} // namespace Korvane::ArchiveBytes
