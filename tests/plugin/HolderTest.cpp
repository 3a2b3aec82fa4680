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

TYPED_TEST(EveryColorHold, RoundTripsThroughArchivesPlugFilesAndClones) {
    TPlugRef<TypeParam> holder = new TypeParam();
    Pattern(holder->Value(), 1.5);
    ASSERT_NE(holder->ObjType(), nullptr);

    for (ArchiveFormat format : {ArchiveFormat::Binary, ArchiveFormat::Text}) {
        TPlugRef<TypeParam> copy = static_cast<TypeParam*>(holder->ObjType()->NewInstance());
        ASSERT_EQ(Read(*copy.Get(), Write(*holder.Get(), format), format), "");
        EXPECT_TRUE(copy->Value() == holder->Value());

        std::string path = testing::UnitTest::GetInstance()->current_test_suite()->name();
        path = testing::TempDir() + path.replace(path.find('/'), 1, "-") + ".plug";
        ASSERT_EQ(PlugFile::Save(*holder.Get(), path.c_str(), format), 0);
        std::string error;
        PlugRef loaded = PlugFile::Load(path.c_str(), error);
        auto* fromFile = dynamic_cast<TypeParam*>(loaded.Get());
        ASSERT_NE(fromFile, nullptr) << error;
        EXPECT_TRUE(fromFile->Value() == holder->Value());
    }

    TPlugRef<TypeParam> clone = static_cast<TypeParam*>(holder->Clone());
    ASSERT_TRUE(clone.Get());
    EXPECT_EQ(clone->ObjType(), holder->ObjType());
    EXPECT_TRUE(clone->Value() == holder->Value());
}

TEST_F(Registered, ModelsHandOutHoldersOfTheirColoursWithoutAReference) {
    const ColorModel* xyz = XYZModel::GetModel();
    PlugRef made[] = {xyz->NewLgtColorHold(),       xyz->NewRayColorHold(),
                      xyz->NewSurfColorHold(),      xyz->NewScalarColorHold(),
                      xyz->NewDualLgtColorHold(),   xyz->NewArrayLgtColorHold(5),
                      xyz->NewMatrixLgtColorHold(), xyz->NewArrayRayColorHold()};
    const char* types[] = {"URGBLgtColorHold",       "URGBRayColorHold",
                           "URGBSurfColorHold",      "URGBScalarColorHold",
                           "URGBDualLgtColorHold",   "URGBArrayLgtColorHold",
                           "URGBMatrixLgtColorHold", "ArrayRayColorHolder"};
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(made[i]);
        EXPECT_EQ(made[i].Get()->RefCount(), 1) << types[i]; // ours is the only reference
        EXPECT_EQ(made[i].Get()->ObjType()->Ident(), types[i]);
    }
    // A new colour reads zero; a polarized ray faces (1, 0, 0).
    PlugRef ray = BWS::GetModel()->NewRayColorHold();
    const auto& value = static_cast<ColorHold<RayColor<BWS>>*>(ray.Get())->Value();
    EXPECT_EQ(value.XOrt(), TVect3<double>(1.0, 0.0, 0.0));
    for (int k = 0; k < 4; ++k)
        EXPECT_EQ(value.Light()[k], 0.0);

    // Out of memory: every slot reports once and returns null; a type returns null silently.
    ReportLog::Clear();
    {
        FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 1, true);
        EXPECT_EQ(xyz->NewLgtColorHold(), nullptr);
        EXPECT_EQ(xyz->NewRayColorHold(), nullptr);
        EXPECT_EQ(xyz->NewSurfColorHold(), nullptr);
        EXPECT_EQ(xyz->NewScalarColorHold(), nullptr);
        EXPECT_EQ(xyz->NewDualLgtColorHold(), nullptr);
        EXPECT_EQ(xyz->NewArrayLgtColorHold(5), nullptr);
        EXPECT_EQ(xyz->NewMatrixLgtColorHold(), nullptr);
        EXPECT_EQ(xyz->NewArrayRayColorHold(), nullptr);
        EXPECT_EQ(ReportLog::Count(), 8u);
        EXPECT_EQ(ColorHold<LgtColor<SpU>>::ClassType()->NewInstance(), nullptr);
        EXPECT_EQ(made[0].Get()->Clone(), nullptr);
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

TEST_F(Registered, ArchiveFormOfEachLayout) {
    // An unpolarized RGB ray: its three doubles.
    TPlugRef<ColorHold<RayColor<RGBU>>> rgb = new ColorHold<RayColor<RGBU>>();
    Pattern(rgb->Value(), 1.0);
    BinarySerializer in(Write(*rgb.Get(), ArchiveFormat::Binary));
    double v = 0.0;
    ASSERT_EQ(in.OpenGroup("Color"), 0);
    for (int k = 0; k < 3; ++k) {
        in.Serialize(v);
        EXPECT_EQ(v, 1.0 + 0.25 * k);
    }
    EXPECT_EQ(in.CloseGroup(), 0) << in.Error();

    // A Stokes RGB ray: 12 doubles in layout order (S0..S3 of r, g, b), then the X orientation
    // as one array of three.
    TPlugRef<ColorHold<RayColor<RGBS>>> stokes = new ColorHold<RayColor<RGBS>>();
    Pattern(stokes->Value(), 2.0);
    TextSerializer text(Write(*stokes.Get(), ArchiveFormat::Text));
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
    EXPECT_EQ(d.First(), 0);
    EXPECT_EQ(d.Last(), 2);
    EXPECT_EQ(d.Get(0)[0], 0.0);
    EXPECT_EQ(d.Get(1)[0], 3.25);
    EXPECT_EQ(d.Get(2)[0], 0.0);
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
    const std::string bytes = Write(*source.Get(), ArchiveFormat::Binary);
    {
        FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 1);
        EXPECT_EQ(Read(*holder.Get(), bytes, ArchiveFormat::Binary), "out of memory while reading");
    }
    EXPECT_EQ(holder->Value().Count(), 0);
}

TEST_F(Registered, CloneOfASpectralHolderOwnsItsSamples) {
    TPlugRef<ColorHold<RayColor<SpS>>> holder = new ColorHold<RayColor<SpS>>();
    Pattern(holder->Value(), 1.0);
    TPlugRef<ColorHold<RayColor<SpS>>> clone =
        static_cast<ColorHold<RayColor<SpS>>*>(holder->Clone());
    ASSERT_TRUE(clone.Get());
    clone->Value().Light().Values()[0] = -7.0;
    clone->Value().XOrt() = TVect3<double>(0.0, 0.0, 1.0);
    EXPECT_EQ(holder->Value().Light().Values()[0], 1.0);
    EXPECT_EQ(holder->Value().XOrt(), TVect3<double>(0.0, 1.0, 1.0));

    // Samples that cannot be copied: no clone rather than an empty one.
    FaultInjection::ScopedFailure fail(FaultInjection::Distribution, 1);
    EXPECT_EQ(holder->Clone(), nullptr);
}
