// The host's colour-model registry, implicit model and host-wide types.
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "tests/support/TestModel.h"

#include <gtest/gtest.h>

using namespace Korvane;
using Korvane::Testing::TestModel;

namespace {

struct NamedModel : TestModel {
    NamedModel(PlugType* type, const char* name) : TestModel(type) { SetName(name); }
    // Records every converter the slot receives, then lets the base store it.
    void SetCIEConvAll(const CIEConvAll* conv) override {
        received.push_back(conv);
        TestModel::SetCIEConvAll(conv);
    }
    std::vector<const CIEConvAll*> received;
};

} // namespace

TEST(ColorModelRegistry, ListsInOrderFindsByNameAndRefusesDuplicates) {
    PlugType type("TestModel", TColorModel, false, nullptr);
    NamedModel a(&type, "A"), b(&type, "B");
    const std::size_t before = TColorModel->Models().size();
    ASSERT_EQ(TColorModel->AddColorModel(&a), 0);
    ASSERT_EQ(TColorModel->AddColorModel(&b), 0);
    EXPECT_EQ(TColorModel->AddColorModel(&a), kInternalErrorCode);
    EXPECT_EQ(TColorModel->AddColorModel(nullptr), kInternalErrorCode);
    EXPECT_EQ(ReportLog::Count(), 2u);

    const auto all = TColorModel->Models();
    ASSERT_EQ(all.size(), before + 2); // a listed once
    EXPECT_EQ(all[before], &a);
    EXPECT_EQ(all[before + 1], &b);
    EXPECT_EQ(TColorModel->FindModel("B"), &b);
    EXPECT_EQ(TColorModel->FindModel("C"), nullptr);
}

TEST(ColorModelRegistry, HoldsNoReferenceAndForgetsADestroyedModel) {
    PlugType type("TestModel", TColorModel, false, nullptr);
    TPlugRef<NamedModel> owner = new NamedModel(&type, "Owned");
    ASSERT_EQ(TColorModel->AddColorModel(owner.Get()), 0);
    EXPECT_EQ(owner->RefCount(), 1); // the owner's reference is the last one
    owner = nullptr;
    EXPECT_EQ(TColorModel->FindModel("Owned"), nullptr);
    EXPECT_EQ(ReportLog::Count(), 0u); // leaving the registry is silent
}

TEST(ColorModelRegistry, NewConverterReachesEveryListedModel) {
    PlugType type("TestModel", TColorModel, false, nullptr);
    NamedModel a(&type, "A"), b(&type, "B"), unlisted(&type, "C");
    ASSERT_EQ(TColorModel->AddColorModel(&a), 0);
    ASSERT_EQ(TColorModel->AddColorModel(&b), 0);
    TColorModel->SetCIEConvAllForAll(nullptr);
    EXPECT_EQ(ColorModel::GetCIEConvAll(), nullptr);
    TColorModel->SetCIEConvAllForAll(CIEConvAll::Default()); // back to the host-start state

    const std::vector<const CIEConvAll*> expected{nullptr, CIEConvAll::Default()};
    EXPECT_EQ(a.received, expected);
    EXPECT_EQ(b.received, expected);
    EXPECT_TRUE(unlisted.received.empty());
}

TEST(ColorModelImplicit, FollowsSetAsImplicitAndIsClearedWhenThatModelDies) {
    PlugType type("TestModel", TColorModel, false, nullptr);
    TestModel a(&type);
    {
        TestModel b(&type);
        b.SetAsImplicit();
        EXPECT_EQ(ColorModel::GetImplicitModel(), &b);
    }
    EXPECT_EQ(ColorModel::GetImplicitModel(), nullptr);
    a.SetAsImplicit();
    { TestModel other(&type); }
    EXPECT_EQ(ColorModel::GetImplicitModel(), &a); // another model's death leaves it
}

namespace {
struct RayArray : ArrayRayColorHolder {
    IArray& Array() override { return values; }
    const IArray& Array() const override { return values; }
    MArray<double> values;
};
} // namespace

TEST(HostTypes, ExistFromHostStartWithTheirIdentifiers) {
    const std::pair<const PlugType*, const char*> expected[] = {
        {TColorModel, "ColorModel"},
        {Holder<ILgtColor>::ClassType(), "LgtColorHolder"},
        {Holder<IRayColor>::ClassType(), "RayColorHolder"},
        {Holder<ISurfColor>::ClassType(), "SurfColorHolder"},
        {Holder<IScalarColor>::ClassType(), "ScalarColorHolder"},
        {Holder<IDualLgtColor>::ClassType(), "DualLgtColorHolder"},
        {TArrayLgtColorHolder, "ArrayLgtColorHolder"},
        {TMatrixLgtColorHolder, "MatrixLgtColorHolder"},
        {TArrayRayColorHolder, "ArrayRayColorHolder"},
    };
    for (const auto& [type, ident] : expected) {
        ASSERT_NE(type, nullptr) << ident;
        EXPECT_EQ(PlugType::Find(ident), type);
        EXPECT_EQ(type->Parent(), nullptr) << ident;
    }
    EXPECT_EQ(RayArray().ObjType(), TArrayRayColorHolder);
}
