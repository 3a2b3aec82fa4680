// korvane: loads the colour-model plug-in as a host does and reports, for a set of RGB light
// colours, their spectra on a grid and what the other models make of them. Without arguments it
// runs on the built-in defaults: the plug-in beside the executable, the default 33-point grid
// (390..710 nm), the CIE 1931 2-degree observer and eight reference colours.
#include "cli/ColourReport.h"
#include "cli/PluginSession.h"

#include <CLI/CLI.hpp>

#include "hostkit/base/User.h"

#include <iostream>

namespace {

// Errors reach the user on standard error; log lines only with --verbose.
class ToolSink final : public Korvane::IReportSink {
public:
    explicit ToolSink(bool verbose) : verbose_(verbose) {}
    void Receive(const Korvane::Report& r) override {
        if (r.kind == Korvane::ReportKind::Log) {
            if (verbose_)
                std::cerr << "korvane: " << r.text << "\n";
            return;
        }
        std::cerr << "korvane: error: " << r.text << "\n";
    }

private:
    bool verbose_;
};

} // namespace

int main(int argc, char** argv) {
    using namespace Korvane;
    CLI::App app{"Report colour conversions of the Korvane colour-model plug-in"};
    std::string plugin;
    std::vector<double> rgb;
    std::vector<double> grid;
    int observer = 2;
    Cli::ReportOptions options;
    app.add_option("--plugin", plugin, "Plug-in module to load (default: beside the executable)");
    app.add_option("--rgb", rgb, "RGB light colours to report, three values each (R G B ...)")
        ->expected(3, CLI::detail::expected_max_vector_size);
    app.add_option("--grid", grid, "Spectral grid: first last step, in nm")->expected(3);
    app.add_option("--observer", observer, "Standard observer: 2 (CIE 1931) or 10 (CIE 1964)")
        ->check(CLI::IsMember({2, 10}));
    app.add_flag("--csv", options.csv, "Comma-separated output");
    app.add_flag("--spectra", options.spectra, "Also print the spectra, one column per colour");
    bool verbose = false;
    app.add_flag("--verbose", verbose, "Also print the plug-in's log lines");
    CLI11_PARSE(app, argc, argv);
    static ToolSink sink(verbose); // outlives the plug-in's unloading and the host's exit
    SetReportSink(&sink);

    if (rgb.size() % 3 != 0) {
        std::cerr << "korvane: --rgb takes three values per colour\n";
        return 2;
    }
    for (std::size_t i = 0; i < rgb.size(); i += 3)
        options.colours.push_back(
            {"rgb" + std::to_string(i / 3 + 1), TVect3<double>(rgb[i], rgb[i + 1], rgb[i + 2])});
    if (!grid.empty()) {
        options.customGrid = true;
        options.first = grid[0];
        options.last = grid[1];
        options.step = grid[2];
        if (!(options.step > 0.0) || !(options.last >= options.first)) {
            std::cerr << "korvane: --grid needs first <= last and a positive step\n";
            return 2;
        }
    }
    options.observer = observer == 10 ? Observer::CIE1964_10deg : Observer::CIE1931_2deg;

    Cli::PluginSession session(plugin);
    if (!session.Loaded())
        return 1; // the loader's report has said why
    if (!options.csv)
        std::cout << "plug-in: " << session.Path() << " (version " << session.Version() << ")\n";
    return Cli::RunReport(options, std::cout, std::cerr);
}
