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

    // A spectral light writes what it reads: zero outside its band, which reads back full.
    TPlugRef<ColorHold<LgtColor<SpU>>> light = new ColorHold<LgtColor<SpU>>();
    Pattern(light->Value(), 3.0);
    light->Value().Distr().SetBand(1, 1);
    TPlugRef<ColorHold<LgtColor<SpU>>> back = new ColorHold<LgtColor<SpU>>();
    ASSERT_EQ(Read(*back.Get(), Write(*light.Get(), ArchiveFormat::Text), ArchiveFormat::Text), "");
    const auto& d = back->Value().Distr();
    EXPECT_EQ(d.Last() - d.First(), 2);
    EXPECT_EQ(d.Get(0)[0] + d.Get(2)[0], 0.0);
    EXPECT_EQ(d.Get(1)[0], 3.25);
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
