// korvane: a host of the colour-model plug-in for people who start from measured spectra. It
// loads the plug-in as a host does and answers through the plug-in's models and the host kit's
// CIE converter only. Without a command it runs the RGB round-trip overview on the built-in
// defaults; the commands analyze, convert, resample, plot and holder are described by --help.
//
// Exit codes: 0 success, 1 bad input data (what files hold, files that cannot be opened or
// written, conversions the models refuse), 2 bad usage (the command line, numbers and grids
// given on it included). Messages go to standard error, results to standard output.
#include "cli/Analyze.h"
#include "cli/ColourReport.h"
#include "cli/Convert.h"
#include "cli/HolderCommand.h"
#include "cli/Host.h"
#include "cli/Plot.h"
#include "cli/PluginSession.h"
#include "cli/ToolError.h"

#include <CLI/CLI.hpp>

#include "hostkit/base/User.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModelType.h"

#include <cmath>
#include <iostream>
#include <new>

namespace {

using namespace Korvane;
using namespace Korvane::Cli;

// Log lines reach the user only with --verbose; errors of the overview at once. The commands
// collect the reports of a failed step from the host's log and write one message of their own.
class ToolSink final : public IReportSink {
public:
    void Receive(const Report& r) override {
        if (r.kind == ReportKind::Log) {
            if (verbose)
                std::cerr << "korvane: " << r.text << "\n";
            return;
        }
        if (!quiet)
            std::cerr << "korvane: error: " << r.text << "\n";
    }
    bool verbose = false;
    bool quiet = false;
};

// A converter for another observer is the host's current one for the run, for every model.
class ObserverScope {
public:
    explicit ObserverScope(int observer) {
        if (observer != 10)
            return;
        converter_ = CIEConvAll::Create(Observer::CIE1964_10deg);
        if (!converter_.Get())
            DataError("out of memory making the CIE 1964 converter");
        TColorModel->SetCIEConvAllForAll(converter_.Get());
    }
    ~ObserverScope() {
        if (converter_.Get())
            TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
    }
    ObserverScope(const ObserverScope&) = delete;
    ObserverScope& operator=(const ObserverScope&) = delete;

private:
    TPlugRef<CIEConvAll> converter_;
};

void AddFormat(CLI::App* cmd, bool& csv, bool& json, int& precision) {
    auto* c = cmd->add_flag("--csv", csv, "Comma-separated output, numbers written in full");
    auto* j = cmd->add_flag("--json", json, "JSON output, numbers written in full");
    c->excludes(j);
    cmd->add_option("--precision", precision, "Significant digits in the table (1..17)")
        ->check(CLI::Range(1, 17));
}

OutputFormat FormatOf(bool csv, bool json) {
    return csv ? OutputFormat::Csv : json ? OutputFormat::Json : OutputFormat::Table;
}

void CheckFinite(const std::vector<double>& v, const char* option) {
    for (double d : v)
        if (!std::isfinite(d))
            UsageError(std::string(option) + " takes finite numbers");
}

int Run(int argc, char** argv, ToolSink& sink) {
    CLI::App app{"korvane: colorimetry of measured spectra and colour conversions through the "
                 "Korvane colour-model plug-in.\nWithout a command: the RGB round-trip overview "
                 "on the built-in defaults.",
                 "korvane"};
    app.footer("Examples:\n  korvane analyze lamp.csv\n  korvane convert --from rgb 0.2 0.4 0.6 "
               "--to xyz\n  korvane plot lamp.csv -o lamp.svg\nExit codes: 0 success, 1 bad "
               "input data (files, refused conversions), 2 bad usage (the command line, its "
               "numbers and grids included).");
    app.fallthrough(); // --observer, --plugin and --verbose also after the command
    std::string plugin;
    int observer = 2;
    bool verbose = false;
    app.add_option("--plugin", plugin, "Plug-in module to load (default: beside the executable)");
    const auto addObserver = [&observer](CLI::App* cmd) {
        cmd->add_option("--observer", observer, "Standard observer: 2 (CIE 1931) or 10 (CIE 1964)")
            ->check(CLI::IsMember({2, 10}));
    };
    addObserver(&app);
    app.add_flag("--verbose", verbose, "Also print the plug-in's log lines");

    // The overview (no command).
    ReportOptions overview;
    std::vector<double> rgb, grid;
    app.add_option("--rgb", rgb, "Overview: RGB light colours, three values each (R G B ...)")
        ->expected(3, CLI::detail::expected_max_vector_size);
    app.add_option("--grid", grid, "Overview: spectral grid first last step, in nm")->expected(3);
    app.add_flag("--csv", overview.csv, "Overview: comma-separated output");
    app.add_flag("--spectra", overview.spectra, "Overview: also print the spectra");

    // analyze
    AnalyzeOptions analyze;
    bool aCsv = false, aJson = false;
    CLI::App* cAnalyze = app.add_subcommand(
        "analyze", "Colorimetry of every spectrum in the files: XYZ, xy, u'v', luminance, radiant "
                   "quantity, CCT and Duv, dominant wavelength and purity, CIE Ra and R1..R14, "
                   "sRGB (of a light at full strength: its largest linear channel 1; of "
                   "reflectances with the white reflector at Y = 1).\nExample: korvane analyze "
                   "lamp.csv --json");
    cAnalyze
        ->add_option("files", analyze.files, "Spectrum files (CSV, CGATS); - for standard input")
        ->required();
    cAnalyze->add_flag("--reflectance", analyze.reflectance,
                       "The spectra are reflectances under --illuminant (adds CIELAB)");
    CLI::Option* illuminant =
        cAnalyze->add_option("--illuminant", analyze.illuminant,
                             "D65 (default), D50, A, E (in any case) or a spectrum file (with "
                             "--reflectance)");
    AddFormat(cAnalyze, aCsv, aJson, analyze.precision);
    addObserver(cAnalyze);

    // convert
    ConvertOptions convert;
    bool cCsv = false, cJson = false;
    std::vector<std::string> from;
    CLI::App* cConvert = app.add_subcommand(
        "convert",
        "One colour from one model into another through the target model's ConvertColor.\n"
        "Models: bw rgb spectral xyz xyy stokes-bw stokes-rgb stokes-spectral.\n"
        "The table is for reading; --csv writes the numbers in full, and a spectral result in the "
        "form --from spectral FILE reads back.\nExample: korvane convert --from xyy 0.3127 0.329 1 "
        "--to rgb");
    cConvert
        ->add_option("--from", from,
                     "Source model and its values, or a spectrum file for spectral and "
                     "stokes-spectral (for Stokes, the unpolarized intensity)")
        ->expected(2, CLI::detail::expected_max_vector_size)
        ->required();
    cConvert->add_option("--spectrum", convert.spectrum,
                         "Which spectrum of a --from file holding several: its name or its "
                         "number (1 = the first)");
    cConvert->add_option("--to", convert.to, "Target model")->required();
    cConvert->add_option("--kind", convert.kind, "light (default), surface or scalar");
    cConvert->add_option("--grid", convert.grid, "Spectral target grid: first last step (nm)")
        ->expected(3);
    cConvert
        ->add_option("--from-grid", convert.fromGrid,
                     "Grid of a spectral source given as numbers: first last step (nm)")
        ->expected(3);
    AddFormat(cConvert, cCsv, cJson, convert.precision);
    addObserver(cConvert);

    // resample
    ResampleOptions resample;
    CLI::App* cResample = app.add_subcommand(
        "resample", "Spectra on another grid through the spectral model's resampling, as CSV.\n"
                    "Example: korvane resample lamp.csv --grid 380 780 5");
    cResample->add_option("file", resample.file, "Spectrum file")->required();
    auto* g = cResample->add_option("--grid", resample.grid, "Target grid: first last step (nm)")
                  ->expected(3);
    auto* gf = cResample->add_option("--grid-file", resample.gridFile,
                                     "Take the grid of this file's first spectrum");
    g->excludes(gf);
    cResample->add_flag("--reflectance", resample.reflectance,
                        "Resample as reflectances (surface colours: no light clamp)");

    // plot
    PlotOptions plot;
    CLI::App* cPlot = app.add_subcommand(
        "plot", "An SVG figure: the spectra beside the chromaticity diagram with the spectral "
                "and Planckian loci, the sRGB gamut, D65 and every spectrum's point.\n"
                "Example: korvane plot lamp.csv -o lamp.svg");
    cPlot->add_option("files", plot.files, "Spectrum files")->required();
    cPlot->add_option("-o,--output", plot.output, "SVG file to write")->required();
    cPlot->add_flag("--ucs", plot.ucs, "CIE 1976 u'v' diagram instead of CIE 1931 xy");
    addObserver(cPlot);

    // holder
    HolderOptions holder;
    CLI::App* cHolder = app.add_subcommand(
        "holder", "Colour holders in plug files.\nExample: korvane holder save --model rgb "
                  "--values 0.2 0.4 0.6 --matrix 2 2 -o c.plug; korvane holder show c.plug");
    cHolder->require_subcommand(1);
    CLI::App* cSave = cHolder->add_subcommand(
        "save", "Write a holder to a plug file.\nExample: korvane holder save --model spectral "
                "--kind surface --values patch.csv -o patch.plug --format text");
    cSave->add_option("--model", holder.model, "Model of the holder")->required();
    cSave->add_option("--kind", holder.kind, "light (default), surface, scalar, ray, dual");
    cSave->add_option("--array", holder.array, "An array of N light colours, each the colour");
    cSave->add_option("--matrix", holder.matrix, "A matrix of R x C light colours")->expected(2);
    cSave->add_option("--xort", holder.xort, "The reference axis of a Stokes ray colour")
        ->expected(3);
    cSave->add_option("--values", holder.values, "The colour's values, or one spectrum file")
        ->expected(1, CLI::detail::expected_max_vector_size)
        ->required();
    cSave->add_option("-o,--output", holder.output, "Plug file to write")->required();
    cSave->add_option("--format", holder.format, "binary (default) or text")
        ->check(CLI::IsMember({"binary", "text"}));
    CLI::App* cShow = cHolder->add_subcommand(
        "show", "Print a plug file's type and values.\nExample: korvane holder show patch.plug");
    cShow->add_option("file", holder.input, "Plug file")->required();

    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        std::cerr << "korvane: " << e.what() << "\nRun 'korvane --help' for usage.\n";
        return kExitUsage;
    }
    sink.verbose = verbose;

