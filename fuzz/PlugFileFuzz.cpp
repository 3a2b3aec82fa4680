// Plug files as a host reads them. The first byte of an input chooses how the rest is used:
// even, as a file exactly as given; odd, with the archive's own check repaired (the binary
// frame's payload length and CRC-32, the text archive's checksum line), so that mutations get
// past it into every type's reader.
#include "fuzz/FuzzSupport.h"
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/plugsys/PlugFile.h"

#include <cstdint>
#include <unistd.h>

using namespace Korvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 1)
        return 0;
    Fuzz::Setup();
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] & 1)
        Fuzz::RepairFrame(bytes);
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
