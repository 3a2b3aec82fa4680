// Class registration: what InitClasses makes, in which order, how it stops when memory runs out,
// and that TermClasses takes everything down again.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/frame/LibraryObjects.h"
#include "plugin/frame/ModuleEntry.h"
#include "plugin/models/SpectralModel.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

using namespace Korvane;

namespace {

const std::vector<std::string> kModelIdents = {"UBW",     "StkBW",     "URGB", "StkRGB",
                                               "USpectr", "StkSpectr", "XYZ",  "XYY"};
const std::vector<std::string> kHolderModels = {"UBW",    "StkBW",   "URGB",
                                                "StkRGB", "USpectr", "StkSpectr"};

// The 50 identifiers in creation order: model types, then the holder types of the kinds
// DualLgt, Lgt, Ray, Scalar, Surf for each model, then the array and matrix holder types.
std::vector<std::string> CreationOrder() {
    std::vector<std::string> idents = kModelIdents;
    for (const char* kind : {"DualLgt", "Lgt", "Ray", "Scalar", "Surf"})
        for (const std::string& model : kHolderModels)
            idents.push_back(model + kind + "ColorHold");
    for (const char* holder : {"ArrayLgtColorHold", "MatrixLgtColorHold"})
        for (const std::string& model : kHolderModels)
            idents.push_back(model + holder);
    return idents;
}

// Identifiers of the types registered after the first `before` ones.
std::vector<std::string> RegisteredSince(std::size_t before) {
    std::vector<std::string> idents;
    const std::vector<PlugType*> all = PlugType::Registered();
    for (std::size_t i = before; i < all.size(); ++i)
        idents.push_back(all[i]->Ident());
    return idents;
}

// Nothing of the library is left: no type, no model, no grid, no implicit model.
void ExpectNothingLeft(std::size_t before) {
    EXPECT_TRUE(RegisteredSince(before).empty());
    EXPECT_TRUE(TColorModel->Models().empty());
    EXPECT_EQ(BSpectralModel::DefWavelengths().Capacity(), 0);
    EXPECT_EQ(BSpectralModel::GetKLBMSpectralModel(), nullptr);
    EXPECT_EQ(ColorModel::GetImplicitModel(), nullptr);
    for (int k = 0; k < kModelKindCount; ++k) {
        EXPECT_EQ(Library::Slot(static_cast<ModelKind>(k)).type, nullptr);
        EXPECT_FALSE(Library::Slot(static_cast<ModelKind>(k)).model);
    }
    EXPECT_FALSE(Library::Model380To780(false) || Library::Model380To780(true));
}

} // namespace

TEST(Registration, MakesEveryTypeAndModelInOrderAndTermClassesRemovesThem) {
    const std::size_t before = PlugType::Registered().size();
    ASSERT_EQ(InitClasses(), 0);
    EXPECT_EQ(RegisteredSince(before), CreationOrder());

    // Parents: the host's colour-model type and holder types of the same kind.
    const std::vector<PlugType*> types = PlugType::Registered();
    for (std::size_t i = before; i < types.size(); ++i) {
        const std::string ident = types[i]->Ident();
        PlugType* parent = TColorModel;
        if (ident.find("ArrayLgtColorHold") != std::string::npos)
            parent = TArrayLgtColorHolder;
        else if (ident.find("MatrixLgtColorHold") != std::string::npos)
            parent = TMatrixLgtColorHolder;
        else if (ident.find("DualLgtColorHold") != std::string::npos)
            parent = Holder<IDualLgtColor>::ClassType();
        else if (ident.find("LgtColorHold") != std::string::npos)
            parent = Holder<ILgtColor>::ClassType();
        else if (ident.find("RayColorHold") != std::string::npos)
            parent = Holder<IRayColor>::ClassType();
        else if (ident.find("ScalarColorHold") != std::string::npos)
            parent = Holder<IScalarColor>::ClassType();
        else if (ident.find("SurfColorHold") != std::string::npos)
            parent = Holder<ISurfColor>::ClassType();
        EXPECT_EQ(types[i]->Parent(), parent) << ident;
        EXPECT_TRUE(types[i]->Flag()) << ident;
        // Every holder type makes holders that report it as their type.
        if (parent != TColorModel) {
            PlugRef holder = types[i]->NewInstance();
            ASSERT_TRUE(holder) << ident;
            EXPECT_EQ(holder.Get()->ObjType(), types[i]) << ident;
        }
    }

    // The eight models are in the host's registry under their type identifiers.
    std::vector<std::string> names;
    for (ColorModel* model : TColorModel->Models()) {
        names.push_back(model->Name());
        EXPECT_EQ(model->ObjType(), PlugType::Find(model->Name().c_str()));
    }
    EXPECT_EQ(names, kModelIdents);

    // The default grid, 390..710 nm by 10, is the grid of the implicit unpolarized model.
    const MArray<double>& grid = BSpectralModel::DefWavelengths();
    ASSERT_EQ(grid.Count(), 33);
    for (int i = 0; i < grid.Count(); ++i)
        EXPECT_EQ(grid[i], 390.0 + 10.0 * i);
    SpectralModel<Unpolarized>* spectral = SpectralModel<Unpolarized>::GetModel();
    EXPECT_EQ(BSpectralModel::GetKLBMSpectralModel(), spectral);
    EXPECT_EQ(ColorModel::GetImplicitModel(), spectral);
    EXPECT_TRUE(spectral->GetWaveLengths().IsEqual(grid));

    SpectralModel<StokesPolarization>::GetModel_380_780(); // released by TermClasses as well
    TermClasses();
    ExpectNothingLeft(before);
    TermClasses(); // a second call finds nothing to do
    ExpectNothingLeft(before);
}

