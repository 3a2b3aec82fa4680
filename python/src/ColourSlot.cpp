#include "python/src/ColourSlot.h"

#include "python/src/Reports.h"
#include "python/src/Session.h"

#include "plugin/models/ColourAccess.h"

#include <stdexcept>

namespace Korvane::Py {
namespace {

// Model kind bits of GetModelCode.
constexpr int kBWBit = 16;
constexpr int kSpectralBit = 64;

bool IsStokes(const ColorModel& m) {
    return m.HasPolarization();
}

// The spectral colour behind an interface, for the count of its distribution; Pol is the model's
// policy. (Reading a count needs the plug-in's colour layout; sizing goes through the holder's
// type, SizeSpectralColour.)
template <class Pol, class I>
auto& SpectralValue(I& colour) {
    return ColourAccess::Value<SpectralModel<Pol>>(colour);
}

template <class Pol>
int CountSpectral(Kind kind, const void* colour) {
    switch (kind) {
    case Kind::Light:
        return SpectralValue<Pol>(*static_cast<const ILgtColor*>(colour)).Count();
    case Kind::Surface:
        return SpectralValue<Pol>(*static_cast<const ISurfColor*>(colour)).Count();
    case Kind::Scalar:
        break;
    }
    return SpectralValue<Pol>(*static_cast<const IScalarColor*>(colour)).Count();
}

} // namespace

Kind ParseKind(const std::string& name) {
    if (name == "light")
        return Kind::Light;
    if (name == "surface")
        return Kind::Surface;
    if (name == "scalar")
        return Kind::Scalar;
    throw std::invalid_argument("kind must be \"light\", \"surface\" or \"scalar\", not \"" + name +
                                "\"");
}

const char* KindWord(Kind kind) {
    switch (kind) {
    case Kind::Light:
        return "light";
    case Kind::Surface:
        return "surface";
    case Kind::Scalar:
        break;
    }
    return "scalar";
}

std::vector<long> ColourShape(const ColorModel& model, Kind kind) {
    const int code = model.GetModelCode();
    std::vector<long> shape;
    if (code & kSpectralBit)
        shape.push_back(model.NWaves());
    else if (!(code & kBWBit))
        shape.push_back(3); // RGB, XYZ, xyY
    if (kind == Kind::Scalar || !IsStokes(model))
        return shape;
    shape.push_back(4); // a Stokes vector per channel or wavelength
    if (kind == Kind::Surface)
        shape.push_back(4); // a Mueller matrix
    return shape;
}

ColourSlot::ColourSlot(const ColorModel& model, Kind kind)
    : ColourSlot(model, kind, Session::Reports().Mark()) {}

ColourSlot::ColourSlot(const ColorModel& model, Kind kind, unsigned long long reportMark)
    : ModelColour(model, kind) {
    for (long d : ColourShape(model, kind))
        doubles_ *= d;
    if (Status() == kNoHolder)
        throw LibraryError(std::string("making a ") + KindWord(kind) + " colour holder of " +
                               model.Name(),
                           "the model made no holder", -1, {});
    if (Status() != 0)
        ThrowFailure(Session::Reports(), reportMark,
                     std::string("sizing a spectral ") + KindWord(kind) + " colour", Status());
}

int StoredSamples(const ColorModel& model, Kind kind, const void* colour) {
    if (!(model.GetModelCode() & kSpectralBit))
        return -1;
    return IsStokes(model) ? CountSpectral<StokesPolarization>(kind, colour)
                           : CountSpectral<Unpolarized>(kind, colour);
}

} // namespace Korvane::Py
