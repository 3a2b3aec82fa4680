// Writes the seed corpora of the fuzz targets: every plug type of the library that can be saved
// (each model type, each holder type), filled as its type makes it, in both archive formats.
// Usage: korvane_fuzz_seeds <plug-file corpus dir> <archive corpus dir>
#include "fuzz/FuzzSupport.h"
#include "hostkit/base/ArchiveBytes.h"
#include "hostkit/plugsys/PlugFile.h"
#include "hostkit/plugsys/PlugType.h"

#include <fstream>
#include <string>

using namespace Korvane;

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <plugfile corpus> <archive corpus>\n", argv[0]);
        return 2;
    }
    Fuzz::Setup();
    const std::string plugs = argv[1];
    const std::string archives = argv[2];
    int written = 0;
    for (PlugType* type : PlugType::Registered()) {
        if (!type->SupportsSerialization())
            continue;
        PlugRef plug = type->NewInstance();
        if (!plug)
            continue;
        for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
            const bool text = format == ArchiveFormat::Text;
            const std::string name = type->Ident() + (text ? ".txt" : ".bin");
            const std::string scratch = plugs + "/.scratch";
            if (PlugFile::Save(*plug.Get(), scratch.c_str(), format) != 0)
                continue;
            std::string bytes, error;
            ArchiveBytes::ReadFile(scratch.c_str(), bytes, error);
            std::remove(scratch.c_str());
            // Plug-file target: a mode byte (0: as read, 1: frame repaired), then the file.
            for (char mode : {'\0', '\1'})
                std::ofstream(plugs + "/" + std::string(1, char('0' + mode)) + name,
                              std::ios::binary)
                    << mode << bytes;
            // Archive target: format byte, no operations, the archive.
            std::ofstream(archives + "/" + name, std::ios::binary)
                << char(text ? 1 : 0) << char(0) << bytes;
            ++written;
        }
    }
    std::printf("%d seeds written\n", written);
    return written > 0 ? 0 : 1;
}
