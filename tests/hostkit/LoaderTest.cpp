// Loading plug-in modules: the test modules of tests/modules and the colour-model plug-in.
#include "hostkit/base/FaultInjection.h"
#include "hostkit/base/Module.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/platform/Platform.h"
#include "hostkit/plugsys/PlugRef.h"
#include "hostkit/plugsys/PlugType.h"
#include "hostkit/plugsys/PluginLoader.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

using namespace Korvane;

namespace {

std::vector<std::string> Texts(ReportKind kind) {
    std::vector<std::string> texts;
    for (const Report& r : ReportLog::Entries())
        if (r.kind == kind)
            texts.push_back(r.text);
    return texts;
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// A refused load: the code of the one error report, that report's text as the loader's error,
// naming the path and the cause; nothing held.
void ExpectRefused(PluginLoader& loader, const char* path, LoadFailure failure,
                   const std::string& cause) {
    ReportLog::Clear();
    EXPECT_EQ(loader.Load(path), kErrorMessageCode);
    EXPECT_EQ(loader.Failure(), failure);
    EXPECT_TRUE(Contains(loader.Error(), std::string("\"") + path + "\"")) << loader.Error();
    EXPECT_TRUE(Contains(loader.Error(), cause)) << loader.Error();
    EXPECT_EQ(Texts(ReportKind::ErrorMessage), std::vector<std::string>{loader.Error()});
}

} // namespace

TEST(PluginLoader, LoadsRegistersAndUnloadsInEntryOrder) {
    const int callsBefore = PluginLoadingCalls();
    PluginLoader loader;
    ASSERT_EQ(loader.Load(KORVANE_TEST_MODULE_PATH), 0) << loader.Error();
    EXPECT_TRUE(loader.IsLoaded());
    EXPECT_EQ(loader.Failure(), LoadFailure::None);
    EXPECT_EQ(loader.VersionId(), 7);
    EXPECT_EQ(LoadingModule(), loader.Module());
    EXPECT_EQ(PluginLoadingCalls(), callsBefore + 1);
    EXPECT_EQ(loader.RegisteredTypes(),
              (std::vector<std::string>{"TestModuleWidget", "TestModuleGadget"}));

    // The module's own type class answers from the module's code.
    PlugType* widget = PlugType::Find("TestModuleWidget");
    ASSERT_NE(widget, nullptr);
    EXPECT_TRUE(PlugType::Find("TestModuleGadget")->IsKindOf(widget));
    {
        PlugRef made = widget->NewInstance();
        ASSERT_TRUE(made);
        EXPECT_EQ(made.Get()->ObjType(), widget);
    }

    loader.Unload();
    EXPECT_FALSE(loader.IsLoaded());
    EXPECT_EQ(loader.VersionId(), 0);
    EXPECT_EQ(PlugType::Find("TestModuleWidget"), nullptr);
    EXPECT_EQ(PlugType::Find("TestModuleGadget"), nullptr);
    EXPECT_EQ(Texts(ReportKind::Log),
              (std::vector<std::string>{"TestModule DllMain 1", "TestModule InitClasses",
                                        "TestModule TermClasses", "TestModule DllMain 0"}));

    // The module can come back, and a loader going out of scope takes its module down.
    {
        PluginLoader again;
        ASSERT_EQ(again.Load(KORVANE_TEST_MODULE_PATH), 0) << again.Error();
        EXPECT_NE(PlugType::Find("TestModuleWidget"), nullptr);
    }
    EXPECT_EQ(PlugType::Find("TestModuleWidget"), nullptr);
    EXPECT_EQ(Texts(ReportKind::Log).size(), 8u);
}

TEST(PluginLoader, RefusesWhatIsNotAPlugInWithoutRunningIt) {
    const std::string textFile = std::string(KORVANE_TEST_SCRATCH_DIR) + "/not-a-module.txt";
    std::ofstream(textFile) << "InitClasses\n";
    const std::string missingFile = std::string(KORVANE_TEST_SCRATCH_DIR) + "/no-such-module.so";

    PluginLoader loader;
    ExpectRefused(loader, textFile.c_str(), LoadFailure::NotALibrary, "not a shared library");
    ExpectRefused(loader, missingFile.c_str(), LoadFailure::NotALibrary, "not a shared library");
    ExpectRefused(loader, "", LoadFailure::NotALibrary, "no path given");
    ExpectRefused(loader, KORVANE_HOST_LIBRARY_PATH, LoadFailure::MissingExport,
                  "missing export \"DllMain\"");
    ExpectRefused(loader, KORVANE_NOINIT_MODULE_PATH, LoadFailure::MissingExport,
                  "missing export \"InitClasses\"");
#if defined(_WIN32)
    // Windows runs a library's DllMain inside LoadLibrary, before any export can be looked up,
    // and again inside FreeLibrary; nothing else of the module runs.
    EXPECT_EQ(Texts(ReportKind::Log),
              (std::vector<std::string>{"NoInitModule DllMain 1", "NoInitModule DllMain 0"}));
#else
    EXPECT_TRUE(Texts(ReportKind::Log).empty()); // its DllMain never ran
#endif
    EXPECT_FALSE(loader.IsLoaded());

    // A refused attach: on Windows the system's own call inside LoadLibrary fails the opening,
    // elsewhere the loader's call does; the report and the entry's calls are the same.
    ExpectRefused(loader, KORVANE_REFUSING_MODULE_PATH, LoadFailure::AttachRefused,
                  "DllMain refused process attach");
    EXPECT_EQ(Texts(ReportKind::Log),
              (std::vector<std::string>{"RefusingModule DllMain 1", "RefusingModule DllMain 0"}));
    EXPECT_EQ(PlugType::Find("RefusingModuleWidget"), nullptr);

    // One module per loader: a second Load is refused and the first module stays.
    ASSERT_EQ(loader.Load(KORVANE_TEST_MODULE_PATH), 0) << loader.Error();
    EXPECT_TRUE(loader.Error().empty());
    ExpectRefused(loader, KORVANE_NOINIT_MODULE_PATH, LoadFailure::Busy, KORVANE_TEST_MODULE_PATH);
    EXPECT_TRUE(loader.IsLoaded());
    EXPECT_EQ(loader.Path(), KORVANE_TEST_MODULE_PATH);
    loader.Unload();
}

TEST(PluginLoader, FailedInitClassesLeavesNothingRegistered) {
    PluginLoader loader;
    {
        // The second plug allocation is the module's second type: the first one is made.
        FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 2);
        ExpectRefused(loader, KORVANE_TEST_MODULE_PATH, LoadFailure::InitFailed,
                      "InitClasses returned -1");
    }
    EXPECT_FALSE(loader.IsLoaded());
    EXPECT_EQ(PlugType::Find("TestModuleWidget"), nullptr);
    EXPECT_EQ(Texts(ReportKind::NoMemory).size(), 1u);
    EXPECT_EQ(Texts(ReportKind::Log),
              (std::vector<std::string>{"TestModule DllMain 1", "TestModule InitClasses",
                                        "TestModule TermClasses", "TestModule DllMain 0"}));