    // Usage checks that need no plug-in.
    CheckFinite(rgb, "--rgb");
    if (rgb.size() % 3 != 0)
        UsageError("--rgb takes three values per colour");
    for (std::size_t i = 0; i < rgb.size(); i += 3)
        overview.colours.push_back(
            {"rgb" + std::to_string(i / 3 + 1), TVect3<double>(rgb[i], rgb[i + 1], rgb[i + 2])});
    if (!grid.empty()) {
        overview.customGrid = true;
        overview.grid = GridFromRange(grid[0], grid[1], grid[2], "--grid");
    }
    if (*cConvert) {
        convert.from = from[0];
        convert.values.assign(from.begin() + 1, from.end());
        CheckFinite(convert.grid, "--grid");
        CheckFinite(convert.fromGrid, "--from-grid");
    }
    CheckFinite(resample.grid, "--grid");
    if (*cResample && resample.grid.empty() && resample.gridFile.empty())
        UsageError("resample needs --grid FIRST LAST STEP or --grid-file FILE");
    if (*cAnalyze && !analyze.reflectance && illuminant->count() > 0)
        UsageError("--illuminant applies to --reflectance only");

    sink.quiet = true; // the loader's reports become part of the message below
    PluginSession session(plugin);
    if (!session.Loaded())
        DataError("cannot load the plug-in " + session.Path() + ": " + session.Error());
    ObserverScope scope(observer);
    overview.observer = observer == 10 ? Observer::CIE1964_10deg : Observer::CIE1931_2deg;

