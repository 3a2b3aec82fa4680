// SpikeResponses: what a converter gives for a unit spike at each sample of one grid.
//
// A spike is a spectrum that is 1.0 at sample i and 0.0 everywhere else. Converting one through
// spectrum2xyz, Spectr2RGB or Spectr2RGBAttr reads every sample of the spectrum, so converting
// the spike of every sample of an n-point grid costs n^2 steps. The converter's per-grid tables
// already hold the answer: the weighted sum over a spike is row i of the table. This object looks
// the grid's tables up once and then gives each spike's response in constant time, bit for bit
// what the whole-spectrum conversion gives (the sum adds only zeros besides row i, so it is
// 0.0 + row i exactly; the later steps are the same code).
//
// Status() is what each of those conversions would return for a spike on this grid (0, -1 for an
// empty or invalid grid, or the code of the one ErrorNoMemory report made when the grid's tables
// could not be built); when it is not 0 every response is (0, 0, 0), as the conversions answer.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/base/Vectors.h"
#include "hostkit/base/containers/TArray.h"

#include <memory>

namespace Korvane {

class CIEConv;

class KOR_HOST_API SpikeResponses {
public:
    // The responses of `conv` on the grid `waves` (kept alive by the object for its life).
    SpikeResponses(const CIEConv& conv, const TArray<double>& waves);
    ~SpikeResponses();
    SpikeResponses(const SpikeResponses&) = delete;
    SpikeResponses& operator=(const SpikeResponses&) = delete;

    int Status() const;
    // CIEConv::spectrum2xyz of the spike at i (when `conv` is the current converter).
    TVect3<double> LightXYZ(int i) const;
    // conv.Spectr2RGB(spike, waves, false).
    TVect3<double> LightRGB(int i) const;
    // conv.Spectr2RGBAttr(spike, waves, false).
    TVect3<double> ReflectanceRGB(int i) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace Korvane
