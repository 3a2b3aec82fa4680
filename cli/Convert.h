// korvane convert: one colour from any registered model into any other, light, surface or
// scalar, through the target model's ConvertColor from the source model.
//
// korvane resample: spectra on another grid through the spectral model's own resampling (the
// target model's ConvertColor from a spectral model on the file's grid).
#pragma once

#include "cli/Analyze.h"

#include <ostream>
#include <string>
#include <vector>

namespace Korvane::Cli {

struct ConvertOptions {
    std::string from;                // model name (see ModelIdent)
    std::vector<std::string> values; // numbers, or one spectrum file for a spectral source
    std::string spectrum;            // which spectrum of that file: a name or a 1-based number
    std::string to;
    std::string kind = "light";   // light, surface, scalar
    std::vector<double> fromGrid; // first last step for numbers of a spectral source
    std::vector<double> grid;     // first last step of a spectral target
    OutputFormat format = OutputFormat::Table;
    int precision = 6;
};

// "bw", "rgb", "spectral", "xyz", "xyy", "stokes-bw", "stokes-rgb", "stokes-spectral", or a
// registered identifier ("URGB", "StkSpectr", ...) -> the identifier; a usage error otherwise.
std::string ModelIdent(const std::string& name);

void RunConvert(const ConvertOptions& options, std::ostream& out);

struct ResampleOptions {
    std::string file;
    std::vector<double> grid; // first last step
    std::string gridFile;     // or the grid of this file's first spectrum
    bool reflectance = false; // surface colours (no light clamp)
};

void RunResample(const ResampleOptions& options, std::ostream& out);

} // namespace Korvane::Cli
