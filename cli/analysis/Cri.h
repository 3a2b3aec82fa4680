// The CIE colour rendering index (CIE 13.3-1995): general index Ra and special indices R1..R14
// of a light source.
#pragma once

#include "cli/analysis/Planckian.h"
#include "cli/analysis/Types.h"

#include <array>
#include <optional>

namespace Korvane::Analysis {

struct ColourRendering {
    double ra;                // mean of R1..R8
    std::array<double, 14> r; // R1..R14
    double cct;               // of the test source, K (Ohno 2013)
    double dc;                // CIE 1960 uv distance between test and reference source
    bool daylightReference;   // reference: CIE daylight (CCT >= 5000 K) or Planckian
};

// CIE 13.3-1995 on the test spectrum's own grid: the test colour samples and the reference
// illuminant (Planck's law below 5000 K, CIE daylight from 5000 K to 25000 K, both at the test
// source's CCT) are sampled on that grid, and every tristimulus value comes from the host's
// current converter (through its response to each sample, SpikeWeights), with the current observer
// (the standard's is CIE 1931 2 degree). Von Kries adaptation in CIE 1960 UCS, U*V*W* differences,
// R_i = 100 - 4.6 dE_i. A source measured at 5 nm gives the standard's sums; a finer grid keeps
// narrow lines. dc is reported, not limited (the standard calls results above 5.4e-3 less
// meaningful). Empty when the source has no CCT
// (|Duv| > 0.05, or outside 1000..25000 K) or the converter fails.
std::optional<ColourRendering> ColourRenderingIndex(const SpectrumView& light);

} // namespace Korvane::Analysis
