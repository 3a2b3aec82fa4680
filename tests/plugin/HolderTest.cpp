// Single-colour holders: what the models and the types make, the archive form of each layout,
// round trips of all 30 holders, damaged archives, and clones that own their samples.
#include "HolderTestSupport.h"

#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/User.h"
#include "plugin/holders/ColorHold.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYZModel.h"

#include <cstdint>
#include <string>
#include <vector>

using namespace Korvane;
using namespace Korvane::Testing;

namespace {

using BWU = BWModel<Unpolarized>;
using BWS = BWModel<StokesPolarization>;
using RGBU = RGBModel<Unpolarized>;
using RGBS = RGBModel<StokesPolarization>;
using SpU = SpectralModel<Unpolarized>;
using SpS = SpectralModel<StokesPolarization>;

// An archive holding the group "Color" with one int: a sample count and no samples.
std::string CountOnly(std::int32_t count) {
    BinarySerializer archive;
    archive.OpenGroup("Color");
    archive.Serialize(count);
    archive.CloseGroup();
    archive.Finish();
    return archive.Bytes();
}

template <class H>
class EveryColorHold : public Registered {};

using AllColorHolds = testing::Types<
#define KORVANE_KINDS(M)                                                                           \
    ColorHold<LgtColor<M>>, ColorHold<RayColor<M>>, ColorHold<SurfColor<M>>,                       \
        ColorHold<ScalarColor<M>>, ColorHold<DualLgtColor<M>>
    KORVANE_KINDS(BWU), KORVANE_KINDS(BWS), KORVANE_KINDS(RGBU), KORVANE_KINDS(RGBS),
    KORVANE_KINDS(SpU), KORVANE_KINDS(SpS)>;
#undef KORVANE_KINDS
TYPED_TEST_SUITE(EveryColorHold, AllColorHolds);

} // namespace

TYPED_TEST(EveryColorHold, RoundTripsThroughPlugFilesAndClones) {
    TPlugRef<TypeParam> holder = new TypeParam();
    Pattern(holder->Value(), 1.5);
    const auto expected = holder->Value();
    std::string path = testing::UnitTest::GetInstance()->current_test_suite()->name();
    path = testing::TempDir() + path.replace(path.find('/'), 1, "-") + ".plug";
    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        ASSERT_EQ(PlugFile::Save(*holder.Get(), path.c_str(), format), 0);
        std::string error;
        PlugRef loaded = PlugFile::Load(path.c_str(), error);
        auto* fromFile = dynamic_cast<TypeParam*>(loaded.Get());
        ASSERT_NE(fromFile, nullptr) << error;
        EXPECT_TRUE(fromFile->Value() == expected);
    }
    // A clone is equal and owns its values: changing it leaves the original alone.
    TPlugRef<TypeParam> clone = static_cast<TypeParam*>(holder->Clone());
    ASSERT_TRUE(clone.Get());
    EXPECT_EQ(clone->ObjType(), holder->ObjType());
    EXPECT_TRUE(clone->Value() == expected);
    Pattern(clone->Value(), -4.0);
    EXPECT_TRUE(holder->Value() == expected);
}

TEST_F(Registered, ModelsHandOutHoldersOfTheirColoursWithoutAReference) {
    const ColorModel* xyz = XYZModel::GetModel();
    auto all = [xyz]() -> std::vector<Plug*> {
        return {xyz->NewLgtColorHold(),       xyz->NewRayColorHold(),
                xyz->NewSurfColorHold(),      xyz->NewScalarColorHold(),
                xyz->NewDualLgtColorHold(),   xyz->NewArrayLgtColorHold(5),
                xyz->NewMatrixLgtColorHold(), xyz->NewArrayRayColorHold()};
    };
    const std::vector<std::string> types = {"URGBLgtColorHold",       "URGBRayColorHold",
                                            "URGBSurfColorHold",      "URGBScalarColorHold",
                                            "URGBDualLgtColorHold",   "URGBArrayLgtColorHold",
                                            "URGBMatrixLgtColorHold", "ArrayRayColorHolder"};
    std::vector<std::string> made;
    for (Plug* holder : all()) {
        ASSERT_NE(holder, nullptr);
        EXPECT_EQ(holder->RefCount(), 0); // the caller's first reference owns it
        PlugRef owner = holder;
        made.push_back(holder->ObjType()->Ident());
    }
    EXPECT_EQ(made, types);

    PlugRef ray = BWModel<StokesPolarization>::GetModel()->NewRayColorHold();
    // Out of memory: every slot reports once and returns null; a type or a clone returns null
    // silently.
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 1, true);
        EXPECT_EQ(all(), std::vector<Plug*>(8, nullptr));
        EXPECT_EQ(ReportLog::Count(), 8u);
        EXPECT_EQ(ColorHold<LgtColor<SpU>>::ClassType()->NewInstance(), nullptr);
        EXPECT_EQ(ray.Get()->Clone(), nullptr);
    }
    for (const Report& r : ReportLog::Entries())
        EXPECT_EQ(r.kind, ReportKind::NoMemory);

    // An array that cannot be sized: null, no report of the slot, the holder released.
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(SpS::GetModel()->NewArrayLgtColorHold(3), nullptr);
    }
    EXPECT_EQ(ReportLog::Count(), 0u);
}

