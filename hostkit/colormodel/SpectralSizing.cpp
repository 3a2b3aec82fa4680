#include "hostkit/colormodel/SpectralSizing.h"

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModel.h"

#include <cstdint>
#include <string>

namespace Korvane {
namespace {

// The shape of one colour in the archive: doubles per sample, and whether a reference axis
// (one array of 3 doubles) follows the samples.
struct ColourShape {
    int perSample;
    bool axis;
};

// Zero samples of one spectral colour as the holders exchange it: the count, then every double
// of every sample one by one, then the axis of a polarized ray colour.
void WriteColour(BinarySerializer& w, std::int32_t samples, ColourShape shape) {
    w.SerializeCount(samples, shape.perSample);
    for (std::int64_t i = 0; i < std::int64_t{samples} * shape.perSample; ++i) {
        double zero = 0.0;
        w.Serialize(zero);
    }
    if (shape.axis) {
        double axis[3] = {1.0, 0.0, 0.0};
        w.Serialize(axis, 3);
    }
}

// Checks the model; 0, or the code of the report made.
int CheckModel(const char* what, const ColorModel& model) {
    if (!model.IsSpectral())
        return User()->InternalError("%s: the model %s is not spectral", what,
                                     model.Name().c_str());
    return 0;
}

// Lets the holder's type read the archive; 0, or the code of the report made.
int ReadInto(const char* what, Plug& holder, BinarySerializer& writer) {
    writer.Finish();
    PlugType* type = holder.ObjType();
    BinarySerializer reader(writer.Bytes());
    const int read = type->SerializeInstance(&holder, reader);
    reader.Finish();
    if (!reader.Failed() && read == 0)
        return 0;
    if (reader.Error().find("memory") != std::string::npos)
        return User()->ErrorNoMemory(-1);
    return User()->InternalError("%s: the holder of type %s did not take the colours: %s", what,
                                 type->Ident().c_str(),
                                 reader.Failed() ? reader.Error().c_str() : "refused");
}

bool IsHolderOf(const PlugType* type, PlugType* kind) {
    return type && kind && type->IsKindOf(kind);
}

} // namespace

int SizeSpectralColour(Plug& holder, const ColorModel& model) {
    const char* what = "SizeSpectralColour";
    if (const int bad = CheckModel(what, model))
        return bad;
    const PlugType* type = holder.ObjType();
    const bool stokes = model.HasPolarization();
    ColourShape shape{stokes ? 4 : 1, false};
    if (IsHolderOf(type, Holder<ISurfColor>::ClassType()))
        shape.perSample = stokes ? 16 : 1;
    else if (IsHolderOf(type, Holder<IScalarColor>::ClassType()))
        shape.perSample = 1;
    else if (IsHolderOf(type, Holder<IRayColor>::ClassType()))
        shape.axis = stokes;
    else if (!IsHolderOf(type, Holder<ILgtColor>::ClassType()) &&
             !IsHolderOf(type, Holder<IDualLgtColor>::ClassType()))
        return User()->InternalError("%s: the plug of type %s is not a single-colour holder", what,
                                     type ? type->Ident().c_str() : "(none)");
    BinarySerializer w;
    w.OpenGroup("Color");
    WriteColour(w, model.NWaves(), shape);
    w.CloseGroup();
    return ReadInto(what, holder, w);
}

int SizeSpectralArray(ArrayLgtColorHolder& holder, int count, const ColorModel& model) {
    const char* what = "SizeSpectralArray";
    if (const int bad = CheckModel(what, model))
        return bad;
    if (count < 0)
        return User()->InternalError("%s: count %d < 0", what, count);
    const ColourShape shape{model.HasPolarization() ? 4 : 1, false};
    BinarySerializer w;
    w.OpenGroup("Data");
    std::int32_t n = count;
    w.Serialize(n);
    for (int i = 0; i < count; ++i)
        WriteColour(w, model.NWaves(), shape);
    w.CloseGroup();
    return ReadInto(what, holder, w);
}

int SizeSpectralMatrix(MatrixLgtColorHolder& holder, int rows, int cols, const ColorModel& model) {
    const char* what = "SizeSpectralMatrix";
    if (const int bad = CheckModel(what, model))
        return bad;
    if (rows < 0 || cols < 0)
        return User()->InternalError("%s: %d x %d is not a matrix size", what, rows, cols);
    const ColourShape shape{model.HasPolarization() ? 4 : 1, false};
    BinarySerializer w;
    w.OpenGroup("Data");
    std::int32_t r = rows;
    std::int32_t c = cols;
    std::int64_t elements = std::int64_t{rows} * cols;
    w.Serialize(r);
    w.Serialize(c);
    w.Serialize(elements);
    for (std::int64_t i = 0; i < elements; ++i)
        WriteColour(w, model.NWaves(), shape);
    w.CloseGroup();
    return ReadInto(what, holder, w);
}

} // namespace Korvane
