// The wavelength grid of a spectral model: validation, trapezoid weights, the spike table, the
// converter that follows the grid, the shared 380..780 nm models, and the grid's archive.
#include "ModelTestSupport.h"

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/TextSerializer.h"
#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/plugsys/PlugFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>

using namespace Korvane;
using Korvane::Testing::Grid;
using Korvane::Testing::GridModel;
using Korvane::Testing::ScopedDefaultGrid;
using Korvane::Testing::ScopedModelTypes;

namespace {

using UModel = GridModel<Unpolarized>;

bool LastReportIs(ReportKind kind, const std::string& text) {
    const std::vector<Report> log = ReportLog::Entries();
    return !log.empty() && log.back().kind == kind && log.back().text == text;
}

std::string Contents(const BinarySerializer& a) {
    return a.Bytes();
}
std::string Contents(const TextSerializer& a) {
    return a.Text();
}

// What the spectral type writes for `model`.
template <class Archive>
std::string Save(BSpectralModel& model) {
    Archive out;
    EXPECT_EQ(model.ObjType()->SerializeInstance(&model, out), 0);
    EXPECT_EQ(out.Finish(), 0);
    return Contents(out);
}

// Reads `stored` into `model` as the host loads a plug (OnLoad only after a good read); the
// archive's result: 0, or the message it failed with.
template <class Archive>
std::string Load(const std::string& stored, BSpectralModel& model) {
    Archive in(stored);
    model.ObjType()->SerializeInstance(&model, in);
    in.Finish();
    if (in.Failed())
        return in.Error();
    static_cast<Plug&>(model).OnLoad(1); // the host's view of the model
    return "0";
}

// An archive of the grid group written by hand: `count` announced, `values` stored.
template <class Archive>
std::string HandMadeGrid(std::int32_t count, std::vector<double> values, bool equidistant) {
    Archive out;
    out.OpenGroup("Wavelengths");
    if (count != 0)
        out.SerializeCount(count, 1);
    if (!values.empty())
        out.Serialize(values.data(), static_cast<int>(values.size()));
    out.CloseGroup();
    out.Serialize("EquiDistant", equidistant, false);
    out.Finish();
    return Contents(out);
}

template <class Archive>
void CheckRoundTrip() {
    ScopedModelTypes types;
    ScopedDefaultGrid defaults;
    UModel saved(Grid({400.0, 425.0, 500.0, 700.0}));
    PlugRef loaded = ScopedModelTypes::Type(ModelKind::USpectr)->NewInstance();
    auto& model = *static_cast<SpectralModel<Unpolarized>*>(loaded.Get());
    ASSERT_EQ(Load<Archive>(Save<Archive>(saved), model), "0");
    EXPECT_TRUE(model.IsEqual(&saved));
    EXPECT_TRUE(model.GetWeights().IsEqual(saved.GetWeights()));
    EXPECT_TRUE(model.GetWeightsInv().IsEqual(saved.GetWeightsInv()));
    EXPECT_TRUE(model.GetSpectral2XYZWeights().IsEqual(saved.GetSpectral2XYZWeights()));
    ASSERT_NE(model.GetMassColConv(), nullptr); // the loaded grid got its converter
    EXPECT_TRUE(model.GetMassColConv()->Wavelengths().IsEqual(saved.GetWaveLengths()));
}

template <class Archive>
void CheckRefusedGrids() {
    ScopedModelTypes types;
    UModel model(Grid({500.0, 600.0}));
    const std::string stored = Save<Archive>(model);
    const std::string refused[] = {
        // Truncated: the frame check fails before any record is read.
        stored.substr(0, stored.size() / 2),
        // Three wavelengths announced, two stored.
        HandMadeGrid<Archive>(3, {400.0, 500.0}, true),
        // Not increasing.
        HandMadeGrid<Archive>(2, {500.0, 400.0}, true),
        // Empty: the count is left out, as a writer leaves it out for an empty grid.
        HandMadeGrid<Archive>(0, {}, false),
    };
    const char* const reasons[] = {"", "", "not a valid grid", "empty"};
    for (int i = 0; i < 4; ++i) {
        const std::string error = Load<Archive>(refused[i], model);
        EXPECT_NE(error, "0") << "archive " << i;
        EXPECT_NE(error.find(reasons[i]), std::string::npos) << error;
        EXPECT_EQ(model.NWaves(), 0) << "archive " << i; // nothing half-read is kept
    }

    // A host that calls OnLoad all the same gets a report, not a write past an empty table.
    model.OnLoad(1);
    EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::InternalError);
    EXPECT_EQ(model.GetMassColConv(), nullptr);
}

} // namespace

