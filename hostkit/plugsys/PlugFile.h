// Plug files: a plug saved by its type identifier followed by what its type serializes.
//
// Loading looks the type up in the registry, asks it for a new instance, lets it read the plug
// and calls OnLoad. An unknown identifier, a damaged or truncated file is an error with a
// message; no partially read plug is handed out.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/plugsys/PlugRef.h"

#include <string>

namespace Korvane {

enum class ArchiveFormat { Binary, Text };

namespace PlugFile {
// The largest wavelength grid that a colour model read from a plug file may have. A model's grid
// costs memory and time on load in proportion to its points (tables of about 30 doubles per
// point in the host's converter and the model's own); 100,000 points (a 0.005 nm step across the
// visible range) keeps a load within tens of megabytes. A model with a larger grid is refused
// before its OnLoad builds anything.
inline constexpr int kMaxGridPoints = 100000;

// Writes the plug; 0, or the code of the report made (the reason is in the report log).
KOR_HOST_API int Save(const Plug& plug, const char* path,
                      ArchiveFormat format = ArchiveFormat::Binary);
// Reads a plug (the format is recognised from the file's first bytes) and calls its OnLoad with
// the archive's format version. On failure: an empty reference, `error` naming the file and the
// cause, nothing reported, and no partially read plug kept alive. A load during which memory ran
// out anywhere (MemStats::FailuresOnThisThread moved), while reading or in OnLoad, is a failed
// load even where the plug's code absorbed the failure: it may have left the plug incomplete.
KOR_HOST_API PlugRef Load(const char* path, std::string& error);
} // namespace PlugFile

} // namespace Korvane
