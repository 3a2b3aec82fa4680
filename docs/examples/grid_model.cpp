// A spectral model on the host's own grid; an RGB light into it, resampled onto another grid,
// and its XYZ.
#include <korvane/hostkit/colormodel/ColorModel.h>
#include <korvane/hostkit/colormodel/ColorModelType.h>
#include <korvane/hostkit/colormodel/GridModel.h>
#include <korvane/hostkit/colormodel/SpectralSizing.h>
#include <korvane/hostkit/plugsys/PluginLoader.h>
#include <korvane/hostkit/plugsys/PluginLocation.h>

#include <cstdio>

namespace {

using namespace Korvane;

// A light colour of `model` in a new holder, sized when the model is spectral.
TPlugRef<Holder<ILgtColor>> NewLight(const ColorModel& model) {
    TPlugRef<Holder<ILgtColor>> holder = model.NewLgtColorHold();
    if (holder.Get() && model.IsSpectral() && SizeSpectralColour(*holder.Get(), model) != 0)
        return {};
    return holder;
}

int Run() {
    std::string error;
    PlugRef fine = MakeSpectralModel("USpectr", EvenGrid(380.0, 5.0, 81), error);
    PlugRef coarse = MakeSpectralModel("USpectr", EvenGrid(400.0, 20.0, 16), error);
    if (!fine || !coarse) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    const auto& a = *static_cast<const ColorModel*>(fine.Get());
    const auto& b = *static_cast<const ColorModel*>(coarse.Get());
    const ColorModel& rgb = *TColorModel->FindModel("URGB");

    TPlugRef<Holder<ILgtColor>> in = NewLight(rgb), onA = NewLight(a), onB = NewLight(b);
    if (!in.Get() || !onA.Get() || !onB.Get())
        return 1;
    const double red[3] = {1.0, 0.0, 0.0};
    rgb.SetLgtColor(in->Color(), red);
    if (a.ConvertColor(&rgb, in->Color(), onA->Color()) != 0 || // reconstruction on a's grid
        b.ConvertColor(&a, onA->Color(), onB->Color()) != 0)    // resampled onto b's grid
        return 1;
    // XYZ through the XYZ model, which integrates each spectrum over its own grid.
    const ColorModel& xyz = *TColorModel->FindModel("XYZ");
    TPlugRef<Holder<ILgtColor>> xyzA = NewLight(xyz), xyzB = NewLight(xyz);
    if (!xyzA.Get() || !xyzB.Get() || xyz.ConvertColor(&a, onA->Color(), xyzA->Color()) != 0 ||
        xyz.ConvertColor(&b, onB->Color(), xyzB->Color()) != 0)
        return 1;
    double va[3], vb[3];
    xyz.LgtToArray(xyzA->Color(), va);
    xyz.LgtToArray(xyzB->Color(), vb);
    std::printf("XYZ on %d wavelengths (%.6f, %.6f, %.6f)\n", a.NWaves(), va[0], va[1], va[2]);
    std::printf("XYZ on %d wavelengths (%.6f, %.6f, %.6f)\n", b.NWaves(), vb[0], vb[1], vb[2]);
    return 0;
} // holders and models go before the plug-in does

} // namespace

int main() {
    PluginLoader loader;
    if (loader.Load(DefaultPluginPath().c_str()) != 0)
        return 1;
    const int result = Run();
    loader.Unload();
    return result;
}
