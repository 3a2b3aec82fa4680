// Class registration: what InitClasses makes, in which order, how it stops when memory runs out,
// and that TermClasses takes everything down again.
#include "hostkit/base/CallLog.h"
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/Module.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/frame/LibraryObjects.h"
#include "plugin/frame/ModuleEntry.h"
#include "plugin/models/SpectralModel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <utility>
#include <vector>

using namespace Korvane;

namespace {

const std::vector<std::string> kModels = {"UBW",     "StkBW",     "URGB", "StkRGB",
                                          "USpectr", "StkSpectr", "XYZ",  "XYY"};

// The 50 types in creation order with their parents: model types, then for the kinds DualLgt,
// Lgt, Ray, Scalar, Surf the holder types of the six models, then array and matrix holder types.
std::vector<std::pair<std::string, PlugType*>> CreationOrder() {
    std::vector<std::pair<std::string, PlugType*>> types;
    for (const std::string& model : kModels)
        types.emplace_back(model, TColorModel);
    const std::pair<const char*, PlugType*> holders[] = {
        {"DualLgtColorHold", Holder<IDualLgtColor>::ClassType()},
        {"LgtColorHold", Holder<ILgtColor>::ClassType()},
        {"RayColorHold", Holder<IRayColor>::ClassType()},
        {"ScalarColorHold", Holder<IScalarColor>::ClassType()},
        {"SurfColorHold", Holder<ISurfColor>::ClassType()},
        {"ArrayLgtColorHold", TArrayLgtColorHolder},
        {"MatrixLgtColorHold", TMatrixLgtColorHolder}};
    for (const auto& [suffix, parent] : holders)
        for (int m = 0; m < 6; ++m)
            types.emplace_back(kModels[m] + suffix, parent);
    return types;
}

// Identifiers of the types registered after the first `before`.
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
    EXPECT_FALSE(Library::Slot(ModelKind::UBW).model);
    EXPECT_FALSE(Library::Model380To780(false) || Library::Model380To780(true));
}

} // namespace

TEST(Registration, MakesEveryTypeAndModelInOrderAndTermClassesRemovesThem) {
    const std::size_t before = PlugType::Registered().size();
    ASSERT_EQ(InitClasses(), 0);
    const std::vector<PlugType*> made = PlugType::Registered();
    const auto expected = CreationOrder();
    ASSERT_EQ(made.size() - before, expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        PlugType* type = made[before + i];
        EXPECT_EQ(type->Ident(), expected[i].first);
        EXPECT_EQ(type->Parent(), expected[i].second) << expected[i].first;
        if (i >= kModels.size()) { // holder types make holders that report them as their type
            PlugRef holder = type->NewInstance();
            EXPECT_EQ(holder.Get()->ObjType(), type) << expected[i].first;
        }
    }

    // The eight models are in the host's registry under their type identifiers.
    std::vector<std::string> names;
    for (ColorModel* model : TColorModel->Models()) {
        names.push_back(model->Name());
        EXPECT_EQ(model->ObjType(), PlugType::Find(model->Name().c_str()));
    }
    EXPECT_EQ(names, kModels);

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
    std::vector<std::string> order;
    for (const auto& type : CreationOrder())
        order.push_back(type.first);
    long plugs = 0;
    long arrays = 0;
    {
        FaultInjection::ScopedFailure count(FaultInjection::PlugAlloc, LONG_MAX);
        ASSERT_EQ(InitClasses(), 0);
        plugs = FaultInjection::Counted();
    }
    TermClasses();
    {
        FaultInjection::ScopedFailure count(FaultInjection::ArrayStorage, LONG_MAX);
        ASSERT_EQ(InitClasses(), 0);
        arrays = FaultInjection::Counted();
    }
    TermClasses();

    // Each type object and each model is a step of its own (8 + 8 + 42); the converters that
    // the spectral models make for themselves are not steps. A failed step is the last thing
    // allocated, and what was made before it is a prefix of the creation order.
    int failedSteps = 0;
    for (long n = 1; n <= plugs; ++n) {
        ReportLog::Clear();
        FaultInjection::Arm(FaultInjection::PlugAlloc, n);
        const int result = InitClasses();
        FaultInjection::Disarm();
        const std::vector<std::string> made = RegisteredSince(before);
        if (result != 0) {
            ++failedSteps;
            EXPECT_EQ(result, -1);
            EXPECT_EQ(FaultInjection::Counted(), n) << "allocations went on after failure " << n;
            EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::NoMemory) << n;
            EXPECT_EQ(made, std::vector<std::string>(order.begin(), order.begin() + made.size()));
        } else {
            EXPECT_EQ(made.size(), 50u) << n;
        }
        TermClasses();
        ExpectNothingLeft(before);
    }
    EXPECT_EQ(failedSteps, 58);

    // The first array is the default grid: the spectral models are not made. Any later array
    // that fails leaves a state that TermClasses clears (the test main checks the balance).
    for (long n = 1; n <= arrays; ++n) {
        FaultInjection::Arm(FaultInjection::ArrayStorage, n);
        const int result = InitClasses();
        FaultInjection::Disarm();
        if (n == 1) {
            EXPECT_EQ(result, -1);
            EXPECT_EQ(RegisteredSince(before),
                      std::vector<std::string>(order.begin(), order.begin() + 4));
        }
        TermClasses();
        ExpectNothingLeft(before);
    }
}

