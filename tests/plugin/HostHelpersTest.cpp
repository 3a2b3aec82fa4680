// The host kit's helpers for hosts, run against the registered library: spectral models on a grid
// of the host's choice, sizing the colours of spectral holders, and choosing the observer.
#include "HolderTestSupport.h"

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/colormodel/GridModel.h"
#include "hostkit/colormodel/ObserverChoice.h"
#include "hostkit/colormodel/SpectralSizing.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/SpectralModel.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Korvane;

namespace {

using HostHelpers = Testing::Registered;

const ColorModel* Model(const char* name) {
    const ColorModel* m = TColorModel->FindModel(name);
    EXPECT_NE(m, nullptr) << name;
    return m;
}

std::vector<double> Grid(const ColorModel& m) {
    const MArray<double>& w = m.GetWaveLengths();
    return std::vector<double>(w.Data(), w.Data() + w.Count());
}

// Every double of every sample of a spectral colour is zero and the colour has n samples.
template <class Colour>
void ExpectZeroSamples(const Colour& c, int n) {
    const auto& d = c.Distr();
    ASSERT_EQ(d.Count(), n);
    for (int i = 0; i < n; ++i)
        for (double v : d[i].v)
            EXPECT_EQ(v, 0.0) << i;
}

// A holder of `ident` as its type makes it: empty until sized.
PlugRef Fresh(const std::string& ident) {
    PlugType* type = PlugType::Find(ident.c_str());
    EXPECT_NE(type, nullptr) << ident;
    return type ? PlugRef(type->NewInstance()) : PlugRef();
}

template <class M>
void ExpectEveryKindSized(const char* modelName, const std::string& prefix) {
    const ColorModel& model = *Model(modelName);
    const int n = model.NWaves();
    PlugRef lgt = Fresh(prefix + "LgtColorHold"), dual = Fresh(prefix + "DualLgtColorHold"),
            ray = Fresh(prefix + "RayColorHold"), surf = Fresh(prefix + "SurfColorHold"),
            scalar = Fresh(prefix + "ScalarColorHold");
    auto& l = ColourAccess::Value<M>(static_cast<Holder<ILgtColor>*>(lgt.Get())->Color());
    ASSERT_EQ(l.Distr().Count(), 0) << "a holder made by its type starts empty";
    for (Plug* h : {lgt.Get(), dual.Get(), ray.Get(), surf.Get(), scalar.Get()})
        ASSERT_EQ(SizeSpectralColour(*h, model), 0) << h->ObjType()->Ident().c_str();

    ExpectZeroSamples(l, n);
    EXPECT_EQ(l.Distr().First(), 0);
    EXPECT_EQ(l.Distr().Last(), n - 1) << "a sized light colour covers the whole grid";
    ExpectZeroSamples(
        ColourAccess::Value<M>(static_cast<Holder<IDualLgtColor>*>(dual.Get())->Color()), n);
    auto& r = ColourAccess::Value<M>(static_cast<Holder<IRayColor>*>(ray.Get())->Color());
    ExpectZeroSamples(r.Light(), n);
    if constexpr (std::decay_t<decltype(r)>::kHasXOrt) {
        EXPECT_EQ(r.XOrt().x, 1.0);
        EXPECT_EQ(r.XOrt().y, 0.0);
        EXPECT_EQ(r.XOrt().z, 0.0);
    }
    ExpectZeroSamples(ColourAccess::Value<M>(static_cast<Holder<ISurfColor>*>(surf.Get())->Color()),
                      n);
    ExpectZeroSamples(
        ColourAccess::Value<M>(static_cast<Holder<IScalarColor>*>(scalar.Get())->Color()), n);
}

} // namespace

TEST(HostGrids, EvenGridAndTheEquidistantRule) {
    EXPECT_EQ(EvenGrid(390.0, 10.0, 3), (std::vector<double>{390.0, 400.0, 410.0}));
    EXPECT_TRUE(EvenGrid(390.0, 10.0, 0).empty());
    // The model's own rule: a wobble of 1e-12 nm in a 100 nm step is rounding, 1e-3 nm is not.
    EXPECT_TRUE(IsEquidistantGrid({400.0, 500.0, 600.0 + 1e-12}));
    EXPECT_FALSE(IsEquidistantGrid({400.0, 500.0, 600.0 + 1e-3}));
    EXPECT_FALSE(IsEquidistantGrid({400.0, 500.0, 700.0}));
    EXPECT_TRUE(IsEquidistantGrid({550.0}));
}

