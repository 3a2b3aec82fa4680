// The two formats' readers, behind ReadSpectra. Internal to the spectrum readers.
#pragma once

#include "cli/io/LineReader.h"

namespace Korvane::SpectrumIO {

// `first` is the first line that is not blank (already read), or empty at the end of the input.
bool ReadDelimited(LineReader& lines, std::string first, const std::string& file,
                   const SpectrumSink& sink);
bool ReadCgats(LineReader& lines, const std::string& first, const std::string& file,
               const SpectrumSink& sink);

} // namespace Korvane::SpectrumIO