// The host sees its registry filled model by model in creation order, and TermClasses take the
// library down in its own order: array and matrix holder types in creation order, the single-
// colour holder types in exact reverse, then each model released before its type is deleted
// (XYZ, xyY, polarized and unpolarized spectral with their 380..780 nm models, RGB, BW).
TEST(Registration, RegistersAndTakesDownInTheFixedOrders) {
    const std::vector<std::string> models6(kModels.begin(), kModels.begin() + 6);
    std::vector<std::string> added;
    for (const std::string& m : kModels)
        added.push_back("AddColorModel " + m);

    CallLog::Start();
    ASSERT_EQ(InitClasses(), 0);
    EXPECT_EQ(CallLog::Stop(), added);

    SpectralModel<Unpolarized>::GetModel_380_780();
    SpectralModel<StokesPolarization>::GetModel_380_780();
    std::vector<std::string> expected;
    for (const char* suffix : {"ArrayLgtColorHold", "MatrixLgtColorHold"})
        for (const std::string& m : models6)
            expected.push_back("DeleteType " + m + suffix);
    for (const char* kind : {"Surf", "Scalar", "Ray", "Lgt", "DualLgt"})
        for (auto m = models6.rbegin(); m != models6.rend(); ++m)
            expected.push_back("DeleteType " + *m + kind + "ColorHold");
    for (const char* m : {"XYZ", "XYY"})
        expected.insert(expected.end(),
                        {std::string("~ColorModel ") + m, std::string("DeleteType ") + m});
    for (const char* m : {"StkSpectr", "USpectr"}) // the singleton, then the 380..780 nm model
        expected.insert(expected.end(),
                        {std::string("~ColorModel ") + m, std::string("~ColorModel ") + m,
                         std::string("DeleteType ") + m});
    for (const char* m : {"StkRGB", "URGB", "StkBW", "UBW"})
        expected.insert(expected.end(),
                        {std::string("~ColorModel ") + m, std::string("DeleteType ") + m});
    ASSERT_EQ(expected.size(), 50u + 10u);

    CallLog::Start();
    TermClasses();
    EXPECT_EQ(CallLog::Stop(), expected);

    // A second TermClasses deletes the 50 null pointers and releases nothing.
    CallLog::Start();
    TermClasses();
    EXPECT_EQ(CallLog::Stop(), std::vector<std::string>(50, "DeleteType null"));
}

