// Small value types of the analysis library: pairs and triples of doubles, and a read-only view
// of one sampled spectrum (wavelengths in nm, strictly increasing, and one value per wavelength).
#pragma once

#include <array>

namespace Korvane::Analysis {

using Vec2 = std::array<double, 2>;
using Vec3 = std::array<double, 3>;

struct SpectrumView {
    const double* nm = nullptr;
    const double* values = nullptr;
    int count = 0;
};

} // namespace Korvane::Analysis
