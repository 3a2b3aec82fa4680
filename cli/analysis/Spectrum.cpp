#include "cli/analysis/Spectrum.h"

#include <algorithm>
#include <cmath>

namespace Korvane::Analysis {

double SampleAt(const SpectrumView& s, double nm) {
    if (s.count <= 0 || nm < s.nm[0] || nm > s.nm[s.count - 1])
        return 0.0;
    const double* hi = std::lower_bound(s.nm, s.nm + s.count, nm);
    const auto i = static_cast<int>(hi - s.nm);
    if (s.nm[i] == nm)
        return s.values[i];
    const double t = (nm - s.nm[i - 1]) / (s.nm[i] - s.nm[i - 1]);
    return s.values[i - 1] + t * (s.values[i] - s.values[i - 1]);
}

std::vector<double> Resample(const SpectrumView& s, const std::vector<double>& grid) {
    std::vector<double> out(grid.size(), 0.0);
    if (s.count <= 0)
        return out;
    int i = 0; // first sample at or above the current wavelength
    for (std::size_t k = 0; k < grid.size(); ++k) {
        const double nm = grid[k];
        if (nm < s.nm[0] || nm > s.nm[s.count - 1])
            continue;
        while (s.nm[i] < nm)
            ++i;
        if (s.nm[i] == nm) {
            out[k] = s.values[i];
            continue;
        }
        const double t = (nm - s.nm[i - 1]) / (s.nm[i] - s.nm[i - 1]);
        out[k] = s.values[i - 1] + t * (s.values[i] - s.values[i - 1]);
    }
    return out;
}

std::vector<double> EvenGrid(double first, double last, double step) {
    std::vector<double> grid;
    for (int i = 0;; ++i) {
        const double nm = first + step * i;
        if (nm > last + step * 1e-6)
            break;
        grid.push_back(nm);
    }
    return grid;
}

} // namespace Korvane::Analysis