    // An identifier clash with a type the host already has fails the same way, and the host's
    // own type survives the module's cleanup.
    PlugType* mine = new PlugType("TestModuleGadget", nullptr, true, nullptr);
    ExpectRefused(loader, KORVANE_TEST_MODULE_PATH, LoadFailure::InitFailed,
                  "InitClasses returned -1");
    EXPECT_EQ(PlugType::Find("TestModuleGadget"), mine);
    EXPECT_EQ(PlugType::Find("TestModuleWidget"), nullptr);
    DeleteType(mine);
}

TEST(PluginLoader, DeletesTypesThatTermClassesLeavesBehind) {
    PluginLoader loader;
    ASSERT_EQ(loader.Load(KORVANE_LEAKY_MODULE_PATH), 0) << loader.Error();
    loader.Unload();
    EXPECT_EQ(PlugType::Find("LeakyModuleGadget"), nullptr);
    const std::vector<std::string> internal = Texts(ReportKind::InternalError);
    ASSERT_EQ(internal.size(), 1u);
    EXPECT_TRUE(Contains(internal[0], KORVANE_LEAKY_MODULE_PATH)) << internal[0];
    EXPECT_TRUE(Contains(internal[0], "\"LeakyModuleGadget\"")) << internal[0];
}

TEST(PluginLoader, LoadsTheColourModelPlugIn) {
    const int callsBefore = PluginLoadingCalls();
    PluginLoader loader;
    ASSERT_EQ(loader.Load(KORVANE_COLOUR_MODULE_PATH), 0) << loader.Error();
    EXPECT_EQ(loader.VersionId(), 263237);
    EXPECT_EQ(LoadingModule(), loader.Module());
    EXPECT_EQ(PluginLoadingCalls(), callsBefore + 1);
    const std::vector<std::string> types = loader.RegisteredTypes();
    EXPECT_EQ(types.size(), 50u);
    std::vector<std::string> models;
    for (ColorModel* model : TColorModel->Models())
        models.push_back(model->Name());
    EXPECT_EQ(models, (std::vector<std::string>{"UBW", "StkBW", "URGB", "StkRGB", "USpectr",
                                                "StkSpectr", "XYZ", "XYY"}));
    EXPECT_EQ(ColorModel::GetImplicitModel(), TColorModel->FindModel("USpectr"));

    // A polarized ray holder that the host makes through its type faces x.
    PlugRef holder = PlugType::Find("StkRGBRayColorHold")->NewInstance();
    TVect3<double> xort(0.0, 0.0, 0.0);
    EXPECT_TRUE(TColorModel->FindModel("StkRGB")->GetXOrt(
        static_cast<Holder<IRayColor>*>(holder.Get())->Color(), xort));
    EXPECT_EQ(xort, TVect3<double>(1.0, 0.0, 0.0));
    holder = nullptr;

    loader.Unload();
    for (const std::string& ident : types)
        EXPECT_EQ(PlugType::Find(ident.c_str()), nullptr) << ident;
    EXPECT_TRUE(TColorModel->Models().empty());
    EXPECT_EQ(ColorModel::GetImplicitModel(), nullptr);
    EXPECT_TRUE(Texts(ReportKind::InternalError).empty());

    // Registration that runs out of memory half-way leaves nothing behind either.
    {
        FaultInjection::ScopedFailure fail(FaultInjection::PlugAlloc, 30);
        EXPECT_EQ(loader.Load(KORVANE_COLOUR_MODULE_PATH), kErrorMessageCode);
    }
    EXPECT_EQ(loader.Failure(), LoadFailure::InitFailed);
    for (const std::string& ident : types)
        EXPECT_EQ(PlugType::Find(ident.c_str()), nullptr) << ident;
    EXPECT_TRUE(TColorModel->Models().empty());
}

