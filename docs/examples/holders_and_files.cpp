// Holders: one colour, an array of colours; a holder saved to a plug file and read back.
#include <korvane/hostkit/colormodel/ColorModel.h>
#include <korvane/hostkit/colormodel/ColorModelType.h>
#include <korvane/hostkit/colormodel/SpectralSizing.h>
#include <korvane/hostkit/plugsys/PlugFile.h>
#include <korvane/hostkit/plugsys/PluginLoader.h>
#include <korvane/hostkit/plugsys/PluginLocation.h>

#include <cstdio>
#include <vector>

namespace {

using namespace Korvane;

int Run() {
    const ColorModel& spectral = *TColorModel->FindModel("USpectr");

    // A surface colour: made by the model, sized to its grid, set from plain values.
    TPlugRef<Holder<ISurfColor>> surface = spectral.NewSurfColorHold();
    if (!surface.Get() || SizeSpectralColour(*surface.Get(), spectral) != 0)
        return 1;
    const std::vector<double> grey(static_cast<std::size_t>(spectral.NWaves()), 0.5);
    spectral.SetSurfColor(surface->Color(), grey.data());

    // An array of 100 light colours, each of the grid's length, written in place.
    TPlugRef<ArrayLgtColorHolder> lights = spectral.NewArrayLgtColorHold(0);
    if (!lights.Get() || SizeSpectralArray(*lights.Get(), 100, spectral) != 0)
        return 1;
    spectral.FillColor(*lights->Element(42), 1.0);

    // Plug files: the holder's type identifier, then what its type serializes.
    if (PlugFile::Save(*surface.Get(), "surface.kvp", ArchiveFormat::Text) != 0 ||
        PlugFile::Save(*lights.Get(), "lights.kvp") != 0)
        return 1;
    std::string error;
    PlugRef back = PlugFile::Load("surface.kvp", error);
    if (!back) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    const auto& again = static_cast<Holder<ISurfColor>*>(back.Get())->Color();
    const bool same = spectral.IsEqualSurfColor(surface->Color(), again);
    std::printf("%s read back %s\n", back.Get()->ObjType()->Ident().c_str(),
                same ? "equal" : "changed");
    return same ? 0 : 1;
}

} // namespace

int main() {
    PluginLoader loader;
    if (loader.Load(Korvane::DefaultPluginPath().c_str()) != 0)
        return 1;
    const int result = Run();
    loader.Unload();
    return result;
}