    sink.quiet = true;
    if (*cAnalyze) {
        analyze.format = FormatOf(aCsv, aJson);
        RunAnalyze(analyze, std::cout);
    } else if (*cConvert) {
        convert.format = FormatOf(cCsv, cJson);
        RunConvert(convert, std::cout);
    } else if (*cResample) {
        RunResample(resample, std::cout);
    } else if (*cPlot) {
        RunPlot(plot, std::cout);
    } else if (*cSave) {
        RunHolderSave(holder, std::cout);
    } else if (*cShow) {
        RunHolderShow(holder, std::cout);
    } else {
        sink.quiet = false;
        if (!overview.csv)
            std::cout << "plug-in: " << session.Path() << " (version id " << session.Version()
                      << ")\n";
        return RunReport(overview, std::cout, std::cerr);
    }
    std::cout.flush();
    if (!std::cout)
        DataError("cannot write the output");
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    static ToolSink sink; // outlives the plug-in's unloading and the host's exit
    SetReportSink(&sink);
    try {
        return Run(argc, argv, sink);
    } catch (const ToolError& e) {
        std::cerr << "korvane: error: " << e.what() << "\n";
        return e.Code();
    } catch (const std::bad_alloc&) {
        std::cerr << "korvane: error: out of memory\n";
        return kExitData;
    } catch (const std::exception& e) {
        std::cerr << "korvane: error: " << e.what() << "\n";
        return kExitData;
    } catch (...) {
        std::cerr << "korvane: error: an unexpected failure\n";
        return kExitData;
    }
}