TEST(Registration, StopsAtTheFirstAllocationThatFails) {
    const std::size_t before = PlugType::Registered().size();
    const std::vector<std::string> order = CreationOrder();
    long allocations = 0;
    {
        FaultInjection::ScopedFailure count(FaultInjection::PlugAlloc, LONG_MAX);
        ASSERT_EQ(InitClasses(), 0);
        allocations = FaultInjection::Counted();
    }
    TermClasses();

    // Each type object and each model is a step of its own (8 + 8 + 42); the converters that
    // the spectral models make for themselves are not steps.
    int failedSteps = 0;
    for (long n = 1; n <= allocations; ++n) {
        ReportLog::Clear();
        int result = 0;
        long counted = 0;
        {
            FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, n);
            result = InitClasses();
            counted = FaultInjection::Counted();
        }
        const std::vector<std::string> made = RegisteredSince(before);
        if (result != 0) {
            ++failedSteps;
            EXPECT_EQ(result, -1);
            EXPECT_EQ(counted, n) << "allocations went on after the failure " << n;
            ASSERT_FALSE(ReportLog::Entries().empty());
            EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::NoMemory) << n;
            ASSERT_LE(made.size(), order.size());
            EXPECT_EQ(made, std::vector<std::string>(order.begin(), order.begin() + made.size()));
        } else {
            EXPECT_EQ(made, order) << n;
        }
        TermClasses();
        ExpectNothingLeft(before);
    }
    EXPECT_EQ(failedSteps, 58);

    // Array storage: the first array is the default grid; the spectral models are not made.
    {
        FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, 1);
        EXPECT_EQ(InitClasses(), -1);
    }
    EXPECT_EQ(RegisteredSince(before), std::vector<std::string>(order.begin(), order.begin() + 4));
    EXPECT_EQ(BSpectralModel::DefWavelengths().Count(), 0);
    TermClasses();
    ExpectNothingLeft(before);

    // Any later array that fails leaves a state that TermClasses clears completely.
    long arrays = 0;
    {
        FaultInjection::ScopedFailure count(FaultInjection::ArrayStorage, LONG_MAX);
        ASSERT_EQ(InitClasses(), 0);
        arrays = FaultInjection::Counted();
    }
    TermClasses();
    const long long blocks = MemStats::Get("TArray").blocksOutstanding;
    for (long n = 2; n <= arrays; ++n) {
        {
            FaultInjection::ScopedFailure fail(FaultInjection::ArrayStorage, n);
            InitClasses();
        }
        TermClasses();
        ExpectNothingLeft(before);
        EXPECT_EQ(MemStats::Get("TArray").blocksOutstanding, blocks) << n;
    }
}
