// A small host of its own: it loads the Korvane colour-model plug-in, lists the models it
// registered, turns an RGB light into a spectral light on a grid of its choice and back, reads a
// measured spectrum and prints its XYZ, and keeps a colour in a holder that it saves to a plug
// file and reads back.
//
// Usage: korvane_example_host [spectrum.csv [plug-in]]
//   spectrum.csv  wavelength (nm), value; one header line (default: the example's spectrum.csv)
//   plug-in       the plug-in module (default: Korvane::DefaultPluginPath(), the installed one)
#include <korvane/hostkit/base/User.h>
#include <korvane/hostkit/colormodel/ColorModel.h>
#include <korvane/hostkit/colormodel/ColorModelType.h>
#include <korvane/hostkit/colormodel/GridModel.h>
#include <korvane/hostkit/colormodel/SpectralSizing.h>
#include <korvane/hostkit/plugsys/PlugFile.h>
#include <korvane/hostkit/plugsys/PluginLoader.h>
#include <korvane/hostkit/plugsys/PluginLocation.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace Korvane;

namespace {

// A light colour of `model`, in a holder the model makes; spectral colours are sized to the
// model's grid (they start empty).
TPlugRef<Holder<ILgtColor>> NewLight(const ColorModel& model) {
    TPlugRef<Holder<ILgtColor>> holder = model.NewLgtColorHold();
    if (holder.Get() && model.IsSpectral() && SizeSpectralColour(*holder.Get(), model) != 0)
        return TPlugRef<Holder<ILgtColor>>();
    return holder;
}

// Reads "wavelength,value" lines after one header line.
bool ReadSpectrum(const std::string& path, std::vector<double>& waves,
                  std::vector<double>& values) {
    std::ifstream in(path);
    std::string line;
    if (!in || !std::getline(in, line))
        return false;
    while (std::getline(in, line)) {
        if (line.empty())
            continue;
        std::istringstream cells(line);
        double w = 0.0, v = 0.0;
        char comma = 0;
        if (!(cells >> w >> comma >> v) || comma != ',')
            return false;
        waves.push_back(w);
        values.push_back(v);
    }
    return !waves.empty();
}

int Run(const std::string& spectrumPath) {
    // 1. The models the plug-in registered, by name (identifier) and code.
    std::printf("models:\n");
    for (const ColorModel* m : TColorModel->Models())
        std::printf("  %-10s code %3d  values per channel %d\n", m->Name().c_str(),
                    m->GetModelCode(), m->NWaves());
    const ColorModel* rgb = TColorModel->FindModel("URGB");
    if (!rgb)
        return 1;

    // 2. An RGB light into a spectral light on our own grid (400..700 nm by 20), and back.
    std::string error;
    PlugRef gridModel = MakeSpectralModel("USpectr", EvenGrid(400.0, 20.0, 16), error);
    if (!gridModel) {
        std::fprintf(stderr, "example: %s\n", error.c_str());
        return 1;
    }
    const auto& spectral = *static_cast<const ColorModel*>(gridModel.Get());
    TPlugRef<Holder<ILgtColor>> in = NewLight(*rgb), light = NewLight(spectral),
                                back = NewLight(*rgb);
    if (!in.Get() || !light.Get() || !back.Get())
        return 1;
    const double orange[3] = {0.8, 0.4, 0.1};
    rgb->SetLgtColor(in->Color(), orange);
    if (spectral.ConvertColor(rgb, in->Color(), light->Color()) != 0 ||
        rgb->ConvertColor(&spectral, light->Color(), back->Color()) != 0)
        return 1;
    std::vector<double> samples(static_cast<std::size_t>(spectral.NWaves()));
    spectral.LgtToArray(light->Color(), samples.data());
    double rgbBack[3];
    rgb->LgtToArray(back->Color(), rgbBack);
    std::printf("\nRGB light (%.3f, %.3f, %.3f) on %d wavelengths %.0f..%.0f nm:\n ", orange[0],
                orange[1], orange[2], spectral.NWaves(), spectral.GetWaveLengths()[0],
                spectral.GetWaveLengths()[spectral.NWaves() - 1]);
    for (double s : samples)
        std::printf(" %.4f", s);
    std::printf("\nback to RGB: (%.6f, %.6f, %.6f)\n", rgbBack[0], rgbBack[1], rgbBack[2]);

    // 3. A measured spectrum: a model on the file's own grid, a light colour set from the values.
    std::vector<double> waves, values;
    if (!ReadSpectrum(spectrumPath, waves, values)) {
        std::fprintf(stderr, "example: cannot read a spectrum from %s\n", spectrumPath.c_str());
        return 1;
    }
    PlugRef fileModel = MakeSpectralModel("USpectr", waves, error);
    if (!fileModel) {
        std::fprintf(stderr, "example: %s: %s\n", spectrumPath.c_str(), error.c_str());
        return 1;
    }
    const auto& measured = *static_cast<const ColorModel*>(fileModel.Get());
    TPlugRef<Holder<ILgtColor>> lamp = NewLight(measured);
    if (!lamp.Get())
        return 1;
    measured.SetLgtColor(lamp->Color(), values.data());
    TVect3<double> xyz;
    double luminance = 0.0;
    TVect2<double> xy(0.0, 0.0);
    if (measured.LgtColorToXYZ(lamp->Color(), xyz) != 0)
        return 1;
    measured.GetChromaticity(lamp->Color(), luminance, xy);
    std::printf("\n%s: %zu wavelengths\n  XYZ (%.6f, %.6f, %.6f)  xy (%.4f, %.4f)\n",
                spectrumPath.c_str(), waves.size(), xyz.x, xyz.y, xyz.z, xy.x, xy.y);

    // 4. The spectral light kept in its holder, saved to a plug file and read back.
    const char* file = "example-colour.kvp";
    if (PlugFile::Save(*light.Get(), file, ArchiveFormat::Text) != 0)
        return 1;
    PlugRef loaded = PlugFile::Load(file, error);
    if (!loaded) {
        std::fprintf(stderr, "example: %s\n", error.c_str());
        return 1;
    }
    const bool same = spectral.IsEqualLgtColor(
        light->Color(), static_cast<Holder<ILgtColor>*>(loaded.Get())->Color());
    std::printf("\nsaved the light to %s (type %s); read back %s\n", file,
                light->ObjType()->Ident().c_str(), same ? "equal" : "DIFFERENT");
    return same ? 0 : 1;
} // every model and holder of the plug-in is released here, before the plug-in goes

} // namespace

int main(int argc, char** argv) {
    const std::string spectrum = argc > 1 ? argv[1] : EXAMPLE_SPECTRUM;
    const std::string plugin = argc > 2 ? argv[2] : DefaultPluginPath();
    SetReportSink(SilentSink()); // we read the report log ourselves below

    PluginLoader loader;
    if (loader.Load(plugin.c_str()) != 0) {
        std::fprintf(stderr, "example: %s\n", loader.Error().c_str());
        return 1;
    }
    std::printf("plug-in %s, version %d\n", loader.Path().c_str(), loader.VersionId());
    const int result = Run(spectrum);
    loader.Unload();

    // The report log keeps the last ReportLog::Capacity() reports; Dropped() counts older ones.
    std::printf("\nreports: %zu kept, %llu dropped\n", ReportLog::Count(), ReportLog::Dropped());
    for (const Report& r : ReportLog::Entries())
        std::printf("  #%llu %s\n", r.sequence, r.text.c_str());
    return result;
}
