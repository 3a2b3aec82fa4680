#include "fuzz/FuzzSupport.h"

#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/plugsys/PlugFile.h"
#include "plugin/frame/ModuleEntry.h"

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

} // namespace Korvane::Fuzz
