// What the XYZ and xyY model tests share: every model made as registration makes it, and
// three-value and spectral colours built from plain values.
#pragma once

#include "ModelTestSupport.h"

#include "plugin/colour/ColourValues.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <gtest/gtest.h>

#include <vector>

namespace Korvane::Testing {

// White of sRGB, (x, y) = (0.3127, 0.3290), as XYZ with Y = 1 (IEC 61966-2-1:1999;
// shared/data/srgb_constants.md, section 1).
inline const TVect3<double> kSRGBWhite(0.9504559270516717, 1.0, 1.0890577507598784);

// The two CIE models and the six source models, with their types and the default grid.
struct CIEModels {
    ScopedModelTypes types;
    ScopedDefaultGrid grid;
    PlugRef refs[8] = {new XYZModel(),
                       new XYYModel(),
                       new BWModel<Unpolarized>(),
                       new BWModel<StokesPolarization>(),
                       new RGBModel<Unpolarized>(),
                       new RGBModel<StokesPolarization>(),
                       new SpectralModel<Unpolarized>(),
                       new SpectralModel<StokesPolarization>()};
    const ColorModel &xyz = At(0), &xyy = At(1), &bwS = At(3), &rgbS = At(5), &spU = At(6),
                     &spS = At(7);

    const ColorModel& At(int i) const { return *static_cast<const ColorModel*>(refs[i].Get()); }
};

// A three-value colour (XYZ, xyY, unpolarized RGB) from a triple, and back.
template <class V>
V Triple(double a, double b, double c) {
    V v;
    v[0] = a;
    v[1] = b;
    v[2] = c;
    return v;
}

template <class V>
TVect3<double> Of(const V& v) {
    return {v[0], v[1], v[2]};
}

inline void ExpectNear(const TVect3<double>& got, const TVect3<double>& want, double tol) {
    for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(got[k], want[k], tol) << "value " << k;
}

// A spectral colour of `model`: values[i] is the intensity (I, or Mueller element (0,0)) of
// wavelength i, every other element 0.
template <class V>
V Spectral(const ColorModel& model, const std::vector<double>& values) {
    V c;
    EXPECT_EQ(c.Distr().SetLength(model.NWaves()), 0);
    for (int i = 0; i < model.NWaves(); ++i) {
        c.Distr()[i] = typename V::Component{};
        c.Distr()[i][0] = values[static_cast<std::size_t>(i)];
    }
    return c;
}

} // namespace Korvane::Testing
