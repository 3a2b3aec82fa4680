// Plug files as a host reads them. The first byte of an input chooses how the rest is used:
// even, as a file exactly as given; odd, with the binary archive's frame repaired (payload length
// and CRC-32 recomputed), so that mutations get past the frame check into every type's reader.
#include "fuzz/FuzzSupport.h"
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/base/BinarySerializer.h"
#include "hostkit/plugsys/PlugFile.h"

#include <cstdint>
#include <unistd.h>

using namespace Korvane;

namespace {

void StoreLE(std::string& bytes, std::size_t at, std::uint64_t v, int n) {
    for (int i = 0; i < n; ++i)
        bytes[at + static_cast<std::size_t>(i)] = static_cast<char>((v >> (8 * i)) & 0xFF);
}

// Payload length at 12 (u64), CRC-32 of the payload at 20 (u32); the header is 24 bytes.
void RepairFrame(std::string& bytes) {
    if (bytes.size() < BinarySerializer::kHeaderSize || !BinarySerializer::Recognises(bytes))
        return;
    const std::size_t payload = bytes.size() - BinarySerializer::kHeaderSize;
    StoreLE(bytes, 12, payload, 8);
    StoreLE(bytes, 20, ArchiveBytes::Crc32(bytes.data() + BinarySerializer::kHeaderSize, payload),
            4);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1)
        return 0;
    Fuzz::Setup();
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] & 1)
        RepairFrame(bytes);
    static const std::string path = "/tmp/korvane-fuzz-" + std::to_string(getpid()) + ".plug";
    std::string error;
    if (!ArchiveBytes::WriteFile(path.c_str(), bytes, error))
        Fuzz::Finding("cannot write the scratch file: " + error);
    const Fuzz::Balance balance;
    {
        PlugRef plug = PlugFile::Load(path.c_str(), error);
        if (plug)
            Fuzz::CheckRoundTrip(*plug.Get());
        else if (error.empty())
            Fuzz::Finding("a failed load without a message");
    }
    balance.Check();
    return 0;
}