// When the host refuses a model, InitClasses stops there with -1; a refused unpolarized spectral
// model is not made the implicit model, and what was made before stays until TermClasses.
TEST(Registration, ARefusedModelStopsRegistrationAndIsNotMadeImplicit) {
    const std::size_t before = PlugType::Registered().size();
    const auto order = CreationOrder();
    for (std::size_t refused = 0; refused < kModels.size(); ++refused) {
        SCOPED_TRACE(kModels[refused]);
        ReportLog::Clear();
        CallLog::RefuseRegistration(kModels[refused]);
        CallLog::Start();
        const int result = InitClasses();
        const std::vector<std::string> calls = CallLog::Stop();
        CallLog::RefuseRegistration("");
        EXPECT_EQ(result, -1);
        ASSERT_EQ(calls.size(), refused + 1);
        EXPECT_EQ(calls.back(), "AddColorModel " + kModels[refused]);
        std::vector<std::string> made;
        for (std::size_t i = 0; i <= refused; ++i)
            made.push_back(order[i].first);
        EXPECT_EQ(RegisteredSince(before), made);
        // Only a spectral model that the host took is made implicit.
        ColorModel* const implicit = refused > 4 ? SpectralModel<Unpolarized>::GetModel() : nullptr;
        EXPECT_EQ(ColorModel::GetImplicitModel(), implicit);
        EXPECT_EQ(BSpectralModel::GetKLBMSpectralModel(), implicit);
        std::vector<std::string> errors; // the RGB models also log their creation
        for (const Report& r : ReportLog::Entries())
            if (r.kind != ReportKind::Log)
                errors.push_back(r.text);
        EXPECT_EQ(errors, std::vector<std::string>{"ColorModelType::AddColorModel(): model \"" +
                                                   kModels[refused] + "\" is refused"});
        EXPECT_EQ(ReportLog::Entries().back().kind, ReportKind::InternalError);
        TermClasses();
        ExpectNothingLeft(before);
    }
}

// DllMain tells the host of the module on process attach only, and answers 1 for every reason.
TEST(Registration, DllMainReportsTheModuleOnProcessAttachOnly) {
    int token = 0;
    const auto module = reinterpret_cast<HINSTANCE>(&token); // any handle: it is only passed on
    const int calls = PluginLoadingCalls();
    for (unsigned long reason : {0ul, 2ul, 3ul, 7ul})
        EXPECT_EQ(DllMain(module, reason, nullptr), 1) << reason;
    EXPECT_EQ(PluginLoadingCalls(), calls);
    EXPECT_EQ(DllMain(module, kProcessAttach, nullptr), 1);
    EXPECT_EQ(PluginLoadingCalls(), calls + 1);
    EXPECT_EQ(LoadingModule(), module);
    EXPECT_EQ(VersionId(), 263237);
}

// A type whose identifier the host already has is refused by the registry; InitClasses takes
// that as a failed step: nothing after it is made, and the refused type is not registered.
TEST(Registration, StopsAtATypeTheRegistryRefuses) {
    const std::size_t before = PlugType::Registered().size();
    std::vector<std::string> order;
    for (const auto& type : CreationOrder())
        order.push_back(type.first);
    for (const std::string clash : {"URGB", "StkSpectrRayColorHold", "StkBWMatrixLgtColorHold"}) {
        ReportLog::Clear();
        PlugType* hosts = new PlugType(clash.c_str(), nullptr, true, nullptr);
        const std::size_t at =
            static_cast<std::size_t>(std::find(order.begin(), order.end(), clash) - order.begin());
        EXPECT_EQ(InitClasses(), -1) << clash;
        std::vector<std::string> made = RegisteredSince(before);
        ASSERT_FALSE(made.empty());
        EXPECT_EQ(made.front(), clash); // the host's own type, registered first
        made.erase(made.begin());
        EXPECT_EQ(made, std::vector<std::string>(order.begin(), order.begin() + long(at))) << clash;
        // The registry's report is the only one besides the models' log lines.
        std::vector<Report> reports;
        for (const Report& r : ReportLog::Entries())
            if (r.kind != ReportKind::Log)
                reports.push_back(r);
        EXPECT_EQ(reports.size(), 1u) << clash;
        if (!reports.empty()) {
            EXPECT_EQ(reports[0].kind, ReportKind::InternalError);
            EXPECT_NE(reports[0].text.find("\"" + clash + "\""), std::string::npos);
        }
        if (clash == "URGB") { // a refused model type: its model is not made
            EXPECT_EQ(TColorModel->Models().size(), 2u);
        }
        TermClasses();
        EXPECT_EQ(PlugType::Find(clash.c_str()), hosts); // the host's type survives
        DeleteType(hosts);
        ExpectNothingLeft(before);
    }
}
