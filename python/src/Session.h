// Session: the Python module's hold on the colour-model plug-in, one per process. It loads the
// module through the host kit's loader (as any host does), keeps the report sink, the chosen
// observer and the spectral models made on grids of the caller's choice, and takes all of it
// down again when unloaded.
//
// The plug-in registers its types process-wide, so one process holds one plug-in at a time:
// loading another file first needs Unload. Every entry point runs with the Python interpreter's
// lock held, so the session needs no lock of its own; configuration (load, unload, observer)
// and conversions never overlap.
#pragma once

#include "python/src/Reports.h"

#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/plugsys/PlugRef.h"
#include "hostkit/plugsys/PluginLoader.h"

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Korvane::Py {

class Session {
public:
    // The session, loading the default plug-in first when none is loaded.
    static Session& Get();
    // Loads the plug-in at `path` (empty: the default plug-in). Nothing when that file is already
    // loaded; LibraryError when it cannot be loaded or another file is loaded.
    static Session& Load(const std::string& path);
    // Unloads the plug-in, when one is loaded.
    static void Unload();
    static bool IsLoaded();
    // Where the module looks when no path is given: the host kit's default, the file named by the
    // environment variable KORVANE_PLUGIN, else the plug-in in the folder of the host kit library
    // that this module links (the build tree's bin/, or the install's library folder).
    static std::string DefaultPluginPath();
    // The report sink, alive for the whole process (it is the host's sink while loaded).
    static ReportCollector& Reports();

    const std::string& Path() const { return path_; }
    int Version() const { return loader_.VersionId(); }
    // Identifiers of the registered models, in registration order.
    std::vector<std::string> Models() const;

    // 2 (CIE 1931) or 10 (CIE 1964): the observer of the host's current converter.
    int ObserverDegrees() const { return observer_; }
    // Makes a converter for that observer the host's current one for every model (UseObserver;
    // 2 restores the built-in converter). Spectral models made on grids are dropped: they are
    // made again under the new converter when next asked for.
    void SetObserver(int degrees);

    // The registered model with identifier `ident` ("URGB", "USpectr", "XYZ", ...); for the two
    // spectral identifiers with a non-empty `grid`, a spectral model on that grid, made as a host
    // makes one (MakeSpectralModel: its type reads the grid, OnLoad builds its tables) and kept
    // for the next call. Throws std::invalid_argument for an unknown identifier or a grid given for
    // a model that has none, LibraryError when the model refuses the grid.
    const ColorModel& Model(const std::string& ident, const std::vector<double>& grid = {});

    // The longest grid a model is made on. Making a model costs time growing with the square of
    // its grid's length (0.06 s at 4,000 wavelengths, some 1.5 s at 20,000 on the development
    // machine); longer grids are refused rather than appear to hang.
    static constexpr std::size_t kMaxGridPoints = 20000;

    ~Session();

private:
    Session() = default;
    const ColorModel& GridModel(const std::string& ident, const std::vector<double>& grid);
    void DropGridModels();

    PluginLoader loader_;
    std::string path_;
    int observer_ = 2;
    // Spectral models on grids, by identifier and grid; at most kGridModels are kept.
    static constexpr std::size_t kGridModels = 16;
    std::map<std::pair<std::string, std::vector<double>>, PlugRef> gridModels_;
};

} // namespace Korvane::Py
