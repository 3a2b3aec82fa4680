#include "python/src/Session.h"

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/colormodel/ColorModelType.h"

#include <dlfcn.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace Korvane::Py {
namespace {

// Held from Load to Unload. Deliberately never destroyed at process exit: the Python package
// unloads it from an atexit handler, while the interpreter and the host kit are still whole.
Session* g_session = nullptr;

// This extension module's own folder.
std::filesystem::path ModuleFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&ModuleFolder), &info) == 0 || !info.dli_fname)
        return std::filesystem::current_path();
    return std::filesystem::path(info.dli_fname).parent_path();
}

// The flag a stored grid carries: no two consecutive steps differ by more than
// (d + dprev) * 1.192092896e-7, the rule by which the spectral model calls a grid equidistant.
bool Equidistant(const std::vector<double>& grid) {
    constexpr double kRelative = 1.192092896e-7;
    for (std::size_t i = 2; i < grid.size(); ++i) {
        const double d = grid[i] - grid[i - 1], prev = grid[i - 1] - grid[i - 2];
        if (std::fabs(d - prev) > (d + prev) * kRelative)
            return false;
    }
    return true;
}

} // namespace

ReportCollector& Session::Reports() {
    static ReportCollector* collector = new ReportCollector(); // outlives every report
    return *collector;
}

std::string Session::DefaultPluginPath() {
    namespace fs = std::filesystem;
    if (const char* env = std::getenv("KORVANE_PLUGIN"); env && *env)
        return env;
    const fs::path here = ModuleFolder();
    const fs::path build = (here / KORVANE_PY_PLUGIN_BUILD_DIR / KORVANE_PY_PLUGIN_FILE);
    const fs::path installed = (here / KORVANE_PY_PLUGIN_INSTALL_DIR / KORVANE_PY_PLUGIN_FILE);
    std::error_code ec;
    if (fs::exists(build, ec))
        return build.lexically_normal().string();
    if (fs::exists(installed, ec))
        return installed.lexically_normal().string();
    return build.lexically_normal().string();
}

bool Session::IsLoaded() {
    return g_session != nullptr;
}

Session& Session::Get() {
    return g_session ? *g_session : Load("");
}

Session& Session::Load(const std::string& path) {
    const std::string file = path.empty() ? DefaultPluginPath() : path;
    if (g_session) {
        if (path.empty() || std::filesystem::equivalent(file, g_session->path_))
            return *g_session;
        throw LibraryError(
            "loading " + file,
            "a plug-in is already loaded from " + g_session->path_ + "; unload it first", -1, {});
    }
    ReportCollector& reports = Reports();
    SetReportSink(&reports);
    const unsigned long long mark = reports.Mark();
    auto* session = new Session();
    session->path_ = file;
    const int status = session->loader_.Load(file.c_str());
    if (status != 0) {
        delete session;
        SetReportSink(nullptr);
        ThrowFailure(reports, mark, "loading the plug-in", status);
    }
    if (!TColorModel) {
        delete session;
        SetReportSink(nullptr);
        throw LibraryError("loading " + file, "the host has no colour-model registry", -1, {});
    }
    g_session = session;
    return *session;
}

void Session::Unload() {
    delete g_session;
    g_session = nullptr;
    SetReportSink(nullptr);
}

Session::~Session() {
    DropGridModels(); // released while the plug-in's code is still loaded
    if (converter_.Get() && TColorModel)
        TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
    loader_.Unload();
    converter_ = nullptr;
}

std::vector<std::string> Session::Models() const {
    std::vector<std::string> names;
    for (const ColorModel* m : TColorModel->Models())
        names.push_back(m->Name());
    return names;
}

void Session::SetObserver(int degrees) {
    if (degrees != 2 && degrees != 10)
        throw std::invalid_argument("observer must be 2 (CIE 1931) or 10 (CIE 1964), not " +
                                    std::to_string(degrees));
    if (degrees == observer_)
        return;
    DropGridModels();
    if (degrees == 2) {
        TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
        converter_ = nullptr;
    } else {
        const unsigned long long mark = Reports().Mark();
        TPlugRef<CIEConvAll> conv = CIEConvAll::Create(Observer::CIE1964_10deg);
        if (!conv.Get())
            ThrowFailure(Reports(), mark, "making the CIE 1964 converter", kNoMemoryCode);
        TColorModel->SetCIEConvAllForAll(conv.Get());
        converter_ = conv;
    }
    observer_ = degrees;
}

const ColorModel& Session::Model(const std::string& ident, const std::vector<double>& grid) {
    const ColorModel* model = TColorModel->FindModel(ident.c_str());
    if (!model) {
        std::string known;
        for (const std::string& name : Models())
            known += (known.empty() ? "" : ", ") + name;
        throw std::invalid_argument("no colour model \"" + ident + "\" (the plug-in has " + known +
                                    ")");
    }
    if (grid.empty())
        return *model;
    if (!model->IsSpectral())
        throw std::invalid_argument("the model " + ident + " has no wavelength grid");
    if (grid.size() > kMaxGridPoints)
        throw std::invalid_argument("a grid of " + std::to_string(grid.size()) +
                                    " wavelengths is longer than the " +
                                    std::to_string(kMaxGridPoints) + " a model is made on");
    const MArray<double>& own = model->GetWaveLengths();
    bool same = own.Count() == static_cast<int>(grid.size());
    for (int i = 0; same && i < own.Count(); ++i)
        same = own[i] == grid[static_cast<std::size_t>(i)];
    return same ? *model : GridModel(ident, grid);
}

const ColorModel& Session::GridModel(const std::string& ident, const std::vector<double>& grid) {
    const auto key = std::make_pair(ident, grid);
    if (auto it = gridModels_.find(key); it != gridModels_.end())
        return *static_cast<const ColorModel*>(it->second.Get());

    PlugType* type = PlugType::Find(ident.c_str());
    if (!type)
        throw std::invalid_argument("the plug-in registered no model type \"" + ident + "\"");
    // The grid as a stored model holds it: group "Wavelengths" (count, values), "EquiDistant".
    BinarySerializer writer;
    writer.OpenGroup("Wavelengths");
    auto n = static_cast<std::int32_t>(grid.size());
    writer.SerializeCount(n, 1);
    std::vector<double> waves = grid;
    writer.Serialize(waves.data(), n);
    writer.CloseGroup();
    bool equidistant = Equidistant(grid);
    writer.Serialize("EquiDistant", equidistant, false);
    writer.Finish();

    const unsigned long long mark = Reports().Mark();
    BinarySerializer reader(writer.Bytes());
    PlugRef model = type->NewInstance();
    if (!model)
        ThrowFailure(Reports(), mark, "making a " + ident + " model", kNoMemoryCode);
    const int status = type->SerializeInstance(model.Get(), reader);
    reader.Finish();
    if (reader.Failed())
        throw LibraryError("making a " + ident + " model on the given grid", reader.Error(),
                           status != 0 ? status : -1, {});
    if (status != 0)
        ThrowFailure(Reports(), mark, "making a " + ident + " model on the given grid", status);
    model.Get()->OnLoad(BinarySerializer::kVersion);
    if (gridModels_.size() >= kGridModels)
        gridModels_.erase(gridModels_.begin());
    auto& kept = gridModels_[key];
    kept = model;
    return *static_cast<const ColorModel*>(kept.Get());
}

void Session::DropGridModels() {
    gridModels_.clear();
}

} // namespace Korvane::Py
