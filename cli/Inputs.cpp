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
        ok = SpectrumIO::ReadSpectra(in, path, sink, error);
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
