#include "python/src/HolderFiles.h"

#include "python/src/Session.h"

#include "hostkit/colormodel/ColorModelType.h"

namespace Korvane::Py {
namespace {

bool EndsWith(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

// The shape of one colour with the sample count the spectral colour actually stores.
std::vector<long> StoredShape(const ColorModel& model, Kind kind, const void* colour) {
    std::vector<long> shape = ColourShape(model, kind);
    const int samples = StoredSamples(model, kind, colour);
    if (samples >= 0)
        shape[0] = samples;
    return shape;
}

std::size_t Product(const std::vector<long>& shape) {
    std::size_t n = 1;
    for (long d : shape)
        n *= static_cast<std::size_t>(d);
    return n;
}

} // namespace

void SaveHolder(const std::string& path, const ColorModel& model, Kind kind, const double* values,
                ArchiveFormat format) {
    ColourSlot slot(model, kind);
    slot.Set(values);
    const unsigned long long mark = Session::Reports().Mark();
    const int status = PlugFile::Save(slot.HolderPlug(), path.c_str(), format);
    if (status != 0)
        ThrowFailure(Session::Reports(), mark, "saving " + path, status);
}

LoadedHolder LoadHolder(const std::string& path) {
    std::string error;
    PlugRef plug = PlugFile::Load(path.c_str(), error);
    if (!plug)
        throw LibraryError("loading " + path, error, -1, {});
    LoadedHolder out;
    out.type = plug.Get()->ObjType()->Ident();
    const std::string suffix = "ColorHold";
    if (!EndsWith(out.type, suffix))
        throw LibraryError("loading " + path, "a " + out.type + " plug is not a colour holder", -1,
                           {});
    std::string stem = out.type.substr(0, out.type.size() - suffix.size());
    struct Word {
        const char* word;
        const char* kind;
    };
    // "DualLgt" before "Lgt": the longer word wins.
    static const Word kWords[] = {{"DualLgt", "dual light"},
                                  {"Lgt", "light"},
                                  {"Ray", "ray"},
                                  {"Surf", "surface"},
                                  {"Scalar", "scalar"}};
    for (const Word& w : kWords)
        if (EndsWith(stem, w.word)) {
            out.kind = w.kind;
            out.model = stem.substr(0, stem.size() - std::string(w.word).size());
            break;
        }
    if (out.kind.empty() || out.kind == "dual light")
        throw LibraryError("loading " + path,
                           "a " + out.type +
                               " holder is not read here (light, ray, surface and "
                               "scalar holders are)",
                           -1, {});
    const ColorModel& model = Session::Get().Model(out.model);
    Plug* p = plug.Get();
    const PlugType* base = out.kind == "light"     ? Holder<ILgtColor>::ClassType()
                           : out.kind == "ray"     ? Holder<IRayColor>::ClassType()
                           : out.kind == "surface" ? Holder<ISurfColor>::ClassType()
                                                   : Holder<IScalarColor>::ClassType();
    if (!p->ObjType()->IsKindOf(base))
        throw LibraryError("loading " + path, "a " + out.type + " plug is not a colour holder", -1,
                           {});
    if (out.kind == "light" || out.kind == "ray") {
        const ILgtColor* light;
        const IRayColor* ray = nullptr;
        if (out.kind == "light") {
            light = &static_cast<Holder<ILgtColor>*>(p)->Color();
        } else {
            ray = &static_cast<Holder<IRayColor>*>(p)->Color();
            light = &LightPart(*ray);
        }
        out.shape = StoredShape(model, Kind::Light, light);
        out.values.resize(Product(out.shape));
        model.LgtToArray(*light, out.values.data());
        TVect3<double> xort;
        if (ray && model.GetXOrt(*ray, xort))
            out.xort = {xort.x, xort.y, xort.z};
    } else if (out.kind == "surface") {
        const ISurfColor& c = static_cast<Holder<ISurfColor>*>(p)->Color();
        out.shape = StoredShape(model, Kind::Surface, &c);
        out.values.resize(Product(out.shape));
        model.SurfToArray(c, out.values.data());
    } else {
        const IScalarColor& c = static_cast<Holder<IScalarColor>*>(p)->Color();
        out.shape = StoredShape(model, Kind::Scalar, &c);
        out.values.resize(Product(out.shape));
        model.ScalarToArray(c, out.values.data());
    }
    return out;
}

} // namespace Korvane::Py