TEST(SpectralGrid, OnePointGridWeighsOne) {
    UModel model(Grid({550.0}));
    ASSERT_EQ(model.NWaves(), 1);
    EXPECT_EQ(model.GetWeights()[0], 1.0);
    EXPECT_EQ(model.GetWeightsInv()[0], 1.0);
    EXPECT_EQ(model.GetSpectral2XYZWeights()[0], TVect3<double>(1.0, 1.0, 1.0));
    EXPECT_TRUE(model.IsEquidistant());
    double lo = 0.0, hi = 0.0;
    model.GetWaveRange(lo, hi);
    EXPECT_EQ(lo, 550.0);
    EXPECT_EQ(hi, 550.0);
}

TEST(SpectralGrid, TrapezoidWeightsOfAnUnevenGrid) {
    UModel model(Grid({400.0, 500.0, 700.0}));
    // Half the span of the neighbours inside, half the single step at either end.
    EXPECT_EQ(model.GetWeights()[0], 50.0);
    EXPECT_EQ(model.GetWeights()[1], 150.0);
    EXPECT_EQ(model.GetWeights()[2], 100.0);
    EXPECT_EQ(model.GetWeightsInv()[0], 0.02);
    EXPECT_EQ(model.GetWeightsInv()[1], 1.0 / 150.0);
    EXPECT_EQ(model.GetWeightsInv()[2], 0.01);
    EXPECT_FALSE(model.IsEquidistant());
}

TEST(SpectralGrid, XYZTableHoldsTheConvertersSpikeResponses) {
    const MArray<double> waves = Grid({380.0, 450.0, 455.0, 555.0, 700.0, 830.0});
    UModel model(waves);
    const TArray<TVect3<double>>& table = model.GetSpectral2XYZWeights();
    ASSERT_EQ(table.Count(), waves.Count());
    TArray<double> spike(10);
    spike.Alloc(waves.Count());
    for (int i = 0; i < waves.Count(); ++i) {
        spike.Fill(0.0);
        spike[i] = 1.0;
        TVect3<double> xyz(-1.0, -1.0, -1.0);
        ASSERT_EQ(CIEConv::spectrum2xyz(waves, spike, xyz), 0);
        EXPECT_EQ(table[i], xyz) << "row " << i;
    }
    EXPECT_GT(table[3].y, table[1].y); // 555 nm is seen far brighter than 450 nm
}

TEST(SpectralGrid, EquidistanceComparesConsecutiveSteps) {
    bool even = false;
    EXPECT_TRUE(BSpectralModel::CheckWaves(Grid({400.0, 500.0 + 1e-12, 600.0}), &even));
    EXPECT_TRUE(even); // rounding noise
    EXPECT_TRUE(BSpectralModel::CheckWaves(Grid({400.0, 500.0 + 1e-3, 600.0}), &even));
    EXPECT_FALSE(even); // a real difference of steps

    // Each step 5e-8 longer than the one before: every neighbour pair is within the tolerance,
    // though the last step is 2.5e-5 longer than the first.
    MArray<double> drifting(10);
    drifting.Alloc(501);
    double w = 300.0, step = 1.0;
    for (int i = 0; i < drifting.Count(); ++i, w += step, step *= 1.0 + 5e-8)
        drifting[i] = w;
    EXPECT_TRUE(BSpectralModel::CheckWaves(drifting, &even));
    EXPECT_TRUE(even);
}

TEST(SpectralGrid, InvalidGridsAreRejectedAndChangeNothing) {
    UModel model(Grid({400.0, 500.0}));
    MassColConv* conv = model.GetMassColConv();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const MArray<double> rejected[] = {Grid({}),
                                       Grid({0.0, 10.0}),
                                       Grid({-5.0, 10.0}),
                                       Grid({400.0, 400.0}),
                                       Grid({500.0, 400.0}),
                                       Grid({400.0, 500.0, 450.0}),
                                       Grid({nan}),
                                       Grid({400.0, nan})};
    for (const MArray<double>& waves : rejected) {
        ReportLog::Clear();
        EXPECT_EQ(model.SetWaveLengths(waves), kInternalErrorCode);
        EXPECT_TRUE(LastReportIs(ReportKind::InternalError, "BSpectralModel::SetWaveLengths()"));
        EXPECT_TRUE(model.GetWaveLengths().IsEqual(Grid({400.0, 500.0})));
        EXPECT_EQ(model.GetMassColConv(), conv);
    }
    // There is no upper limit on wavelengths: the grid is not the host's field range.
    EXPECT_EQ(model.SetWaveLengths(Grid({2000.0, 2500.0})), 0);
}

