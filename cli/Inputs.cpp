#include "cli/Inputs.h"

#include "cli/ToolError.h"

#include <cstring>
#include <fstream>
#include <iostream>

namespace Korvane::Cli {

void ReadSpectrumFile(const std::string& path, const SpectrumIO::SpectrumSink& sink) {
    SpectrumIO::ReadError error;
    bool ok = false;
    if (path == "-") {
        ok = SpectrumIO::ReadSpectra(std::cin, "<stdin>", sink, error);
    } else {
        std::ifstream in(path, std::ios::binary);
        if (!in)
            DataError(path + ": cannot open: " + std::strerror(errno));
        // Errors name the path as given; spectra named after their file ("<file>:<n>") carry
        // the file's name without its folders.
        const std::string prefix = path + ":";
        const std::size_t slash = path.rfind('/');
        const std::string base = slash == std::string::npos ? path : path.substr(slash + 1);
        const SpectrumIO::SpectrumSink named = [&](SpectrumIO::Spectrum& s) {
            if (s.name.compare(0, prefix.size(), prefix) == 0)
                s.name = base + ":" + s.name.substr(prefix.size());
            return sink(s);
        };
        ok = SpectrumIO::ReadSpectra(in, path, named, error);
    }
    if (!ok)
        DataError(error.Text());
}

SpectrumIO::Spectrum FirstSpectrum(const std::string& path) {
    SpectrumIO::Spectrum first;
    bool any = false;
    ReadSpectrumFile(path, [&](SpectrumIO::Spectrum& s) {
        first = std::move(s);
        any = true;
        return false;
    });
    if (!any)
        DataError(path + ": no spectra");
    return first;
}

} // namespace Korvane::Cli
