// The eight model types: identifiers, display names, parents, what NewInstance hands out, and
// the RGB creation log.
#include "ModelTestSupport.h"

#include "hostkit/base/GlobTr.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

using namespace Korvane;
using Korvane::Testing::ScopedDefaultGrid;
using Korvane::Testing::ScopedModelTypes;

namespace {

const char* const kXYZContext = "Korvane::XYZModelType::XYZModelType";
const char* const kXYYContext = "Korvane::XYYModelType::XYYModelType";

// The numbers of the "RGB color model %d is created" lines in the report log, in order.
std::vector<int> RGBCreationCounts() {
    std::vector<int> counts;
    for (const Report& r : ReportLog::Entries()) {
        int n = 0;
        char tail[8] = {};
        if (r.kind == ReportKind::Log &&
            std::sscanf(r.text.c_str(), "RGB color model %d is %7s", &n, tail) == 2 &&
            std::string(tail) == "created")
            counts.push_back(n);
    }
    return counts;
}

} // namespace

TEST(ModelType, IdentifiersDisplayNamesAndParents) {
    ScopedModelTypes types;
    struct Expected {
        ModelKind kind;
        const char* ident;
        std::string name;
    };
    const Expected expected[] = {
        {ModelKind::UBW, "UBW", "Unpolarized black/white"},
        {ModelKind::StkBW, "StkBW", "Polarized black/white"},
        {ModelKind::URGB, "URGB", "Unpolarized RGB"},
        {ModelKind::StkRGB, "StkRGB", "Polarized RGB"},
        {ModelKind::USpectr, "USpectr", "Unpolarized spectral"},
        {ModelKind::StkSpectr, "StkSpectr", "Polarized spectral"},
        // Whatever the host's translation table says; without an entry the text itself.
        {ModelKind::XYZ, "XYZ", GlobTr(kXYZContext, "XYZ", nullptr)},
        {ModelKind::XYY, "XYY", GlobTr(kXYYContext, "XYY", nullptr)},
    };
    for (const Expected& e : expected) {
        PlugType* type = ScopedModelTypes::Type(e.kind);
        ASSERT_NE(type, nullptr);
        EXPECT_EQ(type->Ident(), e.ident);
        EXPECT_EQ(type->Name(), e.name) << e.ident;
        EXPECT_EQ(type->Parent(), TColorModel) << e.ident;
        EXPECT_TRUE(type->Flag()) << e.ident;
        EXPECT_TRUE(type->IsRegistered()) << e.ident;
        EXPECT_EQ(PlugType::Find(e.ident), type);
    }
    EXPECT_STREQ(Unpolarized::Tag(), "U");
    EXPECT_STREQ(StokesPolarization::Tag(), "Stk");
}

TEST(ModelType, CIEDisplayNamesAreAskedUnderTheTypesContext) {
    Translations::Add(kXYZContext, "XYZ", "CIE XYZ (test translation)");
    Translations::Add(kXYYContext, "XYY", "CIE xyY (test translation)");
    Translations::Clear(); // lookup counts only
    ScopedModelTypes types;
    EXPECT_EQ(ScopedModelTypes::Type(ModelKind::XYZ)->Name(), "CIE XYZ (test translation)");
    EXPECT_EQ(ScopedModelTypes::Type(ModelKind::XYY)->Name(), "CIE xyY (test translation)");
    EXPECT_EQ(Translations::LookupCount(kXYZContext, "XYZ"), 1);
    EXPECT_EQ(Translations::LookupCount(kXYYContext, "XYY"), 1);
    // The identifiers stay untranslated: models are found by them.
    EXPECT_EQ(ScopedModelTypes::Type(ModelKind::XYZ)->Ident(), "XYZ");
}

TEST(ModelType, SingletonTypesHandOutTheRegisteredModel) {
    ScopedModelTypes types;
    PlugType* bw = ScopedModelTypes::Type(ModelKind::UBW);
    PlugType* xyy = ScopedModelTypes::Type(ModelKind::XYY);
    EXPECT_EQ(bw->NewInstance(), nullptr); // no model registered yet

    Library::Slot(ModelKind::UBW).model = new BWModel<Unpolarized>();
    Library::Slot(ModelKind::XYY).model = new XYYModel();
    Plug* first = bw->NewInstance();
    EXPECT_EQ(first, BWModel<Unpolarized>::GetModel());
    EXPECT_EQ(bw->NewInstance(), first);
    EXPECT_EQ(xyy->NewInstance(), XYYModel::GetModel());
    EXPECT_EQ(xyy->NewInstance(), xyy->NewInstance());
    // The other polarization has a singleton of its own.
    EXPECT_EQ(ScopedModelTypes::Type(ModelKind::StkBW)->NewInstance(), nullptr);
}

TEST(ModelType, SpectralTypeMakesANewModelEachTime) {
    ScopedModelTypes types;
    ScopedDefaultGrid grid;
    PlugType* type = ScopedModelTypes::Type(ModelKind::StkSpectr);
    PlugRef a = type->NewInstance();
    PlugRef b = type->NewInstance();
    ASSERT_TRUE(a && b);
    EXPECT_NE(a.Get(), b.Get());
    auto* model = static_cast<SpectralModel<StokesPolarization>*>(a.Get());
    EXPECT_EQ(model->Name(), "StkSpectr");
    EXPECT_EQ(model->ObjType(), type);
    EXPECT_TRUE(model->GetWaveLengths().IsEqual(BSpectralModel::DefWavelengths()));

    FaultInjection::ScopedFailure noPlugs(FaultInjection::PlugAlloc, 1);
    EXPECT_EQ(type->NewInstance(), nullptr);
}

TEST(ModelType, RGBCreationIsCountedAcrossBothPolarizations) {
    ScopedModelTypes types;
    auto* unpolarized =
        static_cast<RGBModelType<Unpolarized>*>(ScopedModelTypes::Type(ModelKind::URGB));
    auto* polarized =
        static_cast<RGBModelType<StokesPolarization>*>(ScopedModelTypes::Type(ModelKind::StkRGB));

    PlugRef a = unpolarized->Create();
    PlugRef b = polarized->Create();
    PlugRef c = unpolarized->Create();
    ASSERT_TRUE(a && b && c);
    EXPECT_NE(a.Get(), c.Get()); // Create never hands out the same model twice
    EXPECT_EQ(a.Get()->Name(), "URGB");
    EXPECT_EQ(b.Get()->Name(), "StkRGB");

    // A copy is not a creation.
    PlugRef copy = new RGBModel<Unpolarized>(*static_cast<RGBModel<Unpolarized>*>(a.Get()));
    const std::vector<int> counts = RGBCreationCounts();
    ASSERT_EQ(counts.size(), 3u);
    EXPECT_EQ(counts[1], counts[0] + 1);
    EXPECT_EQ(counts[2], counts[0] + 2);

    FaultInjection::ScopedFailure noPlugs(FaultInjection::PlugAlloc, 1);
    EXPECT_EQ(unpolarized->Create(), nullptr);
    EXPECT_EQ(RGBCreationCounts().size(), 3u); // nothing constructed, nothing logged
}
