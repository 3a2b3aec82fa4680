// Modules the loader must refuse before any of their code runs: a module that another loader
// already holds, and module files cut short (which would crash the platform loader).
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/plugsys/PlugType.h"
#include "hostkit/plugsys/PluginLoader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#if defined(__linux__)
#include <elf.h>
#include <unistd.h>
#endif

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

std::vector<std::string> ModelNames() {
    std::vector<std::string> names;
    for (ColorModel* m : TColorModel->Models())
        names.push_back(m->Name());
    return names;
}

std::string ReadAll(const char* path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

} // namespace

TEST(HostileModule, SameModuleInASecondLoaderIsRefusedBeforeAnyOfItRuns) {
    PluginLoader first;
    ASSERT_EQ(first.Load(KORVANE_COLOUR_MODULE_PATH), 0) << first.Error();
    const std::vector<std::string> models = ModelNames();
    const std::size_t types = PlugType::Registered().size();
    ColorModel* spectral = TColorModel->FindModel("USpectr");
    ASSERT_NE(spectral, nullptr);

    std::vector<std::string> paths = {KORVANE_COLOUR_MODULE_PATH};
#if defined(__linux__)
    // Another path to the same file opens the same module.
    const std::string link = std::string(KORVANE_TEST_SCRATCH_DIR) + "/colour-module-link.so";
    std::remove(link.c_str());
    ASSERT_EQ(symlink(KORVANE_COLOUR_MODULE_PATH, link.c_str()), 0);
    paths.push_back(link);
#endif
    for (const std::string& path : paths) {
        ReportLog::Clear();
        {
            PluginLoader second;
            EXPECT_EQ(second.Load(path.c_str()), kErrorMessageCode);
            EXPECT_EQ(second.Failure(), LoadFailure::AlreadyLoaded);
            EXPECT_FALSE(second.IsLoaded());
            EXPECT_TRUE(Contains(second.Error(), "\"" + path + "\"")) << second.Error();
            EXPECT_TRUE(Contains(second.Error(), "already loaded")) << second.Error();
            EXPECT_EQ(Texts(ReportKind::ErrorMessage), std::vector<std::string>{second.Error()});
        } // the refused loader goes out of scope: nothing of the first load may go with it
        // No InitClasses ran again: no refused type, no new model, and the first load's models
        // are the same objects, still working.
        EXPECT_TRUE(Texts(ReportKind::InternalError).empty());
        EXPECT_EQ(PlugType::Registered().size(), types);
        EXPECT_EQ(ModelNames(), models);
        EXPECT_EQ(TColorModel->FindModel("USpectr"), spectral);
        EXPECT_EQ(ColorModel::GetImplicitModel(), spectral);
        EXPECT_EQ(spectral->GetWaveLengths().Count(), 33);
    }
    first.Unload();
    EXPECT_TRUE(TColorModel->Models().empty());

    // Once the first loader let go, the module loads again.
    PluginLoader again;
    EXPECT_EQ(again.Load(KORVANE_COLOUR_MODULE_PATH), 0) << again.Error();
}

// The image check reads the module file by its UTF-8 path, as the platform loader opens it: a
// copy of the plug-in cut short inside its headers, in a file whose name is not ASCII, is refused
// as damaged (not left to the platform loader because the check could not open it), and a whole
// copy of that name loads.
TEST(HostileModule, ACutModuleUnderANonAsciiNameIsFoundDamaged) {
    namespace fs = std::filesystem;
    const std::string image = ReadAll(KORVANE_COLOUR_MODULE_PATH);
    ASSERT_GT(image.size(), 4096u);
    const std::string base = std::string(KORVANE_TEST_SCRATCH_DIR) + "/m\xC3\xB3"
                                                                     "dulo-\xE5\x85\x89";
    const std::string extension = fs::u8path(KORVANE_COLOUR_MODULE_PATH).extension().u8string();
    // 64 bytes keep the ELF file header or the DOS header whole, and no more.
    const std::string cut = base + "-cut" + extension;
    std::ofstream(fs::u8path(cut), std::ios::binary | std::ios::trunc).write(image.data(), 64);
    PluginLoader loader;
    EXPECT_EQ(loader.Load(cut.c_str()), kErrorMessageCode);
    EXPECT_EQ(loader.Failure(), LoadFailure::DamagedImage) << loader.Error();
    EXPECT_TRUE(Contains(loader.Error(), "\"" + cut + "\"")) << loader.Error();
    EXPECT_TRUE(Contains(loader.Error(), "cut short")) << loader.Error();
    fs::remove(fs::u8path(cut));

    // A file of its own name: the platform may keep a closed module mapped.
    const std::string whole = base + "-whole" + extension;
    std::error_code ec;
    fs::remove(fs::u8path(whole), ec);
    std::ofstream(fs::u8path(whole), std::ios::binary)
        .write(image.data(), std::streamsize(image.size()));
    EXPECT_EQ(loader.Load(whole.c_str()), 0) << loader.Error();
    EXPECT_EQ(TColorModel->Models().size(), 8u);
    loader.Unload();
}

