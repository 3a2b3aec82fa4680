// ColourReport: the tool's main job. For a set of RGB light colours it asks the plug-in's models,
// through the host's colour-model interface only, for the spectral light colour on a grid, the
// RGB it converts back to, its XYZ and xyY, its chromaticity and luminance, and its energy, and
// prints one row per colour (text or CSV), optionally with the spectra themselves.
#pragma once

#include "hostkit/base/Vectors.h"
#include "hostkit/cie/CIEConv.h"

#include <ostream>
#include <string>
#include <vector>

namespace Korvane::Cli {

struct NamedColour {
    std::string name;
    TVect3<double> rgb;
};

struct ReportOptions {
    std::vector<NamedColour> colours; // empty: DefaultColours()
    bool customGrid = false;          // false: the unpolarized spectral model's own grid
    std::vector<double> grid;         // the wavelengths of a custom grid (GridFromRange)
    Observer observer = Observer::CIE1931_2deg;
    bool csv = false;
    bool spectra = false;
};

// White, mid grey, the sRGB primaries and secondaries.
std::vector<NamedColour> DefaultColours();

// Runs the report on the registered models; 0, or 1 after writing the reason to `err`.
int RunReport(const ReportOptions& options, std::ostream& out, std::ostream& err);

} // namespace Korvane::Cli
