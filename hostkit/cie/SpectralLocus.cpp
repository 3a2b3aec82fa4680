#include "hostkit/cie/SpectralLocus.h"

#include <algorithm>

namespace Korvane::Cie {
namespace {

// Twice the signed area of (o, a, b): positive when the turn o -> a -> b is counter-clockwise.
double Cross(const TVect2<double>& o, const TVect2<double>& a, const TVect2<double>& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

} // namespace

// Andrew's monotone chain over the locus points sorted by x, then y.
SpectralLocus::SpectralLocus(const CmfTable& cmf) {
    TVect2<double> pts[kCmfCount];
    for (int i = 0; i < kCmfCount; ++i) {
        const double sum = cmf.xbar[i] + cmf.ybar[i] + cmf.zbar[i];
        pts[i] = {cmf.xbar[i] / sum, cmf.ybar[i] / sum};
    }
    std::sort(pts, pts + kCmfCount, [](const TVect2<double>& a, const TVect2<double>& b) {
        return a.x < b.x || (a.x == b.x && a.y < b.y);
    });
    int k = 0;
    for (int i = 0; i < kCmfCount; ++i) { // lower chain
        while (k >= 2 && Cross(hull_[k - 2], hull_[k - 1], pts[i]) <= 0.0)
            --k;
        hull_[k++] = pts[i];
    }
    for (int i = kCmfCount - 2, lower = k + 1; i >= 0; --i) { // upper chain
        while (k >= lower && Cross(hull_[k - 2], hull_[k - 1], pts[i]) <= 0.0)
            --k;
        hull_[k++] = pts[i];
    }
    count_ = k - 1; // the last point repeats the first
}

bool SpectralLocus::Contains(double x, double y) const {
    if (count_ < 3)
        return false;
    const TVect2<double> p{x, y};
    for (int i = 0; i < count_; ++i)
        if (!(Cross(hull_[i], hull_[(i + 1) % count_], p) >= 0.0))
            return false;
    return true;
}

} // namespace Korvane::Cie
