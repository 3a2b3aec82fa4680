#include "cli/ColourReport.h"

#include "cli/Host.h"

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/cie/CIEConvAll.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/colormodel/ColorModelType.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Korvane::Cli {
namespace {

// A light colour of one model, kept in one of that model's holders.
class LightOf {
public:
    explicit LightOf(const ColorModel* model) : model_(model), holder_(model->NewLgtColorHold()) {}
    bool Ok() const { return holder_.Get() != nullptr; }
    ILgtColor& Color() { return holder_.Get()->Color(); }
    TVect3<double> Triple() {
        double v[3];
        model_->LgtToArray(Color(), v);
        return {v[0], v[1], v[2]};
    }

private:
    const ColorModel* model_;
    TPlugRef<Holder<ILgtColor>> holder_;
};

std::string Fixed(double v, int decimals = 6) {
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*f", decimals, v);
    return buf;
}

// CSV, or columns aligned: names to the left, numbers to the right.
void PrintRows(const std::vector<std::vector<std::string>>& rows, bool csv, std::ostream& out) {
    std::vector<std::size_t> width(rows[0].size(), 0);
    for (const auto& r : rows)
        for (std::size_t k = 0; k < r.size(); ++k)
            width[k] = std::max(width[k], r[k].size());
    for (const auto& r : rows) {
        for (std::size_t k = 0; k < r.size(); ++k) {
            if (csv) {
                out << (k ? "," : "") << r[k];
                continue;
            }
            const std::string pad(width[k] - r[k].size(), ' ');
            out << (k ? "  " : "") << (k ? pad + r[k] : r[k] + pad);
        }
        out << "\n";
    }
}

void PrintSpectra(const ColorModel* spectral, const std::vector<NamedColour>& colours,
                  const std::vector<std::vector<double>>& spectra, bool csv, std::ostream& out) {
    const MArray<double>& grid = spectral->GetWaveLengths();
    const char* sep = csv ? "," : "  ";
    out << (csv ? "" : "\n") << "wavelength";
    for (const NamedColour& c : colours)
        out << sep << c.name;
    out << "\n";
    for (int i = 0; i < grid.Count(); ++i) {
        out << Fixed(grid[i], 1);
        for (const auto& s : spectra)
            out << sep << Fixed(s[static_cast<std::size_t>(i)]);
        out << "\n";
    }
}

} // namespace

std::vector<NamedColour> DefaultColours() {
    return {{"white", {1.0, 1.0, 1.0}},   {"grey50", {0.5, 0.5, 0.5}}, {"red", {1.0, 0.0, 0.0}},
            {"green", {0.0, 1.0, 0.0}},   {"blue", {0.0, 0.0, 1.0}},   {"cyan", {0.0, 1.0, 1.0}},
            {"magenta", {1.0, 0.0, 1.0}}, {"yellow", {1.0, 1.0, 0.0}}};
}

int RunReport(const ReportOptions& options, std::ostream& out, std::ostream& err) {
    if (!TColorModel) {
        err << "korvane: the host has no colour-model registry\n";
        return 1;
    }
    const std::vector<NamedColour> colours =
        options.colours.empty() ? DefaultColours() : options.colours;

    // A converter for another observer becomes the host's current one for this run.
    TPlugRef<CIEConvAll> converter;
    if (options.observer != Observer::CIE1931_2deg) {
        converter = CIEConvAll::Create(options.observer);
        if (!converter.Get()) {
            err << "korvane: out of memory making the CIE converter\n";
            return 1;
        }
        TColorModel->SetCIEConvAllForAll(converter.Get());
    }
    struct RestoreConverter {
        bool active;
        ~RestoreConverter() {
            if (active)
                TColorModel->SetCIEConvAllForAll(CIEConvAll::Default());
        }
    } restore{converter.Get() != nullptr};

    const ColorModel* rgb = TColorModel->FindModel("URGB");
    const ColorModel* xyz = TColorModel->FindModel("XYZ");
    const ColorModel* xyy = TColorModel->FindModel("XYY");
    PlugRef gridModel;
    const ColorModel* spectral = TColorModel->FindModel("USpectr");
    if (options.customGrid) {
        gridModel = SpectralModelOn(options.grid, false);
        spectral = static_cast<const ColorModel*>(gridModel.Get());
    }
    if (!rgb || !xyz || !xyy || !spectral) {
        err << "korvane: the plug-in did not register the URGB, USpectr, XYZ and XYY models\n";
        return 1;
    }

    const MArray<double>& grid = spectral->GetWaveLengths();
    if (!options.csv) {
        out << "models:";
        for (const ColorModel* m : TColorModel->Models())
            out << " " << m->Name();
        out << "\nspectral grid: " << grid.Count() << " wavelengths, " << Fixed(grid[0], 1) << ".."
            << Fixed(grid[grid.Count() - 1], 1) << " nm\n"
            << "observer: "
            << (options.observer == Observer::CIE1931_2deg ? "CIE 1931 2 deg" : "CIE 1964 10 deg")
            << "; reflectances under D65; RGB is linear sRGB\n\n";
    }
    std::vector<std::vector<std::string>> rows;
    rows.push_back({"colour", "R", "G", "B", "R'", "G'", "B'", "X", "Y", "Z", "x", "y",
                    options.csv ? "luminance" : "luminance(683Y)",
                    options.csv ? "energy" : "energy(area)"});

    std::vector<std::vector<double>> spectra;
    for (const NamedColour& c : colours) {
        LightOf in(rgb), spectrum(spectral), back(rgb), inXYZ(xyz), inXYY(xyy);
        if (!in.Ok() || !spectrum.Ok() || !back.Ok() || !inXYZ.Ok() || !inXYY.Ok()) {
            err << "korvane: out of memory making colour holders\n";
            return 1;
        }
        const double values[3] = {c.rgb.x, c.rgb.y, c.rgb.z};
        rgb->SetLgtColor(in.Color(), values);
        if (spectral->ConvertColor(rgb, in.Color(), spectrum.Color()) != 0 ||
            rgb->ConvertColor(spectral, spectrum.Color(), back.Color()) != 0 ||
            xyz->ConvertColor(spectral, spectrum.Color(), inXYZ.Color()) != 0 ||
            xyy->ConvertColor(spectral, spectrum.Color(), inXYY.Color()) != 0) {
            err << "korvane: converting " << c.name << " failed (see the report above)\n";
            return 1;
        }
        double luminance = 0.0;
        TVect2<double> xy(0.0, 0.0);
        spectral->GetChromaticity(spectrum.Color(), luminance, xy);
        const TVect3<double> chroma = inXYY.Triple();
        const TVect3<double> back3 = back.Triple(), xyz3 = inXYZ.Triple();
        rows.push_back({c.name, Fixed(c.rgb.x), Fixed(c.rgb.y), Fixed(c.rgb.z), Fixed(back3.x),
                        Fixed(back3.y), Fixed(back3.z), Fixed(xyz3.x), Fixed(xyz3.y), Fixed(xyz3.z),
                        Fixed(chroma.x), Fixed(chroma.y), Fixed(luminance, 3),
                        Fixed(spectral->LgtEnergy(spectrum.Color()), 4)});
        if (options.spectra) {
            std::vector<double> s(static_cast<std::size_t>(grid.Count()));
            spectral->LgtToArray(spectrum.Color(), s.data());
            spectra.push_back(std::move(s));
        }
    }
    PrintRows(rows, options.csv, out);
    if (options.spectra)
        PrintSpectra(spectral, colours, spectra, options.csv, out);
    if (!options.csv)
        out << "\nR G B: linear sRGB in; R' G' B': back from the spectrum; luminance in lm per W "
               "of "
               "the spectrum's unit.\nNext: korvane analyze FILE (measured spectra), korvane "
               "convert --help, korvane plot FILE -o OUT.svg\n";
    return 0;
}

} // namespace Korvane::Cli