TEST(SpectralGrid, ConverterFollowsTheGrid) {
    UModel model(Grid({400.0, 500.0, 600.0}));
    MassColConv* conv = model.GetMassColConv();
    ASSERT_NE(conv, nullptr);
    EXPECT_TRUE(conv->Wavelengths().IsEqual(model.GetWaveLengths()));
    EXPECT_EQ(conv->LightRGB().Count(), 3); // light tables prepared

    // The same grid again: nothing is recomputed, the converter stays.
    EXPECT_EQ(model.SetWaveLengths(Grid({400.0, 500.0, 600.0})), 0);
    EXPECT_EQ(model.GetMassColConv(), conv);

    EXPECT_EQ(model.SetWaveLengths(Grid({400.0, 550.0})), 0);
    ASSERT_NE(model.GetMassColConv(), conv);
    EXPECT_TRUE(model.GetMassColConv()->Wavelengths().IsEqual(Grid({400.0, 550.0})));
    EXPECT_EQ(model.GetWeights().Count(), 2);
}

TEST(SpectralGrid, ConverterFollowsTheHostsCIEConverter) {
    PlugRef custom = CIEConvAll::Create(Observer::CIE1964_10deg);
    ASSERT_TRUE(custom);
    {
        UModel model(Grid({450.0, 550.0, 650.0}));
        model.SetCIEConvAll(static_cast<CIEConvAll*>(custom.Get()));
        EXPECT_EQ(model.GetMassColConv()->Converter(), custom.Get());
        EXPECT_EQ(ColorModel::GetCIEConvAll(), custom.Get());
        model.SetCIEConvAll(nullptr); // no full converter: the built-in one serves
        EXPECT_EQ(model.GetMassColConv()->Converter(), ColorModel::GetCIEConv());
        model.SetCIEConvAll(CIEConvAll::Default());
    }
}

TEST(SpectralGrid, CopySharesConverterButNotTheXYZTable) {
    UModel model(Grid({400.0, 500.0, 700.0}));
    PlugRef copy = model.Clone();
    ASSERT_TRUE(copy);
    auto& twin = *static_cast<SpectralModel<Unpolarized>*>(copy.Get());
    EXPECT_TRUE(twin.IsEqual(&model));
    EXPECT_TRUE(twin.GetWeightsInv().IsEqual(model.GetWeightsInv()));
    EXPECT_EQ(twin.GetSpectral2XYZWeights().Count(), 0); // rebuilt by the next grid or load
    EXPECT_EQ(twin.GetMassColConv(), model.GetMassColConv());
}

TEST(SpectralGrid, EqualModelsNeedTheSameEquidistantFlag) {
    ScopedModelTypes types;
    UModel even(Grid({400.0, 500.0, 600.0}));
    UModel stored(Grid({400.0, 500.0, 600.0}));
    ASSERT_TRUE(stored.IsEqual(&even));
    // The same wavelengths stored with the flag cleared.
    ASSERT_EQ(
        Load<TextSerializer>(HandMadeGrid<TextSerializer>(3, {400.0, 500.0, 600.0}, false), stored),
        "0");
    EXPECT_TRUE(stored.GetWaveLengths().IsEqual(even.GetWaveLengths()));
    EXPECT_FALSE(stored.IsEqual(&even));

    // Grids of the same count and flag but other wavelengths make other models.
    UModel shifted(Grid({410.0, 510.0, 610.0}));
    EXPECT_FALSE(shifted.IsEqual(&even));
    EXPECT_FALSE(even.IsEqual(&shifted));
}

TEST(SpectralGrid, DefaultModelTakesTheDefaultGrid) {
    ScopedModelTypes types;
    ScopedDefaultGrid defaults;
    TPlugRef<SpectralModel<Unpolarized>> held = new SpectralModel<Unpolarized>();
    SpectralModel<Unpolarized>& model = *held.Get();
    ASSERT_EQ(model.NWaves(), 33);
    EXPECT_EQ(model.GetWaveLengths()[0], 390.0);
    EXPECT_EQ(model.GetWaveLengths()[32], 710.0);
    EXPECT_TRUE(model.IsEquidistant());
    EXPECT_EQ(model.Name(), "USpectr");

    // The implicit spectral model (which holds a reference) and the shortcuts that read it.
    model.SetAsImplicit();
    EXPECT_EQ(BSpectralModel::GetKLBMSpectralModel(), &model);
    EXPECT_EQ(ColorModel::GetImplicitModel(), &model);
    EXPECT_EQ(BSpectralModel::NColours(), 33);
    EXPECT_EQ(BSpectralModel::Weights()[1], 10.0);
    EXPECT_EQ(BSpectralModel::SetSpectrogram(Grid({500.0, 400.0})), -1);
    EXPECT_EQ(BSpectralModel::SetSpectrogram(Grid({400.0, 500.0})), 0);
    EXPECT_EQ(model.NWaves(), 2);
}

