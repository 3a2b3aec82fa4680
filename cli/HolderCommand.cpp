#include "cli/HolderCommand.h"

#include "cli/Convert.h"
#include "cli/Host.h"
#include "cli/Inputs.h"
#include "cli/Numbers.h"
#include "cli/ToolError.h"
#include "cli/io/LineReader.h"

#include "hostkit/colormodel/ColorModelType.h"
#include "hostkit/plugsys/PlugFile.h"

namespace Korvane::Cli {
namespace {

Kind KindFrom(const std::string& name) {
    for (Kind k : {Kind::Light, Kind::Surface, Kind::Scalar})
        if (name == KindName(k))
            return k;
    UsageError("--kind takes light, surface or scalar, not '" + name + "'");
}

} // namespace

void RunHolderSave(const HolderOptions& o, std::ostream& out) {
    const std::string ident = ModelIdent(o.model);
    const Kind kind = KindFrom(o.kind);
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
    HeldColour colour(model, kind);
    if (static_cast<int>(values.size()) != colour.ValueCount())
        UsageError("a " + std::string(KindName(kind)) + " colour of " + model->Name().c_str() +
                   " takes " + std::to_string(colour.ValueCount()) + " values, got " +
                   std::to_string(values.size()));
    colour.Set(values);
    const std::size_t mark = ReportMark();
    if (PlugFile::Save(*colour.HolderPlug(), o.output.c_str(),
                       o.format == "text" ? ArchiveFormat::Text : ArchiveFormat::Binary) != 0)
        DataError(o.output + ": cannot save the holder: " + ReportsSince(mark));
    out << "wrote " << o.output << ": " << colour.HolderPlug()->ObjType()->Ident().c_str() << " ("
        << o.format << ")\n";
}

void RunHolderShow(const HolderOptions& o, std::ostream& out) {
    std::string error;
    PlugRef plug = PlugFile::Load(o.input.c_str(), error);
    if (!plug)
        DataError(error);
    const PlugType* type = plug.Get()->ObjType();
    out << "type: " << type->Ident().c_str() << '\n';
    // Which model and kind: the registered model whose holders of a kind have this type.
    for (const ColorModel* m : TColorModel->Models()) {
        for (Kind k : {Kind::Light, Kind::Surface, Kind::Scalar}) {
            HeldColour probe(m, k);
            if (probe.HolderPlug()->ObjType() != type)
                continue;
            const std::vector<double> v = ValuesOf(m, k, plug.Get());
            out << "model: " << m->Name().c_str() << "\nkind: " << KindName(k) << "\nvalues ("
                << v.size() << "):";
            for (double d : v)
                out << ' ' << Shortest(d);
            out << '\n';
            return;
        }
    }
    out << "values: not shown for this holder type\n";
}

} // namespace Korvane::Cli
