#include "python/src/Session.h"

#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/colormodel/GridModel.h"
#include "hostkit/colormodel/ObserverChoice.h"
#include "hostkit/plugsys/PluginLocation.h"

#include <filesystem>
#include <stdexcept>

namespace Korvane::Py {
namespace {

// Held from Load to Unload. Deliberately never destroyed at process exit: the Python package
// unloads it from an atexit handler, while the interpreter and the host kit are still whole.
Session* g_session = nullptr;

} // namespace

ReportCollector& Session::Reports() {
    static ReportCollector* collector = new ReportCollector(); // outlives every report
    return *collector;
}

std::string Session::DefaultPluginPath() {
    return std::filesystem::path(Korvane::DefaultPluginPath()).lexically_normal().string();
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
        std::error_code ec; // a path that does not exist is not the one loaded
        if (path.empty() || std::filesystem::equivalent(file, g_session->path_, ec))
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
    ReleaseObserver();
    loader_.Unload();
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
    const unsigned long long mark = Reports().Mark();
    const int status =
        UseObserver(degrees == 10 ? Observer::CIE1964_10deg : Observer::CIE1931_2deg);
    if (status != 0)
        ThrowFailure(Reports(), mark, "choosing the observer", status);
    DropGridModels();
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

    std::string error;
    PlugRef model = MakeSpectralModel(ident.c_str(), grid, error);
    if (!model)
        throw LibraryError("making a " + ident + " model on the given grid", error, -1, {});
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
