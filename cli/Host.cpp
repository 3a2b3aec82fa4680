#include "cli/Host.h"

#include "cli/Numbers.h"
#include "cli/ToolError.h"

#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/colormodel/GridModel.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"

#include <cmath>
#include <cstdio>

namespace Korvane::Cli {
namespace {

std::string Num(double v) {
    return Shortest(v);
}

// Gives the spectral distribution behind `c` the model's length (a holder may start empty). The
// distribution classes are the plug-in's; SetLength is reached through their virtual table.
template <class Pol>
int SizeSpectral(int n, Kind kind, void* c) {
    using M = SpectralModel<Pol>;
    switch (kind) {
    case Kind::Light:
        return ColourAccess::Value<M>(*static_cast<ILgtColor*>(c)).Distr().SetLength(n);
    case Kind::Surface:
        return ColourAccess::Value<M>(*static_cast<ISurfColor*>(c)).Distr().SetLength(n);
    case Kind::Scalar:
        return ColourAccess::Value<M>(*static_cast<IScalarColor*>(c)).Distr().SetLength(n);
    }
    return -1;
}

void* InterfaceOf(Plug* p, Kind kind) {
    switch (kind) {
    case Kind::Light:
        return &static_cast<Holder<ILgtColor>*>(p)->Color();
    case Kind::Surface:
        return &static_cast<Holder<ISurfColor>*>(p)->Color();
    case Kind::Scalar:
        return &static_cast<Holder<IScalarColor>*>(p)->Color();
    }
    return nullptr;
}

template <class Pol>
std::vector<double> SpectralValues(Kind kind, void* c) {
    using M = SpectralModel<Pol>;
    const auto take = [](const auto& d) {
        using Comp = typename std::decay_t<decltype(d)>::Component;
        // The components through the view's own accessors (host templates): the distribution's
        // members are the plug-in's, which the tool does not link.
        const auto* data = d.Data();
        const double* v = data ? data[0].v : nullptr;
        return v ? std::vector<double>(v, v + d.Count() * Comp::kSize) : std::vector<double>();
    };
    switch (kind) {
    case Kind::Light:
        return take(ColourAccess::Value<M>(*static_cast<ILgtColor*>(c)).Distr());
    case Kind::Surface:
        return take(ColourAccess::Value<M>(*static_cast<ISurfColor*>(c)).Distr());
    case Kind::Scalar:
        return take(ColourAccess::Value<M>(*static_cast<IScalarColor*>(c)).Distr());
    }
    return {};
}

} // namespace

std::vector<double> ValuesOf(const ColorModel* model, Kind kind, Plug* holder) {
    void* c = InterfaceOf(holder, kind);
    if (model->IsSpectral())
        return model->HasPolarization() ? SpectralValues<StokesPolarization>(kind, c)
                                        : SpectralValues<Unpolarized>(kind, c);
    int per = 1;
    if (model->HasPolarization())
        per = kind == Kind::Light ? 4 : kind == Kind::Surface ? 16 : 1;
    std::vector<double> out(static_cast<std::size_t>(model->NWaves() * per), 0.0);
    switch (kind) {
    case Kind::Light:
        model->LgtToArray(*static_cast<const ILgtColor*>(c), out.data());
        break;
    case Kind::Surface:
        model->SurfToArray(*static_cast<const ISurfColor*>(c), out.data());
        break;
    case Kind::Scalar:
        model->ScalarToArray(*static_cast<const IScalarColor*>(c), out.data());
        break;
    }
    return out;
}

std::vector<double> GridFromRange(double first, double last, double step,
                                  const std::string& option) {
    if (!std::isfinite(first) || !std::isfinite(last) || !std::isfinite(step))
        UsageError(option + " takes finite numbers: first last step in nm");
    if (!(first > 0.0) || !(step > 0.0) || !(last >= first))
        UsageError(option + " needs 0 < first <= last and a positive step (nm)");
    const double count = std::floor((last - first) / step + 1e-6) + 1.0;
    if (!(count <= kMaxGridPoints))
        UsageError(option + " " + Num(first) + " " + Num(last) + " " + Num(step) + " makes " +
                   (std::isfinite(count) ? Num(count) : std::string("too many")) +
                   " wavelengths; the tool takes at most " + std::to_string(kMaxGridPoints));
    std::vector<double> nm;
    for (int i = 0; i < static_cast<int>(count); ++i)
        nm.push_back(first + step * i);
    for (std::size_t i = 1; i < nm.size(); ++i)
        if (!(nm[i] > nm[i - 1])) // a step lost to rounding beside a large first wavelength
            UsageError(option + " step " + Num(step) + " is too small for wavelengths near " +
                       Num(first));
    return nm;
}

void CheckGridSize(std::size_t count, const std::string& what) {
    if (count > static_cast<std::size_t>(kMaxGridPoints))
        DataError(what + " has " + std::to_string(count) +
                  " wavelengths; the tool's spectral models take at most " +
                  std::to_string(kMaxGridPoints));
}

const ColorModel* RegisteredModel(const char* ident) {
    const ColorModel* m = TColorModel ? TColorModel->FindModel(ident) : nullptr;
    if (!m)
        DataError(std::string("the plug-in registered no model ") + ident);
    return m;
}

PlugRef SpectralModelOn(const std::vector<double>& nm, bool stokes) {
    CheckGridSize(nm.size(), "the grid");
    const char* ident = stokes ? "StkSpectr" : "USpectr";
    const std::string size = "the grid of " + std::to_string(nm.size()) + " wavelengths";
    const ReportMarker mark = ReportMark();
    std::string error;
    PlugRef model = MakeSpectralModel(ident, nm, error);
    if (!model)
        DataError("cannot make a spectral model on " + size + ": " + error);
    const auto* m = static_cast<const ColorModel*>(model.Get());
    const std::string reports = ReportsSince(mark);
    if (m->NWaves() != static_cast<int>(nm.size()) || !reports.empty())
        DataError("the spectral model refused " + size + (reports.empty() ? "" : ": " + reports));
    return model;
}

const char* KindName(Kind kind) {
    switch (kind) {
    case Kind::Light:
        return "light";
    case Kind::Surface:
        return "surface";
    case Kind::Scalar:
        return "scalar";
    }
    return "?";
}

HeldColour::HeldColour(const ColorModel* model, Kind kind) : model_(model), kind_(kind) {
    Plug* h = nullptr;
    switch (kind) {
    case Kind::Light:
        h = model->NewLgtColorHold();
        break;
    case Kind::Surface:
        h = model->NewSurfColorHold();
        break;
    case Kind::Scalar:
        h = model->NewScalarColorHold();
        break;
    }
    holder_ = h;
    if (!holder_)
        DataError(std::string("out of memory making a ") + KindName(kind) + " colour holder");
    if (model->IsSpectral()) {
        const int n = model->NWaves();
        const int rc = model->HasPolarization()
                           ? SizeSpectral<StokesPolarization>(n, kind, Interface())
                           : SizeSpectral<Unpolarized>(n, kind, Interface());
        if (rc != 0)
            DataError("out of memory sizing a spectral colour of " + std::to_string(n) +
                      " wavelengths");
    }
}

void* HeldColour::Interface() const {
    return InterfaceOf(holder_.Get(), kind_);
}

int HeldColour::ValueCount() const {
    int per = 1;
    if (model_->HasPolarization())
        per = kind_ == Kind::Light ? 4 : kind_ == Kind::Surface ? 16 : 1;
    return model_->NWaves() * per;
}

void HeldColour::Set(const std::vector<double>& values) {
    switch (kind_) {
    case Kind::Light:
        model_->SetLgtColor(*static_cast<ILgtColor*>(Interface()), values.data());
        break;
    case Kind::Surface:
        model_->SetSurfColor(*static_cast<ISurfColor*>(Interface()), values.data());
        break;
    case Kind::Scalar:
        model_->SetScalarColor(*static_cast<IScalarColor*>(Interface()), values.data());
        break;
    }
}

std::vector<double> HeldColour::Get() const {
    return ValuesOf(model_, kind_, holder_.Get());
}

int HeldColour::ConvertFrom(const HeldColour& from) {
    switch (kind_) {
    case Kind::Light:
        return model_->ConvertColor(from.model_, *static_cast<const ILgtColor*>(from.Interface()),
                                    *static_cast<ILgtColor*>(Interface()));
    case Kind::Surface:
        return model_->ConvertColor(from.model_, *static_cast<const ISurfColor*>(from.Interface()),
                                    *static_cast<ISurfColor*>(Interface()));
    case Kind::Scalar:
        return model_->ConvertColor(from.model_,
                                    *static_cast<const IScalarColor*>(from.Interface()),
                                    *static_cast<IScalarColor*>(Interface()));
    }
    return -1;
}

ReportMarker ReportMark() {
    const std::vector<Report> kept = ReportLog::Entries();
    return kept.empty() ? 0 : kept.back().sequence;
}

std::string ReportsSince(ReportMarker mark) {
    std::string out;
    for (const Report& r : ReportLog::Entries()) {
        if (r.sequence <= mark || r.kind == ReportKind::Log)
            continue;
        if (!out.empty())
            out += "; ";
        out += r.text;
    }
    return out;
}

} // namespace Korvane::Cli
