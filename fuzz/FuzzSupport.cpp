#include "fuzz/FuzzSupport.h"

#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/plugsys/PlugFile.h"
#include "plugin/frame/ModuleEntry.h"

#include <cstdint>
#include <cstdio>
#include <unistd.h>

namespace Korvane::Fuzz {

void Setup() {
    static const bool done = [] {
        SetReportSink(SilentSink());
        if (InitClasses() != 0)
            Finding("InitClasses failed");
        return true;
    }();
    (void)done;
    ReportLog::Clear();
}

namespace {

std::string Scratch(const char* name) {
    return "/tmp/korvane-fuzz-" + std::to_string(getpid()) + "-" + name;
}

std::string SaveBytes(const Plug& plug, ArchiveFormat format, const std::string& path) {
    if (PlugFile::Save(plug, path.c_str(), format) != 0)
        return std::string();
    std::string bytes, error;
    ArchiveBytes::ReadFile(path.c_str(), bytes, error);
    return bytes;
}

} // namespace

void CheckRoundTrip(const Plug& plug) {
    const std::string first = Scratch("first.plug");
    const std::string second = Scratch("second.plug");
    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        const std::string saved = SaveBytes(plug, format, first);
        if (saved.empty())
            continue; // a loaded value the writer refuses is reported, not a finding
        std::string error;
        PlugRef again = PlugFile::Load(first.c_str(), error);
        if (!again)
            Finding("a plug saved from a loaded one does not load: " + error);
        if (SaveBytes(*again.Get(), format, second) != saved)
            Finding("save -> load -> save changed the bytes");
    }
    std::remove(first.c_str());
    std::remove(second.c_str());
}

namespace {

void StoreLE(std::string& bytes, std::size_t at, std::uint64_t v, int n) {
    for (int i = 0; i < n; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<char>((v >> (8 * i)) & 0xFF);
}

} // namespace

void RepairFrame(std::string& bytes) {
    if (BinarySerializer::Recognises(bytes)) {
        // Payload length at 12 (u64), CRC-32 of the payload at 20 (u32).
        if (bytes.size() < BinarySerializer::kHeaderSize)
            return;
        const std::size_t payload = bytes.size() - BinarySerializer::kHeaderSize;
        StoreLE(bytes, 12, payload, 8);
        StoreLE(bytes, 20,
                ArchiveBytes::Crc32(bytes.data() + BinarySerializer::kHeaderSize, payload), 4);
        return;
    }
    if (!TextSerializer::Recognises(bytes))
        return;
    // Drop the checksum line (and anything after it), keep a line end, write the line anew.
    static const std::string kLast = "end crc32 ";
    const std::size_t last = bytes.rfind("\n" + kLast);
    if (last != std::string::npos)
        bytes.resize(last + 1);
    else if (bytes.back() != '\n')
        bytes.push_back('\n');
    char line[32];
    std::snprintf(line, sizeof line, "%08x\n",
                  static_cast<unsigned>(ArchiveBytes::Crc32(bytes.data(), bytes.size())));
    bytes += kLast + line;
}

} // namespace Korvane::Fuzz
