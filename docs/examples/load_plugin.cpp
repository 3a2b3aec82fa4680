// Loading the plug-in, listing its models by identifier and code, unloading it.
#include <korvane/hostkit/colormodel/ColorModel.h>
#include <korvane/hostkit/colormodel/ColorModelType.h>
#include <korvane/hostkit/plugsys/PluginLoader.h>
#include <korvane/hostkit/plugsys/PluginLocation.h>

#include <cstdio>

int main() {
    using namespace Korvane;
    PluginLoader loader;
    // KORVANE_PLUGIN when set, else the plug-in installed beside the host kit library.
    if (loader.Load(DefaultPluginPath().c_str()) != 0) {
        std::fprintf(stderr, "%s\n", loader.Error().c_str());
        return 1;
    }
    for (const ColorModel* m : TColorModel->Models())
        std::printf("%-10s code %3d\n", m->Name().c_str(), m->GetModelCode());

    const ColorModel* rgb = TColorModel->FindModel("URGB"); // by identifier
    const bool found = rgb && rgb->IsRGB() && rgb->GetModelCode() == (32 | 1);

    loader.Unload(); // TermClasses: every model pointer above is now dangling
    return found ? 0 : 1;
}
