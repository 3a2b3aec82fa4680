// What a host accumulates: AddLgtToArray and AddRayToArray add onto the array they are given
// (the xyY model adds its sum in xyY onto it, as kept from the original), and what a BW light
// is shown as on a display.
#include "plugin/colour/ColourValues.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/plugin/HolderTestSupport.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

using namespace Korvane;
using Korvane::Testing::Registered;

namespace {

// Gives the light `c` of model `m` the values 0.5, 0.75, 1.0, ... (a spectral one sized to the
// model's grid) and returns how many doubles it holds.
template <class M, class L>
int Fill(const M& m, L& c) {
    int n = 0;
    if constexpr (std::is_base_of_v<BSpectralModel, M>) {
        EXPECT_EQ(c.Distr().SetLength(m.NWaves()), 0);
        n = c.Count() * L::Component::kSize;
    } else {
        n = L::kDoubles;
    }
    for (int k = 0; k < n; ++k)
        c.Values()[k] = 0.5 + 0.25 * k;
    return n;
}

// out[k] is 1 + the colour's k-th double after adding onto an array of ones; the ray adds
// its light's intensities (every `stride`-th double of the light).
template <class M>
void ExpectAddsOnto(const M* model, int rayStride) {
    ASSERT_NE(model, nullptr);
    SCOPED_TRACE(model->Name());
    LgtColor<M> light{};
    const int n = Fill(*model, light);
    std::vector<double> out(static_cast<std::size_t>(n), 1.0);
    model->AddLgtToArray(light, out.data());
    for (int k = 0; k < n; ++k)
        EXPECT_EQ(out[k], 1.5 + 0.25 * k) << k;

    RayColor<M> ray{};
    Fill(*model, ray.Light());
    std::vector<double> rayOut(static_cast<std::size_t>(n), 1.0);
    model->AddRayToArray(ray, rayOut.data());
    const int intensities = std::is_same_v<M, BWModel<StokesPolarization>> ? 1 : n / rayStride;
    for (int k = 0; k < intensities; ++k)
        EXPECT_EQ(rayOut[k], 1.5 + 0.25 * k * rayStride) << "ray " << k;
}

} // namespace

TEST_F(Registered, ArraysAreAddedOntoNotReplaced) {
    ExpectAddsOnto(BWModel<Unpolarized>::GetModel(), 1);
    ExpectAddsOnto(BWModel<StokesPolarization>::GetModel(), 4);
    ExpectAddsOnto(RGBModel<Unpolarized>::GetModel(), 1);
    ExpectAddsOnto(RGBModel<StokesPolarization>::GetModel(), 4);
    ExpectAddsOnto(SpectralModel<Unpolarized>::GetModel(), 1);
    ExpectAddsOnto(SpectralModel<StokesPolarization>::GetModel(), 4);
    ExpectAddsOnto(XYZModel::GetModel(), 1);

    // xyY: (0.25, 0.5, 2) is XYZ (1, 2, 1); the two operands sum to XYZ (2, 4, 2), which is xyY
    // (0.25, 0.5, 4), and that is added onto the array: all exact in binary.
    const XYYModel* xyy = XYYModel::GetModel();
    LgtColor<XYYModel> c{};
    c[0] = 0.25;
    c[1] = 0.5;
    c[2] = 2.0;
    double out[3] = {0.25, 0.5, 2.0};
    xyy->AddLgtToArray(c, out);
    EXPECT_EQ(out[0], 0.5);
    EXPECT_EQ(out[1], 1.0);
    EXPECT_EQ(out[2], 6.0);
    RayColor<XYYModel> ray{};
    ray.Light() = c;
    double rayOut[3] = {0.25, 0.5, 2.0};
    xyy->AddRayToArray(ray, rayOut);
    EXPECT_EQ(rayOut[2], 6.0);
}

// A BW light is shown white when it is above 0 and black otherwise, 0 included; the result says
// whether it was shown white.
TEST_F(Registered, ABWLightOfZeroIsShownBlack) {
    for (const ColorModel* model :
         {static_cast<const ColorModel*>(BWModel<Unpolarized>::GetModel()),
          static_cast<const ColorModel*>(BWModel<StokesPolarization>::GetModel())}) {
        SCOPED_TRACE(model->Name());
        const struct {
            double value;
            double shown;
        } cases[] = {{0.0, 0.0}, {-0.0, 0.0}, {-1.0, 0.0}, {1e-300, 1.0}, {0.5, 1.0}, {7.0, 1.0}};
        for (const auto& c : cases) {
            TPlugRef<Holder<ILgtColor>> light = model->NewLgtColorHold();
            std::vector<double> values(4, 0.0);
            values[0] = c.value;
            model->SetLgtColor(light->Color(), values.data());
            TVect3<double> rgb(0.5, 0.5, 0.5);
            EXPECT_EQ(model->LgtColorToDisplayRGB(light->Color(), rgb), c.shown != 0.0 ? 1 : 0)
                << c.value;
            EXPECT_EQ(rgb, TVect3<double>(c.shown, c.shown, c.shown)) << c.value;
        }
    }
}
