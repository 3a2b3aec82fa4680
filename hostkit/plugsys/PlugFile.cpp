#include "hostkit/plugsys/PlugFile.h"

#include "hostkit/base/User.h"

namespace Korvane::PlugFile {

int Save(const Plug&, const char* path, ArchiveFormat) {
    return User()->InternalError("PlugFile: cannot write \"%s\": no archive yet", path);
}

PlugRef Load(const char* path, std::string& error) {
    error = std::string("PlugFile: cannot read \"") + path + "\": no archive yet";
    return PlugRef();
}

} // namespace Korvane::PlugFile
