#include "hostkit/cie/RGBSpace.h"

#include "hostkit/cie/Matrix3Ops.h"

namespace Korvane::Cie {

bool DeriveRGBSpace(TVect2<double> red, TVect2<double> green, TVect2<double> blue,
                    TVect2<double> white, RGBSpaceMatrices& out) {
    const TVect2<double> prim[3] = {red, green, blue};
    TMatrix3 p{};
    for (int c = 0; c < 3; ++c) {
        p.m[0][c] = prim[c].x / prim[c].y;
        p.m[1][c] = 1.0;
        p.m[2][c] = (1.0 - prim[c].x - prim[c].y) / prim[c].y;
    }
    TMatrix3 pInv{};
    if (!Invert(p, pInv))
        return false;
    const TVect3<double> w{white.x / white.y, 1.0, (1.0 - white.x - white.y) / white.y};
    const TVect3<double> s = pInv * w;
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            out.rgb2xyz.m[r][c] = p.m[r][c] * s[c];
    return Invert(out.rgb2xyz, out.xyz2rgb);
}

} // namespace Korvane::Cie
