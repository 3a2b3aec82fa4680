// SpectralLocus: the convex hull of the chromaticities (x, y) = (X, Y) / (X + Y + Z) of
// monochromatic light at each tabulated wavelength 360..830 nm of an observer. Every mixture of
// lights has its chromaticity inside that hull (the locus closed by the purple line).
#pragma once

#include "hostkit/base/Vectors.h"
#include "hostkit/cie/CieTables.h"

namespace Korvane::Cie {

class SpectralLocus {
public:
    explicit SpectralLocus(const CmfTable& cmf);

    // (x, y) inside the hull or on its boundary.
    bool Contains(double x, double y) const;

private:
    // Hull vertices counter-clockwise, without collinear points (room for both chains while
    // they are built).
    TVect2<double> hull_[2 * kCmfCount];
    int count_ = 0;
};

} // namespace Korvane::Cie
