// AnalyzeSpectra: the colorimetry of sampled spectra for korvane.analyze, by the analysis
// library's Colorimeter, the one the command-line tool's `analyze` reports from (what each
// quantity is: cli/analysis/Colorimetry.h). Here: the models on the caller's grid, the
// illuminant, and the library's failures as Python exceptions.
#pragma once

#include "python/src/Session.h"

#include "cli/analysis/Colorimetry.h"

#include <cstddef>
#include <string>
#include <vector>

namespace Korvane::Py {

struct AnalyzeRequest {
    bool reflectance = false;
    // For reflectances: "D65", "D50", "A", "E" (in any case), or the illuminant's values on the
    // spectra's grid.
    std::string illuminant = "D65";
    std::vector<double> illuminantValues;
};

// Analyzes `count` spectra of nm.size() values each (row after row in `values`) under the
// session's current observer. Throws std::invalid_argument for an unknown illuminant name and
// LibraryError when a model refuses the grid or a conversion fails.
std::vector<Analysis::SpectrumColorimetry> AnalyzeSpectra(Session& session,
                                                          const std::vector<double>& nm,
                                                          const double* values, std::size_t count,
                                                          const AnalyzeRequest& request);

} // namespace Korvane::Py
