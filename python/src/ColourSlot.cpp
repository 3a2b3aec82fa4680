#include "python/src/ColourSlot.h"

#include "python/src/Reports.h"
#include "python/src/Session.h"

#include "hostkit/colormodel/SpectralSizing.h"
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

ColourSlot::ColourSlot(const ColorModel& model, Kind kind) : model_(&model), kind_(kind) {
    doubles_ = 1;
    for (long d : ColourShape(model, kind))
        doubles_ *= d;
    void* colour = nullptr;
    switch (kind) {
    case Kind::Light: {
        auto* h = model.NewLgtColorHold();
        holder_ = h;
        if (h)
            colour = light_ = &h->Color();
        break;
    }
    case Kind::Surface: {
        auto* h = model.NewSurfColorHold();
        holder_ = h;
        if (h)
            colour = surface_ = &h->Color();
        break;
    }
    case Kind::Scalar: {
        auto* h = model.NewScalarColorHold();
        holder_ = h;
        if (h)
            colour = scalar_ = &h->Color();
        break;
    }
    }
    if (!colour)
        throw LibraryError(std::string("making a ") + KindWord(kind) + " colour holder of " +
                               model.Name(),
                           "the model made no holder", -1, {});
    if (model.GetModelCode() & kSpectralBit) {
        const unsigned long long mark = Session::Reports().Mark();
        const int status = SizeSpectralColour(*holder_.Get(), model);
        if (status != 0)
            ThrowFailure(Session::Reports(), mark,
                         std::string("sizing a spectral ") + KindWord(kind) + " colour", status);
    }
}

void ColourSlot::Set(const double* values) {
    switch (kind_) {
    case Kind::Light:
        model_->SetLgtColor(*light_, values);
        return;
    case Kind::Surface:
        model_->SetSurfColor(*surface_, values);
        return;
    case Kind::Scalar:
        model_->SetScalarColor(*scalar_, values);
        return;
    }
}

void ColourSlot::Get(double* out) const {
    switch (kind_) {
    case Kind::Light:
        model_->LgtToArray(*light_, out);
        return;
    case Kind::Surface:
        model_->SurfToArray(*surface_, out);
        return;
    case Kind::Scalar:
        model_->ScalarToArray(*scalar_, out);
        return;
    }
}

int ColourSlot::ConvertFrom(const ColourSlot& from) {
    switch (kind_) {
    case Kind::Light:
        return model_->ConvertColor(from.model_, *from.light_, *light_);
    case Kind::Surface:
        return model_->ConvertColor(from.model_, *from.surface_, *surface_);
    case Kind::Scalar:
        break;
    }
    return model_->ConvertColor(from.model_, *from.scalar_, *scalar_);
}

int StoredSamples(const ColorModel& model, Kind kind, const void* colour) {
    if (!(model.GetModelCode() & kSpectralBit))
        return -1;
    return IsStokes(model) ? CountSpectral<StokesPolarization>(kind, colour)
                           : CountSpectral<Unpolarized>(kind, colour);
}

} // namespace Korvane::Py
