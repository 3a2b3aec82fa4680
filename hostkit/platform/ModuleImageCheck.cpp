#include "hostkit/platform/ModuleImageCheck.h"

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace Korvane::Platform {
namespace {

// Opens a file by its UTF-8 path (a stream opened by a narrow path reads it in the system's code
// page on Windows); a path that is not valid UTF-8 leaves the stream closed.
std::ifstream OpenBinary(const char* path) {
    try {
        return std::ifstream(std::filesystem::u8path(path), std::ios::binary);
    } catch (const std::exception&) {
        return std::ifstream();
    }
}

// Random access to the bytes of one file; reads past the end fail.
class ImageFile {
public:
    explicit ImageFile(const char* path) : in_(OpenBinary(path)) {
        if (in_) {
            in_.seekg(0, std::ios::end);
            const std::streamoff end = in_.tellg();
            size_ = end > 0 ? static_cast<std::uint64_t>(end) : 0;
        }
    }
    bool IsOpen() const { return static_cast<bool>(in_); }
    std::uint64_t Size() const { return size_; }
    // Whether [offset, offset + length) lies inside the file, without overflow.
    bool Inside(std::uint64_t offset, std::uint64_t length) const {
        return offset <= size_ && length <= size_ - offset;
    }
    bool Read(std::uint64_t offset, unsigned char* out, std::size_t length) {
        if (!Inside(offset, length))
            return false;
        in_.clear();
        in_.seekg(static_cast<std::streamoff>(offset));
        in_.read(reinterpret_cast<char*>(out), static_cast<std::streamsize>(length));
        return static_cast<std::size_t>(in_.gcount()) == length;
    }

private:
    std::ifstream in_;
    std::uint64_t size_ = 0;
};

// An unsigned integer of `bytes` bytes at p, little- or big-endian.
std::uint64_t Field(const unsigned char* p, int bytes, bool bigEndian) {
    std::uint64_t v = 0;
    for (int i = 0; i < bytes; ++i) {
        const int k = bigEndian ? i : bytes - 1 - i;
        v = (v << 8) | p[k];
    }
    return v;
}

std::string Range(std::uint64_t offset, std::uint64_t length) {
    return "bytes " + std::to_string(offset) + ".." + std::to_string(offset + length);
}

std::string PastEnd(const std::string& what, std::uint64_t offset, std::uint64_t length,
                    std::uint64_t size) {
    return "the file is cut short: " + what + " (" + Range(offset, length) +
           ") lies past its end (" + std::to_string(size) + " bytes)";
}

// ELF: identification, file header, program header table, and every segment's file range.
bool CheckElf(ImageFile& file, std::string& cause) {
    unsigned char ident[16];
    if (!file.Read(0, ident, sizeof ident)) {
        cause = PastEnd("the ELF identification", 0, sizeof ident, file.Size());
        return false;
    }
    const bool is64 = ident[4] == 2;
    const bool big = ident[5] == 2;
    if ((ident[4] != 1 && ident[4] != 2) || (ident[5] != 1 && ident[5] != 2)) {
        cause = "not a valid ELF file: unknown class or byte order";
        return false;
    }
    const std::size_t headerSize = is64 ? 64 : 52;
    unsigned char h[64];
    if (!file.Read(0, h, headerSize)) {
        cause = PastEnd("the ELF file header", 0, headerSize, file.Size());
        return false;
    }
    // Offsets of e_phoff, e_phentsize and e_phnum, and the size of one program header.
    const std::uint64_t phoff = is64 ? Field(h + 32, 8, big) : Field(h + 28, 4, big);
    const std::uint64_t phentsize = Field(h + (is64 ? 54 : 42), 2, big);
    const std::uint64_t phnum = Field(h + (is64 ? 56 : 44), 2, big);
    const std::uint64_t minEntry = is64 ? 56 : 32;
    if (phnum == 0xFFFF) { // the real count would sit in section header 0; no module needs it
        cause = "not a supported ELF file: 65535 or more program headers";
        return false;
    }
    if (phnum > 0 && phentsize < minEntry) {
        cause = "not a valid ELF file: program headers of " + std::to_string(phentsize) + " bytes";
        return false;
    }
    if (!file.Inside(phoff, phnum * phentsize)) {
        cause = PastEnd("the program header table", phoff, phnum * phentsize, file.Size());
        return false;
    }
    for (std::uint64_t i = 0; i < phnum; ++i) {
        unsigned char p[56];
        if (!file.Read(phoff + i * phentsize, p, static_cast<std::size_t>(minEntry))) {
            cause = "cannot read program header " + std::to_string(i);
            return false;
        }
        const std::uint64_t type = Field(p, 4, big);
        const std::uint64_t offset = is64 ? Field(p + 8, 8, big) : Field(p + 4, 4, big);
        const std::uint64_t filesz = is64 ? Field(p + 32, 8, big) : Field(p + 16, 4, big);
        if (!file.Inside(offset, filesz)) {
            const std::string what = type == 1 ? "loadable segment " : "segment ";
            cause = PastEnd(what + std::to_string(i), offset, filesz, file.Size());
            return false;
        }
    }
    return true;
}

// PE: DOS header, signature, file and optional headers, the section table, every section's raw
// data. All fields little-endian.
bool CheckPe(ImageFile& file, std::string& cause) {
    unsigned char dos[64];
    if (!file.Read(0, dos, sizeof dos)) {
        cause = PastEnd("the DOS header", 0, sizeof dos, file.Size());
        return false;
    }
    const std::uint64_t pe = Field(dos + 0x3C, 4, false);
    unsigned char coff[24]; // signature and file header
    if (!file.Read(pe, coff, sizeof coff)) {
        cause = PastEnd("the PE signature and file header", pe, sizeof coff, file.Size());
        return false;
    }
    if (coff[0] != 'P' || coff[1] != 'E' || coff[2] != 0 || coff[3] != 0)
        return true; // an MZ file without a PE image: the platform loader says what it is
    const std::uint64_t sections = Field(coff + 6, 2, false);
    const std::uint64_t optionalSize = Field(coff + 20, 2, false);
    const std::uint64_t optional = pe + sizeof coff;
    if (!file.Inside(optional, optionalSize)) {
        cause = PastEnd("the optional header", optional, optionalSize, file.Size());
        return false;
    }
    if (optionalSize >= 64) { // SizeOfHeaders sits at offset 60 in PE32 and PE32+ alike
        unsigned char size[4];
        file.Read(optional + 60, size, sizeof size);
        const std::uint64_t headers = Field(size, 4, false);
        if (!file.Inside(0, headers)) {
            cause = PastEnd("the headers", 0, headers, file.Size());
            return false;
        }
    }
    const std::uint64_t table = optional + optionalSize;
    if (!file.Inside(table, sections * 40)) {
        cause = PastEnd("the section table", table, sections * 40, file.Size());
        return false;
    }
    for (std::uint64_t i = 0; i < sections; ++i) {
        unsigned char s[40];
        file.Read(table + i * 40, s, sizeof s);
        const std::uint64_t rawSize = Field(s + 16, 4, false);
        const std::uint64_t rawOffset = Field(s + 20, 4, false);
        if (rawSize != 0 && !file.Inside(rawOffset, rawSize)) {
            cause = PastEnd("the data of section " + std::to_string(i), rawOffset, rawSize,
                            file.Size());
            return false;
        }
    }
    return true;
}

} // namespace

bool CheckModuleImage(const char* path, std::string& cause) {
    ImageFile file(path);
    unsigned char magic[4];
    if (!file.IsOpen() || !file.Read(0, magic, sizeof magic))
        return true; // unreadable or too short to be anything: the platform loader says so
    if (magic[0] == 0x7F && magic[1] == 'E' && magic[2] == 'L' && magic[3] == 'F')
        return CheckElf(file, cause);
    if (magic[0] == 'M' && magic[1] == 'Z')
        return CheckPe(file, cause);
    return true;
}

} // namespace Korvane::Platform