TEST(SpectralGrid, Shared380To780ModelsAreMadeOnceEach) {
    ScopedModelTypes types;
    SpectralModel<Unpolarized>* model = SpectralModel<Unpolarized>::GetModel_380_780();
    ASSERT_NE(model, nullptr);
    ASSERT_EQ(model->NWaves(), 41);
    EXPECT_EQ(model->GetWaveLengths()[0], 380.0);
    EXPECT_EQ(model->GetWaveLengths()[40], 780.0);
    EXPECT_EQ(SpectralModel<Unpolarized>::GetModel_380_780(), model);
    EXPECT_NE(static_cast<void*>(SpectralModel<StokesPolarization>::GetModel_380_780()),
              static_cast<void*>(model));
    // Not one of the host's registered models.
    const std::vector<ColorModel*> listed = TColorModel->Models();
    EXPECT_EQ(std::find(listed.begin(), listed.end(), model), listed.end());
}

TEST(SpectralGrid, Shared380To780ModelWithoutMemoryIsRetriedLater) {
    ScopedModelTypes types;
    {
        FaultInjection::ScopedFailure noArrays(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(SpectralModel<StokesPolarization>::GetModel_380_780(), nullptr);
    }
    EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::NoMemory);
    EXPECT_FALSE(Library::Model380To780(true));
    SpectralModel<StokesPolarization>* model =
        SpectralModel<StokesPolarization>::GetModel_380_780();
    ASSERT_NE(model, nullptr);
    EXPECT_EQ(model->NWaves(), 41);
}

TEST(SpectralGridArchive, RoundTripThroughBothFormats) {
    {
        SCOPED_TRACE("binary");
        CheckRoundTrip<BinarySerializer>();
    }
    {
        SCOPED_TRACE("text");
        CheckRoundTrip<TextSerializer>();
    }
}

TEST(SpectralGridArchive, DamagedOrEmptyGridsAreRefused) {
    {
        SCOPED_TRACE("binary");
        CheckRefusedGrids<BinarySerializer>();
    }
    {
        SCOPED_TRACE("text");
        CheckRefusedGrids<TextSerializer>();
    }
}

TEST(SpectralGridArchive, PlugFilesOfBothFormatsKeepTheModel) {
    ScopedModelTypes types;
    ScopedDefaultGrid defaults;
    GridModel<StokesPolarization> saved(Grid({380.0, 390.5, 700.0}));
    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        const std::string path = testing::TempDir() + "spectral_grid_model.plug";
        ASSERT_EQ(PlugFile::Save(saved, path.c_str(), format), 0);
        std::string error;
        PlugRef loaded = PlugFile::Load(path.c_str(), error);
        ASSERT_TRUE(loaded) << error;
        EXPECT_EQ(loaded.Get()->ObjType(), ScopedModelTypes::Type(ModelKind::StkSpectr));
        const auto& model = *static_cast<SpectralModel<StokesPolarization>*>(loaded.Get());
        EXPECT_TRUE(model.IsEqual(&saved));
        EXPECT_EQ(model.GetSpectral2XYZWeights().Count(), 3); // rebuilt by OnLoad
        std::remove(path.c_str());
    }
}

// The tolerance is taken from both steps: a change of step d - dprev counts as rounding up to
// (d + dprev) * kEquidistantTolerance, twice what one step of 1 nm alone would allow. Steps of
// 1 nm are changed by 1.5 and 2.5 times kEquidistantTolerance (about 1.8e-7 and 3e-7 nm, far
// above the 1.1e-13 nm rounding of wavelengths near 400 nm).
TEST(SpectralGrid, EquidistanceToleranceCoversBothSteps) {
    const double eps = BSpectralModel::kEquidistantTolerance;
    bool even = false;
    EXPECT_TRUE(BSpectralModel::CheckWaves(Grid({400.0, 401.0, 402.0 + 1.5 * eps}), &even));
    EXPECT_TRUE(even);
    EXPECT_TRUE(BSpectralModel::CheckWaves(Grid({400.0, 401.0, 402.0 + 2.5 * eps}), &even));
    EXPECT_FALSE(even);
    EXPECT_FALSE(BSpectralModel::CheckWaves(Grid({0.0, 1.0}), &even)); // 0 nm is no wavelength
}
