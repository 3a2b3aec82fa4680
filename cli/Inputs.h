// Spectrum files as the tool's commands read them: a path, or "-" for standard input, through
// the bounded readers; a bad file is a data error with the reader's file:line:column message.
#pragma once

#include "cli/io/SpectrumReader.h"

#include <string>

namespace Korvane::Cli {

// Reads every spectrum of `path`, handing each to `sink` as it is read.
void ReadSpectrumFile(const std::string& path, const SpectrumIO::SpectrumSink& sink);
// The first spectrum of `path` (a data error when it has none).
SpectrumIO::Spectrum FirstSpectrum(const std::string& path);

} // namespace Korvane::Cli
