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
// Writes the plug; 0, or the code of the report made (the reason is in the report log).
KOR_HOST_API int Save(const Plug& plug, const char* path,
                      ArchiveFormat format = ArchiveFormat::Binary);
// Reads a plug (the format is recognised from the file's first bytes) and calls its OnLoad with
// the archive's format version. On failure: an empty reference, `error` naming the file and the
// cause, nothing reported, and no partially read plug kept alive.
KOR_HOST_API PlugRef Load(const char* path, std::string& error);
} // namespace PlugFile

} // namespace Korvane
