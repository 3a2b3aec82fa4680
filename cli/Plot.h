// korvane plot: an SVG figure of spectra: the spectra themselves (each in its own sRGB colour,
// scaled to its peak) beside the CIE 1931 xy diagram (or CIE 1976 u'v') with the spectral locus,
// the Planckian locus with CCT ticks, the sRGB gamut, D65 and every spectrum's point, labelled.
// The SVG is written directly.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace Korvane::Cli {

struct PlotOptions {
    std::vector<std::string> files;
    std::string output;
    bool ucs = false;
};

// Writes the figure to options.output and a line naming it to `out`.
void RunPlot(const PlotOptions& options, std::ostream& out);

} // namespace Korvane::Cli