TEST_F(HostHelpers, MakesSpectralModelsOnTheHostsGrid) {
    std::string error;
    const std::vector<double> waves = EvenGrid(380.0, 5.0, 81);
    PlugRef made = MakeSpectralModel("USpectr", waves, error);
    ASSERT_TRUE(made) << error;
    const auto& model = *static_cast<const ColorModel*>(made.Get());
    EXPECT_EQ(Grid(model), waves);
    EXPECT_FALSE(model.HasPolarization());
    ASSERT_NE(model.GetMassColConv(), nullptr) << "OnLoad built the converter for the grid";

    // On the default grid it is the registered model's equal: same grid, same equidistant flag.
    PlugRef onDefault = MakeSpectralModel("USpectr", EvenGrid(390.0, 10.0, 33), error);
    ASSERT_TRUE(onDefault) << error;
    EXPECT_TRUE(static_cast<const ColorModel*>(onDefault.Get())->IsEqual(Model("USpectr")));
    EXPECT_EQ(TColorModel->Models().size(), 8u) << "a host's own model is not registered";

    PlugRef stokes = MakeSpectralModel("StkSpectr", {400.0, 500.0, 700.0}, error);
    ASSERT_TRUE(stokes) << error;
    EXPECT_TRUE(static_cast<const ColorModel*>(stokes.Get())->HasPolarization());
}

TEST_F(HostHelpers, RefusesWhatMakesNoSpectralModel) {
    std::string error;
    EXPECT_FALSE(MakeSpectralModel("USpectr", {0.0, 10.0}, error));
    EXPECT_NE(error.find("not a valid grid"), std::string::npos) << error;
    EXPECT_FALSE(MakeSpectralModel("USpectr", {}, error));
    EXPECT_NE(error.find("empty"), std::string::npos) << error;
    EXPECT_FALSE(MakeSpectralModel("URGB", {500.0}, error));
    EXPECT_NE(error.find("not spectral"), std::string::npos) << error;
    EXPECT_FALSE(MakeSpectralModel("UBWLgtColorHold", {500.0}, error));
    EXPECT_NE(error.find("not a colour-model type"), std::string::npos) << error;
    EXPECT_FALSE(MakeSpectralModel("NoSuchType", {500.0}, error));
    EXPECT_EQ(error, "no plug type \"NoSuchType\" is registered (is the plug-in loaded?)");
}

TEST_F(HostHelpers, SizesEveryKindOfSpectralHolder) {
    ExpectEveryKindSized<SpectralModel<Unpolarized>>("USpectr", "USpectr");
    ExpectEveryKindSized<SpectralModel<StokesPolarization>>("StkSpectr", "StkSpectr");
}

TEST_F(HostHelpers, SizedColoursTakeAConversion) {
    std::string error;
    PlugRef made = MakeSpectralModel("USpectr", EvenGrid(400.0, 20.0, 16), error);
    ASSERT_TRUE(made) << error;
    const auto& spectral = *static_cast<const ColorModel*>(made.Get());
    const ColorModel& rgb = *Model("URGB");
    PlugRef in = Fresh("URGBLgtColorHold"), back = Fresh("URGBLgtColorHold"),
            s = Fresh("USpectrLgtColorHold");
    ASSERT_EQ(SizeSpectralColour(*s.Get(), spectral), 0);
    auto& inColour = static_cast<Holder<ILgtColor>*>(in.Get())->Color();
    auto& sColour = static_cast<Holder<ILgtColor>*>(s.Get())->Color();
    auto& backColour = static_cast<Holder<ILgtColor>*>(back.Get())->Color();
    const double white[3] = {1.0, 1.0, 1.0};
    rgb.SetLgtColor(inColour, white);
    ASSERT_EQ(spectral.ConvertColor(&rgb, inColour, sColour), 0);
    ASSERT_EQ(rgb.ConvertColor(&spectral, sColour, backColour), 0);
    double out[3] = {0.0, 0.0, 0.0};
    rgb.LgtToArray(backColour, out);
    // The reconstruction is exact to rounding on every grid; white passes through a D65 light
    // and back, a handful of operations on values near 1.
    constexpr double kRoundTrip = 1e-12;
    for (double v : out)
        EXPECT_NEAR(v, 1.0, kRoundTrip);
}

