// Colour values: the layouts the host relies on, exact equality and copies.
#include "hostkit/colormodel/ColorInterfaces.h"
#include "plugin/colour/ColourValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>

using namespace Korvane;

namespace {

using U = Unpolarized;
using S = StokesPolarization;

// XYZ and xyY colours are kept by the holders of RGBModel<Unpolarized>: a model may cast an
// interface reference it received to the RGB value class.
static_assert(std::is_same_v<LgtColor<XYZModel>, LgtColor<RGBModel<U>>> &&
              std::is_same_v<RayColor<XYYModel>, RayColor<RGBModel<U>>> &&
              std::is_same_v<SurfColor<XYZModel>, SurfColor<RGBModel<U>>> &&
              std::is_same_v<ScalarColor<XYYModel>, ScalarColor<RGBModel<U>>> &&
              std::is_same_v<DualLgtColor<XYZModel>, DualLgtColor<RGBModel<U>>>);
// Scalar colours share a layout across polarizations but stay distinct types, one holder each.
static_assert(!std::is_same_v<ScalarColor<BWModel<U>>, ScalarColor<BWModel<S>>>);

// The host finds the light part at the ray colour's address; the X orientation follows it.
template <class Ray>
void ExpectLightFirstThenXOrt(const Ray& ray) {
    const char* at = reinterpret_cast<const char*>(&ray);
    EXPECT_EQ(static_cast<const void*>(&LightPart(ray)), static_cast<const void*>(&ray.Light()));
    EXPECT_EQ(reinterpret_cast<const char*>(&ray.Light()), at);
    EXPECT_EQ(reinterpret_cast<const char*>(&ray.XOrt()), at + sizeof(ray.Light()));
}

} // namespace

TEST(ColourValueLayout, PolarizedRayIsLightThenXOrientation) {
    RayColor<BWModel<S>> bw;
    RayColor<RGBModel<S>> rgb;
    RayColor<SpectralModel<S>> spectral;
    ExpectLightFirstThenXOrt(bw);
    ExpectLightFirstThenXOrt(rgb);
    ExpectLightFirstThenXOrt(spectral);
    EXPECT_EQ(bw.XOrt(), TVect3<double>(1.0, 0.0, 0.0));
    EXPECT_EQ(spectral.XOrt(), TVect3<double>(1.0, 0.0, 0.0));
}

TEST(ColourValueEquality, EveryValueAndTheXOrientationCount) {
    RayColor<BWModel<S>> a;
    for (int k = 0; k < 4; ++k)
        a.Light()[k] = 0.25 * k;
    RayColor<BWModel<S>> b = a;
    EXPECT_TRUE(a == b);
    b.XOrt().z = 1e-300;
    EXPECT_TRUE(a != b);

    a.Light()[kStokesI] = std::nan("");
    EXPECT_FALSE(a == a);
}

TEST(ColourValueCopy, StokesRGBRayCopiesItsFifteenDoubles) {
    RayColor<RGBModel<S>> ray;
    double* v = ray.Light().Values();
    for (int k = 0; k < 12; ++k)
        v[k] = 1.0 + k;
    ray.XOrt() = TVect3<double>(13.0, 14.0, 15.0);

    const RayColor<RGBModel<S>> copy = ray;
    const double* c = reinterpret_cast<const double*>(&copy);
    for (int k = 0; k < 15; ++k)
        EXPECT_EQ(c[k], 1.0 + k) << "double " << k;
    EXPECT_TRUE(copy == ray);
}
