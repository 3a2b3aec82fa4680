#include "hostkit/colormodel/GridModel.h"

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/colormodel/ColorModelType.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace Korvane {

std::vector<double> EvenGrid(double first, double step, int count) {
    std::vector<double> waves;
    if (count < 1)
        return waves;
    waves.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        waves.push_back(first + step * i);
    return waves;
}

bool IsEquidistantGrid(const std::vector<double>& waves) {
    // The spectral model's own rule (BSpectralModel::CheckWaves), so that a model made here
    // compares equal (IsEqual) with one that set the same grid itself.
    constexpr double kRelative = 1.192092896e-7;
    for (std::size_t i = 2; i < waves.size(); ++i) {
        const double dprev = waves[i - 1] - waves[i - 2];
        const double d = waves[i] - waves[i - 1];
        if (std::fabs(d - dprev) > (d + dprev) * kRelative)
            return false;
    }
    return true;
}

PlugRef MakeSpectralModel(const char* typeIdent, const std::vector<double>& waves,
                          std::string& error) {
    const std::string ident = typeIdent ? typeIdent : "";
    PlugType* type = PlugType::Find(ident.c_str());
    if (!type) {
        error = "no plug type \"" + ident + "\" is registered (is the plug-in loaded?)";
        return PlugRef();
    }
    if (!TColorModel || !type->IsKindOf(TColorModel)) {
        error = "the plug type \"" + ident + "\" is not a colour-model type";
        return PlugRef();
    }
    if (waves.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        error = "a grid of " + std::to_string(waves.size()) + " wavelengths is too long";
        return PlugRef();
    }

    BinarySerializer writer;
    writer.OpenGroup("Wavelengths");
    auto n = static_cast<std::int32_t>(waves.size());
    if (n != 0) {
        writer.SerializeCount(n, 1);
        std::vector<double> copy = waves; // the exchange takes a writable array
        writer.Serialize(copy.data(), n);
    }
    writer.CloseGroup();
    bool equidistant = IsEquidistantGrid(waves);
    writer.Serialize("EquiDistant", equidistant, false);
    writer.Finish();

    // As for a plug file: a model made while an allocation failed on this thread is not handed
    // out, even when its own code absorbed the failure (tables left empty, no converter).
    const long long failures = MemStats::FailuresOnThisThread();
    const std::string noMemory = "memory ran out while the model was made on the grid";
    PlugRef model = type->NewInstance();
    if (!model) {
        error = "the type \"" + ident + "\" made no model (out of memory)";
        return PlugRef();
    }
    const auto* made = static_cast<const ColorModel*>(model.Get());
    if (!made->IsSpectral()) {
        error = "the type \"" + ident + "\" makes models that are not spectral";
        return PlugRef();
    }
    BinarySerializer reader(writer.Bytes());
    const int read = type->SerializeInstance(model.Get(), reader);
    reader.Finish();
    if (MemStats::FailuresOnThisThread() != failures) {
        error = noMemory;
        return PlugRef();
    }
    if (reader.Failed() || read != 0) {
        error =
            "the grid was refused: " +
            (reader.Error().empty() ? std::string("code ") + std::to_string(read) : reader.Error());
        return PlugRef();
    }
    model.Get()->OnLoad(static_cast<int>(BinarySerializer::kVersion));
    if (MemStats::FailuresOnThisThread() != failures) {
        error = noMemory;
        return PlugRef();
    }
    return model;
}

} // namespace Korvane
