// Sampled spectra read as the piecewise-linear function through their samples and zero outside
// their first..last wavelength, the reading of the host's converter.
#pragma once

#include "cli/analysis/Types.h"

#include <vector>

namespace Korvane::Analysis {

// The spectrum's value at `nm`: linear between samples, 0 outside [first, last]. A one-point
// spectrum has its value at its one wavelength only.
double SampleAt(const SpectrumView& s, double nm);

// SampleAt at every wavelength of `grid` (ascending), in one pass.
std::vector<double> Resample(const SpectrumView& s, const std::vector<double>& grid);

// first, first + step, ... up to last (inclusive within a millionth of a step).
std::vector<double> EvenGrid(double first, double last, double step);

} // namespace Korvane::Analysis
