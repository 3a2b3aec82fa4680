// The bytes of an archive: the CRC-32 that seals them and whole-file reading and writing.
//
// CRC-32 is the ISO-HDLC / IEEE 802.3 checksum (reflected polynomial 0xEDB88320, initial value
// and final xor 0xFFFFFFFF; check value 0xCBF43926 for "123456789"). It detects every error
// burst of up to 32 bits, so any single damaged byte of a sealed archive is found.
#pragma once

#include "hostkit/HostExport.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace Korvane::ArchiveBytes {

KOR_HOST_API std::uint32_t Crc32(const char* data, std::size_t size);

// Paths are UTF-8 on every platform.
// Reads the whole file into `bytes`; false with `error` saying why (the path included).
KOR_HOST_API bool ReadFile(const char* path, std::string& bytes, std::string& error);
// Writes `bytes` as the whole file (replacing it); false with `error` saying why.
KOR_HOST_API bool WriteFile(const char* path, const std::string& bytes, std::string& error);

} // namespace Korvane::ArchiveBytes