// The Tag of every model family is an exported class member: a host that links against the
// module finds it in the module's export table, the spectral one included.
TEST(PluginLoader, TheModuleExportsEveryModelTag) {
    PluginLoader loader;
    ASSERT_EQ(loader.Load(KORVANE_COLOUR_MODULE_PATH), 0) << loader.Error();
    using TagFunction = const char* (*)();
    const std::pair<const char*, const char*> tags[] = {
        {"_ZN7Korvane8BBWModel3TagEv", "BW"},
        {"_ZN7Korvane9BRGBModel3TagEv", "RGB"},
        {"_ZN7Korvane14BSpectralModel3TagEv", "Spectr"},
        {"_ZN7Korvane11Unpolarized3TagEv", "U"},
        {"_ZN7Korvane18StokesPolarization3TagEv", "Stk"},
    };
    for (const auto& [symbol, tag] : tags) {
        void* found = loader.FindExport(symbol);
        ASSERT_NE(found, nullptr) << symbol;
        EXPECT_STREQ(reinterpret_cast<TagFunction>(found)(), tag) << symbol;
    }
    loader.Unload();
}

// Paths are UTF-8 on every platform: a module in a folder whose name is not ASCII loads (on
// Windows a path handed to the ANSI LoadLibrary would not), and the report names it as given.
TEST(PluginLoader, LoadsFromAUtf8PathAndBesideTheExecutable) {
    namespace fs = std::filesystem;
    const std::string nonAscii = "m\xC3\xB3"
                                 "dulos-\xE5\x85\x89"; // "módulos-光"
    const std::string dir = std::string(KORVANE_TEST_SCRATCH_DIR) + "/" + nonAscii;
    const std::string copy = dir + "/" + KORVANE_TEST_MODULE_FILE;
    std::error_code ec;
    fs::create_directories(fs::u8path(dir), ec);
    // A copy of an earlier run goes first: GCC 12's copy_file cannot overwrite on Windows.
    fs::remove(fs::u8path(copy), ec);
    fs::copy_file(fs::u8path(KORVANE_TEST_MODULE_PATH), fs::u8path(copy), ec);
    ASSERT_FALSE(ec) << ec.message();

    PluginLoader loader;
    ASSERT_EQ(loader.Load(copy.c_str()), 0) << loader.Error();
    EXPECT_EQ(loader.VersionId(), 7);
    loader.Unload();
    ExpectRefused(loader, (dir + "/no-such-module").c_str(), LoadFailure::NotALibrary,
                  "not a shared library");

    // The test binary is built beside the test modules.
    const std::string beside = Platform::FileBesideExecutable(KORVANE_TEST_MODULE_FILE);
    EXPECT_TRUE(fs::exists(fs::u8path(beside))) << beside;
    ASSERT_EQ(loader.Load(beside.c_str()), 0) << loader.Error();
    EXPECT_EQ(loader.Path(), beside);
    loader.Unload();
}
