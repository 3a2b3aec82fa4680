// ModuleImageCheck: is a module file whole, before the platform loader maps it?
//
// The platform loaders map a shared library's segments straight from the file; a file cut short
// maps pages past its end, and touching them kills the process (SIGBUS inside dlopen) instead of
// failing the load. So a module file is checked first, by its own headers:
//
//   ELF (32 or 64 bit, either byte order): the file header and the program header table lie
//       inside the file, and so does the file range of every segment (every loadable segment in
//       particular).
//   PE (Windows DLL, PE32 or PE32+): the DOS header, the "PE\0\0" signature, the file and
//       optional headers, the headers' declared size and the section table lie inside the file,
//       and so does the raw data of every section.
//
// A file in neither format, or one that cannot be read, is left to the platform loader, which
// refuses it with its own reason. The check reads the headers only, never the whole file.
#pragma once

#include <string>

namespace Korvane::Platform {

// True when the module file at `path` is not cut short; false with `cause` saying what lies past
// the end of the file.
bool CheckModuleImage(const char* path, std::string& cause);

} // namespace Korvane::Platform
