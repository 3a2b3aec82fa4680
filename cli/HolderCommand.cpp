#include "cli/HolderCommand.h"

#include "cli/Convert.h"
#include "cli/Host.h"
#include "cli/Inputs.h"
#include "cli/Numbers.h"
#include "cli/ToolError.h"
#include "cli/io/LineReader.h"

#include "hostkit/base/BinarySerializer.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/colormodel/SpectralSizing.h"
#include "hostkit/plugsys/PlugFile.h"
#include "plugin/colour/ColourValues.h"
#include "plugin/models/ColourAccess.h"

#include <cmath>
#include <cstdint>

namespace Korvane::Cli {
namespace {

// The holder families a model makes: five single-colour kinds and the light-colour array and
// matrix (the ray-colour array has no plug type of its own, so it cannot be saved).
enum class Family { Light, Surface, Scalar, Ray, Dual, Array, Matrix };

const char* FamilyName(Family f) {
    switch (f) {
    case Family::Light:
        return "light";
    case Family::Surface:
        return "surface";
    case Family::Scalar:
        return "scalar";
    case Family::Ray:
        return "ray";
    case Family::Dual:
        return "dual";
    case Family::Array:
        return "light array";
    case Family::Matrix:
        return "light matrix";
    }
    return "?";
}

Family KindFrom(const std::string& name) {
    for (Family f : {Family::Light, Family::Surface, Family::Scalar, Family::Ray, Family::Dual})
        if (name == FamilyName(f))
            return f;
    UsageError("--kind takes light, surface, scalar, ray or dual, not '" + name + "'");
}

// Light values of a spectral dual-light colour: its distribution's doubles, read or written in
// place, through the storage view's own accessors (host templates): the distribution's members
// are the plug-in's, which the tool does not link.
template <class Pol>
double* DualValues(IDualLgtColor& c, int& count) {
    auto& v = ColourAccess::Value<SpectralModel<Pol>>(c);
    using Comp = typename std::decay_t<decltype(v)>::Component;
    count = v.Count() * Comp::kSize;
    auto* data = v.Distr().Data();
    return data ? data[0].v : nullptr;
}

double* DualValues(const ColorModel* m, IDualLgtColor& c, int& count) {
    return m->HasPolarization() ? DualValues<StokesPolarization>(c, count)
                                : DualValues<Unpolarized>(c, count);
}

// A fixed-size dual-light colour has the light colour's layout (same components, same order),
// so the model's light operations read and write it.
ILgtColor& DualAsLight(IDualLgtColor& c) {
    return reinterpret_cast<ILgtColor&>(c);
}

// The values of a light colour of `m`: a spectral one gives what its distribution holds.
std::vector<double> LightValues(const ColorModel* m, ILgtColor& c) {
    if (!m->IsSpectral()) {
        std::vector<double> out(
            static_cast<std::size_t>(m->NWaves() * (m->HasPolarization() ? 4 : 1)));
        m->LgtToArray(c, out.data());
        return out;
    }
    const auto take = [](auto& v) {
        using Comp = typename std::decay_t<decltype(v)>::Component;
        const auto* data = v.Distr().Data(); // not Values(): the plug-in's member, not linked
        const double* d = data ? data[0].v : nullptr;
        return d ? std::vector<double>(d, d + v.Count() * Comp::kSize) : std::vector<double>();
    };
    return m->HasPolarization() ? take(ColourAccess::Value<SpectralModel<StokesPolarization>>(c))
                                : take(ColourAccess::Value<SpectralModel<Unpolarized>>(c));
}

void PrintValues(std::ostream& out, const std::string& label, const std::vector<double>& v) {
    out << label << " (" << v.size() << "):";
    for (double d : v)
        out << ' ' << Shortest(d);
    out << '\n';
}

void PrintXOrt(std::ostream& out, const ColorModel* m, const IRayColor& c) {
    TVect3<double> x;
    if (m->HasPolarization() && m->GetXOrt(c, x))
        out << "xort: " << Shortest(x.x) << ' ' << Shortest(x.y) << ' ' << Shortest(x.z) << '\n';
}

// The element count (array) or rows and columns (matrix) of a holder, read back from its own
// archive: the holder bases have no size accessors. An empty holder writes no header.
std::vector<std::int64_t> ShapeOf(Plug* holder, bool matrix) {
    BinarySerializer w;
    holder->ObjType()->SerializeInstance(holder, w);
    w.Finish();
    BinarySerializer r(w.Bytes());
    r.OpenGroup("Data");
    std::int32_t a = 0, b = 0;
    r.Serialize(a);
    if (matrix)
        r.Serialize(b);
    if (r.Failed() || a < 0 || b < 0)
        return matrix ? std::vector<std::int64_t>{0, 0} : std::vector<std::int64_t>{0};
    return matrix ? std::vector<std::int64_t>{a, b} : std::vector<std::int64_t>{a};
}

Plug* NewHolder(const ColorModel* m, Family f) {
    switch (f) {
    case Family::Light:
        return m->NewLgtColorHold();
    case Family::Surface:
        return m->NewSurfColorHold();
    case Family::Scalar:
        return m->NewScalarColorHold();
    case Family::Ray:
        return m->NewRayColorHold();
    case Family::Dual:
        return m->NewDualLgtColorHold();
    case Family::Array:
        return m->NewArrayLgtColorHold(0);
    case Family::Matrix:
        return m->NewMatrixLgtColorHold();
    }
    return nullptr;
}

void Check(int rc, const std::string& what, ReportMarker mark) {
    if (rc != 0)
        DataError(what + ": " + ReportsSince(mark));
}

// Writes one light colour of `m` (sized beforehand for spectral models).
void SetLight(const ColorModel* m, ILgtColor& c, const std::vector<double>& values) {
    m->SetLgtColor(c, values.data());
}

} // namespace

void RunHolderSave(const HolderOptions& o, std::ostream& out) {
    const std::string ident = ModelIdent(o.model);
    Family family = KindFrom(o.kind);
    if (o.array != kNoArray || !o.matrix.empty()) {
        if (family != Family::Light)
            UsageError("--array and --matrix hold light colours; --kind " + o.kind +
                       " cannot be combined with them");
        if (o.array != kNoArray && !o.matrix.empty())
            UsageError("--array and --matrix exclude each other");
        if (o.matrix.empty() && o.array < 1)
            UsageError("--array takes a count of at least 1");
        if (!o.matrix.empty() && (o.matrix.size() != 2 || o.matrix[0] < 1 || o.matrix[1] < 1))
            UsageError("--matrix takes rows and columns of at least 1");
        family = o.matrix.empty() ? Family::Array : Family::Matrix;
    }
    if (!o.xort.empty() && family != Family::Ray)
        UsageError("--xort applies to --kind ray only");
    for (double x : o.xort)
        if (!std::isfinite(x))
            UsageError("--xort takes three finite numbers");

    const ColorModel* model = nullptr;
    PlugRef own;
    std::vector<double> values;
    double probe = 0.0;
    if ((ident == "USpectr" || ident == "StkSpectr") && o.values.size() == 1 &&
        !SpectrumIO::ParseFinite(o.values[0], probe)) {
        SpectrumIO::Spectrum s = FirstSpectrum(o.values[0]);
        CheckGridSize(s.nm.size(), o.values[0] + ": spectrum " + s.name);
        own = SpectralModelOn(s.nm, ident == "StkSpectr");
        model = static_cast<const ColorModel*>(own.Get());
        values = s.values;
    } else {
        model = RegisteredModel(ident.c_str());
        for (const std::string& v : o.values) {
            double d = 0.0;
            if (!SpectrumIO::ParseFinite(v, d))
                UsageError("--values: expected finite numbers, found '" + v + "'");
            values.push_back(d);
        }
    }
    if (!o.xort.empty() && !model->HasPolarization())
        UsageError("--xort applies to the ray colours of Stokes models only");

    const auto save = [&](Plug& holder) {
        const ReportMarker mark = ReportMark();
        if (PlugFile::Save(holder, o.output.c_str(),
                           o.format == "text" ? ArchiveFormat::Text : ArchiveFormat::Binary) != 0)
            DataError(o.output + ": cannot save the holder: " + ReportsSince(mark));
        out << "wrote " << o.output << ": " << holder.ObjType()->Ident().c_str() << " (" << o.format
            << ")\n";
    };

    if (family == Family::Surface || family == Family::Scalar) {
        HeldColour colour(model, family == Family::Surface ? Kind::Surface : Kind::Scalar);
        // A spectrum file gives one value per wavelength: for a Stokes surface it is element
        // (0,0) of each Mueller matrix, the rest zero (the surface's intensity response, as the
        // models read a surface's intensity; it depolarizes what it reflects).
        if (own && family == Family::Surface && model->HasPolarization() &&
            static_cast<int>(values.size()) == model->NWaves()) {
            std::vector<double> mueller(values.size() * 16, 0.0);
            for (std::size_t i = 0; i < values.size(); ++i)
                mueller[16 * i] = values[i];
            values = mueller;
        }
        if (static_cast<int>(values.size()) != colour.ValueCount())
            UsageError("a " + std::string(FamilyName(family)) + " colour of " +
                       model->Name().c_str() + " takes " + std::to_string(colour.ValueCount()) +
                       " values, got " + std::to_string(values.size()));
        colour.Set(values);
        save(*colour.HolderPlug());
        return;
    }

    // Every other family holds light colours (the ray's light part, the dual light's values,
    // the elements of an array or matrix).
    const int count = model->NWaves() * (model->HasPolarization() ? 4 : 1);
    // A spectrum file gives one value per wavelength: for a Stokes model it is the light's S0,
    // the light unpolarized (S1 = S2 = S3 = 0).
    if (own && model->HasPolarization() && static_cast<int>(values.size()) == model->NWaves()) {
        std::vector<double> stokes(static_cast<std::size_t>(count), 0.0);
        for (std::size_t i = 0; i < values.size(); ++i)
            stokes[4 * i] = values[i];
        values = stokes;
    }
    if (static_cast<int>(values.size()) != count)
        UsageError("a " + std::string(FamilyName(family)) + " colour of " + model->Name().c_str() +
                   " takes " + std::to_string(count) + " values, got " +
                   std::to_string(values.size()));
    const std::int64_t elements = family == Family::Array ? o.array
                                  : family == Family::Matrix
                                      ? std::int64_t{o.matrix[0]} * o.matrix[1]
                                      : 1;
    if (elements * count > kMaxHolderDoubles)
        UsageError(std::to_string(elements) + " colours of " + std::to_string(count) +
                   " values exceed the tool's limit of " + std::to_string(kMaxHolderDoubles) +
                   " values in one holder");
    PlugRef holder;
    {
        const ReportMarker mark = ReportMark();
        holder = NewHolder(model, family);
        if (!holder)
            DataError(std::string("out of memory making a ") + FamilyName(family) + " holder");
        Plug* h = holder.Get();
        const bool spectral = model->IsSpectral();
        switch (family) {
        case Family::Light:
        case Family::Ray:
        case Family::Dual:
            if (spectral)
                Check(SizeSpectralColour(*h, *model), "cannot size the colour", mark);
            break;
        case Family::Array:
            Check(spectral
                      ? SizeSpectralArray(*static_cast<ArrayLgtColorHolder*>(h), o.array, *model)
                      : static_cast<ArrayLgtColorHolder*>(h)->Resize(o.array),
                  "cannot size the array", mark);
            break;
        case Family::Matrix:
            Check(spectral
                      ? SizeSpectralMatrix(*static_cast<MatrixLgtColorHolder*>(h), o.matrix[0],
                                           o.matrix[1], *model)
                      : static_cast<MatrixLgtColorHolder*>(h)->Resize(o.matrix[0], o.matrix[1]),
                  "cannot size the matrix", mark);
            break;
        default:
            break;
        }
        switch (family) {
        case Family::Light:
            SetLight(model, static_cast<Holder<ILgtColor>*>(h)->Color(), values);
            break;
        case Family::Ray: {
            IRayColor& ray = static_cast<Holder<IRayColor>*>(h)->Color();
            SetLight(model, LightPart(ray), values);
            if (!o.xort.empty())
                model->SetXOrt(ray, TVect3<double>(o.xort[0], o.xort[1], o.xort[2]));
            break;
        }
        case Family::Dual: {
            IDualLgtColor& dual = static_cast<Holder<IDualLgtColor>*>(h)->Color();
            if (spectral) {
                int n = 0;
                double* d = DualValues(model, dual, n);
                for (int i = 0; i < n && d; ++i)
                    d[i] = values[static_cast<std::size_t>(i)];
            } else {
                SetLight(model, DualAsLight(dual), values);
            }
            break;
        }
        case Family::Array:
            for (int i = 0; i < o.array; ++i)
                SetLight(model, *static_cast<ArrayLgtColorHolder*>(h)->Element(i), values);
            break;
        case Family::Matrix:
            for (int i = 0; i < o.matrix[0]; ++i)
                for (int j = 0; j < o.matrix[1]; ++j)
                    SetLight(model, *static_cast<MatrixLgtColorHolder*>(h)->Element(i, j), values);
            break;
        default:
            break;
        }
    }
    save(*holder.Get());
}

void RunHolderShow(const HolderOptions& o, std::ostream& out) {
    std::string error;
    PlugRef plug = PlugFile::Load(o.input.c_str(), error);
    if (!plug)
        DataError(error);
    Plug* p = plug.Get();
    const PlugType* type = p->ObjType();
    out << "type: " << type->Ident().c_str() << '\n';
    // Which model and family: the registered model whose holders of a family have this type
    // (XYZ and xyY colours live in the unpolarized RGB model's holders: the first model found
    // names them).
    for (const ColorModel* m : TColorModel->Models()) {
        for (Family f : {Family::Light, Family::Surface, Family::Scalar, Family::Ray, Family::Dual,
                         Family::Array, Family::Matrix}) {
            PlugRef probe = NewHolder(m, f);
            if (!probe)
                DataError("out of memory making a holder to compare with");
            if (probe.Get()->ObjType() != type)
                continue;
            out << "model: " << m->Name().c_str() << "\nkind: " << FamilyName(f) << '\n';
            switch (f) {
            case Family::Light:
                PrintValues(out, "values",
                            LightValues(m, static_cast<Holder<ILgtColor>*>(p)->Color()));
                break;
            case Family::Surface:
                PrintValues(out, "values", ValuesOf(m, Kind::Surface, p));
                break;
            case Family::Scalar:
                PrintValues(out, "values", ValuesOf(m, Kind::Scalar, p));
                break;
            case Family::Ray: {
                IRayColor& ray = static_cast<Holder<IRayColor>*>(p)->Color();
                PrintValues(out, "values", LightValues(m, LightPart(ray)));
                PrintXOrt(out, m, ray);
                break;
            }
            case Family::Dual: {
                IDualLgtColor& dual = static_cast<Holder<IDualLgtColor>*>(p)->Color();
                if (m->IsSpectral()) {
                    int n = 0;
                    const double* d = DualValues(m, dual, n);
                    PrintValues(out, "values",
                                d ? std::vector<double>(d, d + n) : std::vector<double>());
                } else {
                    PrintValues(out, "values", LightValues(m, DualAsLight(dual)));
                }
                break;
            }
            case Family::Array: {
                auto* a = static_cast<ArrayLgtColorHolder*>(p);
                const std::int64_t n = ShapeOf(p, false)[0];
                out << "elements: " << n << '\n';
                for (std::int64_t i = 0; i < n; ++i)
                    PrintValues(out, "[" + std::to_string(i) + "] values",
                                LightValues(m, *a->Element(static_cast<int>(i))));
                break;
            }
            case Family::Matrix: {
                auto* mx = static_cast<MatrixLgtColorHolder*>(p);
                const std::vector<std::int64_t> rc = ShapeOf(p, true);
                out << "elements: " << rc[0] << " x " << rc[1] << '\n';
                for (std::int64_t i = 0; i < rc[0]; ++i)
                    for (std::int64_t j = 0; j < rc[1]; ++j)
                        PrintValues(
                            out, "[" + std::to_string(i) + "," + std::to_string(j) + "] values",
                            LightValues(m, *mx->Element(static_cast<int>(i), static_cast<int>(j))));
                break;
            }
            }
            return;
        }
    }
    out << "values: not shown for this holder type\n";
}

} // namespace Korvane::Cli