TEST_F(HostHelpers, SizesArraysAndMatrices) {
    const ColorModel& model = *Model("StkSpectr");
    using M = SpectralModel<StokesPolarization>;
    TPlugRef<ArrayLgtColorHolder> array = model.NewArrayLgtColorHold(0);
    ASSERT_NE(array.Get(), nullptr);
    ASSERT_EQ(SizeSpectralArray(*array.Get(), 3, model), 0);
    for (int i = 0; i < 3; ++i)
        ExpectZeroSamples(ColourAccess::Value<M>(*array->Element(i)), 33);

    TPlugRef<MatrixLgtColorHolder> matrix = model.NewMatrixLgtColorHold();
    ASSERT_NE(matrix.Get(), nullptr);
    ASSERT_EQ(SizeSpectralMatrix(*matrix.Get(), 2, 3, model), 0);
    for (int i = 0; i < 2; ++i)
        for (int j = 0; j < 3; ++j)
            ExpectZeroSamples(ColourAccess::Value<M>(*matrix->Element(i, j)), 33);
}

TEST_F(HostHelpers, SizingRefusesAMismatchWithAReport) {
    ReportLog::Clear(); // the registration's log lines
    PlugRef unpolarized = Fresh("USpectrLgtColorHold");
    EXPECT_EQ(SizeSpectralColour(*unpolarized.Get(), *Model("StkSpectr")), kInternalErrorCode);
    EXPECT_EQ(SizeSpectralColour(*unpolarized.Get(), *Model("URGB")), kInternalErrorCode);
    TPlugRef<ArrayLgtColorHolder> array = Model("USpectr")->NewArrayLgtColorHold(0);
    EXPECT_EQ(SizeSpectralArray(*array.Get(), -1, *Model("USpectr")), kInternalErrorCode);
    const std::vector<Report> log = ReportLog::Entries();
    ASSERT_EQ(log.size(), 3u);
    EXPECT_EQ(log[0].text.rfind("SizeSpectralColour: the holder of type USpectrLgtColorHold did "
                                "not take the colours: ",
                                0),
              0u)
        << log[0].text;
    EXPECT_EQ(log[1].text, "SizeSpectralColour: the model URGB is not spectral");
    EXPECT_EQ(log[2].text, "SizeSpectralArray: count -1 < 0");
}

TEST_F(HostHelpers, ObserverChoiceReachesEveryRegisteredModel) {
    const ColorModel& spectral = *Model("USpectr");
    const ColorModel& rgb = *Model("URGB");
    PlugRef in = Fresh("URGBLgtColorHold"), s = Fresh("USpectrLgtColorHold");
    ASSERT_EQ(SizeSpectralColour(*s.Get(), spectral), 0);
    auto& inColour = static_cast<Holder<ILgtColor>*>(in.Get())->Color();
    auto& sColour = static_cast<Holder<ILgtColor>*>(s.Get())->Color();
    const double green[3] = {0.0, 1.0, 0.0};
    rgb.SetLgtColor(inColour, green);
    ASSERT_EQ(spectral.ConvertColor(&rgb, inColour, sColour), 0);
    TVect3<double> xyz2, xyz10;
    ASSERT_EQ(spectral.LgtColorToXYZ(sColour, xyz2), 0);

    EXPECT_EQ(CurrentObserver(), Observer::CIE1931_2deg);
    ASSERT_EQ(UseObserver(Observer::CIE1964_10deg), 0);
    EXPECT_EQ(CurrentObserver(), Observer::CIE1964_10deg);
    EXPECT_NE(ColorModel::GetCIEConvAll(), CIEConvAll::Default());
    ASSERT_EQ(spectral.LgtColorToXYZ(sColour, xyz10), 0);
    EXPECT_NE(xyz10.y, xyz2.y) << "the model's tables were rebuilt for the new observer";

    ReleaseObserver();
    EXPECT_EQ(ColorModel::GetCIEConvAll(), CIEConvAll::Default());
    TVect3<double> again;
    ASSERT_EQ(spectral.LgtColorToXYZ(sColour, again), 0);
    EXPECT_EQ(again.y, xyz2.y);
}