TEST_F(Registered, ArchiveFormsOfAStokesRayAndABandedLight) {
    // A Stokes RGB ray: 12 doubles in layout order (S0..S3 of r, g, b), then the X orientation
    // as one array of three.
    TPlugRef<ColorHold<RayColor<RGBS>>> stokes = new ColorHold<RayColor<RGBS>>();
    Pattern(stokes->Value(), 2.0);
    TextSerializer text(Write(*stokes.Get(), ArchiveFormat::Text));
    double v = 0.0;
    ASSERT_EQ(text.OpenGroup("Color"), 0);
    for (int k = 0; k < 12; ++k) {
        text.Serialize(v);
        EXPECT_EQ(v, 2.0 + 0.25 * k);
    }
    double xort[3] = {};
    text.Serialize(xort, 3);
    EXPECT_EQ(text.CloseGroup(), 0) << text.Error();
    EXPECT_EQ(xort[1], 2.0);
}

// A spectral light goes out as it is stored, inside its band or not: the count, then every double
// of every sample, exchanged one by one. Reading it back into a colour of another count sizes it
// anew (band [0, count - 1]); into a colour of that count it lands in place, band kept.
TEST_F(Registered, ASpectralLightIsArchivedAsItsStoredSamples) {
    TPlugRef<ColorHold<LgtColor<SpS>>> light = new ColorHold<LgtColor<SpS>>();
    Pattern(light->Value(), 3.0); // 3 samples of 4 doubles: 3.0, 3.25, ..., 5.75
    light->Value().Distr().SetBand(1, 1);
    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        auto expected = [](auto& archive) {
            archive.OpenGroup("Color");
            std::int32_t count = 3;
            archive.SerializeCount(count, 4);
            for (int k = 0; k < 12; ++k) {
                double v = 3.0 + 0.25 * k;
                archive.Serialize(v);
            }
            archive.CloseGroup();
            EXPECT_EQ(archive.Finish(), 0);
        };
        BinarySerializer binary;
        TextSerializer text;
        format == ArchiveFormat::Binary ? expected(binary) : expected(text);
        const std::string bytes = Write(*light.Get(), format);
        EXPECT_EQ(bytes, format == ArchiveFormat::Binary ? binary.Bytes() : text.Text());

        TPlugRef<ColorHold<LgtColor<SpS>>> fresh = new ColorHold<LgtColor<SpS>>();
        ASSERT_EQ(Read(*fresh.Get(), bytes, format), "");
        EXPECT_EQ(fresh->Value().Distr().First(), 0);
        EXPECT_EQ(fresh->Value().Distr().Last(), 2);
        EXPECT_EQ(fresh->Value(), light->Value());

        TPlugRef<ColorHold<LgtColor<SpS>>> same = new ColorHold<LgtColor<SpS>>();
        Pattern(same->Value(), 7.0);
        same->Value().Distr().SetBand(2, 2);
        const double* storage = same->Value().Values();
        ASSERT_EQ(Read(*same.Get(), bytes, format), "");
        EXPECT_EQ(same->Value().Values(), storage);
        EXPECT_EQ(same->Value().Distr().First(), 2);
        EXPECT_EQ(same->Value().Distr().Last(), 2);
        EXPECT_EQ(same->Value(), light->Value());
    }
}

TEST_F(Registered, SpectralCountsFromArchivesAreCheckedBeforeAllocating) {
    TPlugRef<ColorHold<SurfColor<SpS>>> holder = new ColorHold<SurfColor<SpS>>();
    Pattern(holder->Value(), 1.0);
    // A count of 0 empties the colour and reads no samples.
    EXPECT_EQ(Read(*holder.Get(), CountOnly(0), ArchiveFormat::Binary), "");
    EXPECT_EQ(holder->Value().Count(), 0);

    // Counts that the archive cannot hold fail it; nothing is allocated for them.
    for (std::int32_t damaged : {INT32_MAX, -1, 1}) {
        Pattern(holder->Value(), 1.0);
        EXPECT_NE(Read(*holder.Get(), CountOnly(damaged), ArchiveFormat::Binary), "") << damaged;
        EXPECT_EQ(holder->Value().Count(), 0) << damaged;
    }

    // Samples that cannot be allocated mark the archive out of memory.
    TPlugRef<ColorHold<SurfColor<SpS>>> source = new ColorHold<SurfColor<SpS>>();
    Pattern(source->Value(), 1.0);
    FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 1);
    EXPECT_EQ(
        Read(*holder.Get(), Write(*source.Get(), ArchiveFormat::Binary), ArchiveFormat::Binary),
        "out of memory while reading");
    EXPECT_EQ(holder->Value().Count(), 0);
}