#if defined(__linux__) && defined(__LP64__)
// Copies of the real plug-in cut at many lengths: every copy that misses a byte of a segment is
// refused with its path and the cause, without being opened; a copy that keeps every segment
// (only section headers or debug information are gone) is a whole module and loads.
TEST(HostileModule, TruncatedCopiesOfThePlugInAreRefusedWithoutCrashing) {
    const std::string image = ReadAll(KORVANE_COLOUR_MODULE_PATH);
    ASSERT_GT(image.size(), sizeof(Elf64_Ehdr));
    Elf64_Ehdr header;
    std::copy_n(image.data(), sizeof header, reinterpret_cast<char*>(&header));
    std::size_t segmentsEnd = header.e_phoff + std::size_t{header.e_phnum} * header.e_phentsize;
    for (int i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr ph;
        std::copy_n(image.data() + header.e_phoff + std::size_t(i) * header.e_phentsize, sizeof ph,
                    reinterpret_cast<char*>(&ph));
        segmentsEnd = std::max<std::size_t>(segmentsEnd, ph.p_offset + ph.p_filesz);
    }
    ASSERT_LE(segmentsEnd, image.size());

    std::vector<std::size_t> cuts = {4, 16, 63, 64, 65, header.e_phoff + 1, segmentsEnd - 1};
    const std::size_t kCuts = 60; // spread over the whole module
    for (std::size_t k = 1; k < kCuts; ++k)
        cuts.push_back(segmentsEnd * k / kCuts);
    const std::string copy = std::string(KORVANE_TEST_SCRATCH_DIR) + "/cut-module.so";
    for (std::size_t cut : cuts) {
        std::ofstream(copy, std::ios::binary | std::ios::trunc)
            .write(image.data(), std::streamsize(cut));
        ReportLog::Clear();
        PluginLoader loader;
        EXPECT_EQ(loader.Load(copy.c_str()), kErrorMessageCode) << cut;
        EXPECT_EQ(loader.Failure(), LoadFailure::DamagedImage) << cut;
        EXPECT_TRUE(Contains(loader.Error(), "\"" + copy + "\"")) << loader.Error();
        EXPECT_TRUE(Contains(loader.Error(), "cut short")) << loader.Error();
        EXPECT_TRUE(Contains(loader.Error(), std::to_string(cut) + " bytes")) << loader.Error();
        EXPECT_TRUE(Texts(ReportKind::Log).empty()) << cut; // nothing of it ran
    }

    std::remove(copy.c_str());

    // Whole segments: the module loads and unloads like the original. Each copy gets a file of
    // its own: the platform may keep a closed module mapped, and a mapped file must not change.
    for (std::size_t cut : {segmentsEnd, (segmentsEnd + image.size()) / 2}) {
        const std::string whole = copy + "." + std::to_string(cut);
        std::ofstream(whole, std::ios::binary | std::ios::trunc)
            .write(image.data(), std::streamsize(cut));
        PluginLoader loader;
        EXPECT_EQ(loader.Load(whole.c_str()), 0) << cut << ": " << loader.Error();
        EXPECT_EQ(TColorModel->Models().size(), 8u);
        loader.Unload();
        std::remove(whole.c_str());
    }
}
#endif
