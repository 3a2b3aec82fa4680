#include "cli/Convert.h"

#include "cli/Host.h"
#include "cli/Inputs.h"
#include "cli/Numbers.h"
#include "cli/ToolError.h"
#include "cli/io/LineReader.h"

#include <nlohmann/json.hpp>

#include <charconv>
#include <map>

namespace Korvane::Cli {
namespace {

Kind KindOf(const std::string& name) {
    if (name == "light")
        return Kind::Light;
    if (name == "surface")
        return Kind::Surface;
    if (name == "scalar")
        return Kind::Scalar;
    UsageError("--kind takes light, surface or scalar, not '" + name + "'");
}

// A model to convert with: a registered one, or a spectral model on a grid of our own.
struct ModelHold {
    const ColorModel* model = nullptr;
    PlugRef own;
};

ModelHold ModelFor(const std::string& ident, const std::vector<double>* nm) {
    ModelHold h;
    const bool spectral = ident == "USpectr" || ident == "StkSpectr";
    if (spectral && nm) {
        h.own = SpectralModelOn(*nm, ident == "StkSpectr");
        h.model = static_cast<const ColorModel*>(h.own.Get());
    } else {
        h.model = RegisteredModel(ident.c_str());
    }
    return h;
}

std::vector<std::string> ChannelNames(const ColorModel* m, Kind kind) {
    if (m->IsXYZ())
        return {"X", "Y", "Z"};
    if (m->IsXYY())
        return {"x", "y", "Y"};
    std::vector<std::string> base;
    if (m->IsRGB())
        base = {"R", "G", "B"};
    else if (m->IsBW())
        base = {"value"};
    if (!m->HasPolarization())
        return base;
    const int per = kind == Kind::Light ? 4 : kind == Kind::Surface ? 16 : 1;
    std::vector<std::string> out;
    for (const std::string& b : base)
        for (int k = 0; k < per; ++k)
            out.push_back(per == 1 ? b : b + (per == 4 ? "_S" : "_M") + std::to_string(k));
    return out;
}

// The spectrum of `path` that `pick` names (its name, or its number counted from 1; a name wins),
// or the file's only spectrum when `pick` is empty. Picking is up to the user: a file of several
// spectra without a pick, or a pick that matches none, is a usage error naming what the file
// holds.
SpectrumIO::Spectrum PickSpectrum(const std::string& path, const std::string& pick) {
    std::size_t number = 0;
    const char* end = pick.data() + pick.size();
    if (std::from_chars(pick.data(), end, number).ptr != end)
        number = 0;
    SpectrumIO::Spectrum byName, byNumber;
    bool named = false, numbered = false;
    std::size_t count = 0;
    std::string some; // the first few names, for the message
    ReadSpectrumFile(path, [&](SpectrumIO::Spectrum& s) {
        ++count;
        if (count <= 4)
            some += (count > 1 ? ", " : "") + s.name;
        else if (count == 5)
            some += ", ...";
        if (!pick.empty() && !named && s.name == pick) {
            byName = s;
            named = true;
        }
        if ((pick.empty() && count == 1) || (number > 0 && count == number)) {
            byNumber = std::move(s);
            numbered = true;
        }
        return true;
    });
    if (count == 0)
        DataError(path + ": no spectra");
    const std::string holds =
        " holds " + std::to_string(count) + (count == 1 ? " spectrum" : " spectra") + ": " + some;
    if (pick.empty() && count > 1)
        UsageError(path + holds + "; choose one with --spectrum NAME or --spectrum NUMBER (1.." +
                   std::to_string(count) + ")");
    if (named)
        return byName;
    if (!numbered)
        UsageError("--spectrum " + pick + ": no spectrum of that name or number; " + path + holds);
    return byNumber;
}

} // namespace

std::string ModelIdent(const std::string& name) {
    static const std::map<std::string, std::string> names = {{"bw", "UBW"},
                                                             {"rgb", "URGB"},
                                                             {"spectral", "USpectr"},
                                                             {"xyz", "XYZ"},
                                                             {"xyy", "XYY"},
                                                             {"stokes-bw", "StkBW"},
                                                             {"stokes-rgb", "StkRGB"},
                                                             {"stokes-spectral", "StkSpectr"}};
    const auto it = names.find(name);
    if (it != names.end())
        return it->second;
    for (const auto& [k, ident] : names)
        if (ident == name)
            return ident;
    UsageError("unknown model '" + name +
               "': expected bw, rgb, spectral, xyz, xyy, stokes-bw, stokes-rgb or stokes-spectral");
}

void RunConvert(const ConvertOptions& o, std::ostream& out) {
    const Kind kind = KindOf(o.kind);
    const std::string fromIdent = ModelIdent(o.from), toIdent = ModelIdent(o.to);
    const bool fromSpectral = fromIdent == "USpectr" || fromIdent == "StkSpectr";
    const bool toSpectral = toIdent == "USpectr" || toIdent == "StkSpectr";

    // Source values and, for a spectral source, its grid.
    std::vector<double> values, fromNm;
    double probe = 0.0;
    const bool fromFile =
        fromSpectral && o.values.size() == 1 && !SpectrumIO::ParseFinite(o.values[0], probe);
    if (!o.spectrum.empty() && !fromFile)
        UsageError("--spectrum picks a spectrum of the file given to --from spectral or "
                   "stokes-spectral");
    if (fromFile) {
        SpectrumIO::Spectrum s = PickSpectrum(o.values[0], o.spectrum);
        CheckGridSize(s.nm.size(), o.values[0] + ": spectrum " + s.name);
        fromNm = s.nm;
        values = s.values;
    } else {
        for (const std::string& v : o.values) {
            double d = 0.0;
            if (!SpectrumIO::ParseFinite(v, d))
                UsageError("--from " + o.from + ": expected finite numbers, found '" + v + "'");
            values.push_back(d);
        }
        if (fromSpectral)
            fromNm = o.fromGrid.empty() ? std::vector<double>()
                                        : GridFromRange(o.fromGrid[0], o.fromGrid[1], o.fromGrid[2],
                                                        "--from-grid");
    }
    std::vector<double> toNm;
    if (!o.grid.empty()) {
        if (!toSpectral)
            UsageError("--grid applies to a spectral target only");
        toNm = GridFromRange(o.grid[0], o.grid[1], o.grid[2], "--grid");
    }
    const ModelHold src = ModelFor(fromIdent, fromNm.empty() ? nullptr : &fromNm);
    const ModelHold dst = ModelFor(toIdent, toNm.empty() ? nullptr : &toNm);

    HeldColour in(src.model, kind), result(dst.model, kind);
    // A spectrum file gives one value per wavelength: for a Stokes model it is the intensity, as
    // `holder save` reads it: the light's S0 (unpolarized, S1 = S2 = S3 = 0), or element (0,0) of
    // a surface's Mueller matrices (a depolarizing surface).
    if (fromFile && src.model->HasPolarization() && kind != Kind::Scalar &&
        static_cast<int>(values.size()) == src.model->NWaves()) {
        const std::size_t per = kind == Kind::Light ? 4 : 16;
        std::vector<double> full(values.size() * per, 0.0);
        for (std::size_t i = 0; i < values.size(); ++i)
            full[per * i] = values[i];
        values = std::move(full);
    }
    if (static_cast<int>(values.size()) != in.ValueCount())
        UsageError("--from " + o.from + " " + KindName(kind) + " takes " +
                   std::to_string(in.ValueCount()) + " values, got " +
                   std::to_string(values.size()));
    in.Set(values);
    const ReportMarker mark = ReportMark();
    if (result.ConvertFrom(in) != 0)
        DataError(std::string("the ") + dst.model->Name().c_str() + " model refused the " +
                  KindName(kind) + " colour of " + src.model->Name().c_str() + ": " +
                  ReportsSince(mark));
    const std::vector<double> v = result.Get();

    // Output.
    std::vector<std::string> channels;
    std::vector<double> nm;
    if (dst.model->IsSpectral()) {
        const MArray<double>& g = dst.model->GetWaveLengths();
        for (int i = 0; i < g.Count(); ++i)
            nm.push_back(g[i]);
    } else {
        channels = ChannelNames(dst.model, kind);
    }
    const std::string ident = dst.model->Name().c_str();
    if (o.format == OutputFormat::Json) {
        nlohmann::json j;
        j["model"] = ident;
        j["kind"] = KindName(kind);
        j["values"] = v;
        if (!nm.empty())
            j["wavelengths"] = nm;
        out << j.dump() << '\n';
        return;
    }
    const bool csv = o.format == OutputFormat::Csv;
    if (!nm.empty()) {
        const std::size_t per = v.size() / nm.size();
        out << (csv ? "# " : "") << ident << ' ' << KindName(kind) << " colour, " << nm.size()
            << " wavelengths\n";
        out << "wavelength_nm";
        for (std::size_t k = 0; k < per; ++k)
            out << (csv ? "," : "  ")
                << (per == 1 ? std::string("value") : "S" + std::to_string(k));
        out << '\n';
        for (std::size_t i = 0; i < nm.size(); ++i) {
            out << (csv ? Shortest(nm[i]) : PadLeft(Digits(nm[i], o.precision), 13));
            for (std::size_t k = 0; k < per; ++k)
                out << (csv ? "," + Shortest(v[i * per + k])
                            : "  " + PadLeft(Digits(v[i * per + k], o.precision),
                                             static_cast<std::size_t>(o.precision) + 7));
            out << '\n';
        }
        return;
    }
    if (csv) {
        out << "# " << ident << ' ' << KindName(kind) << " colour\n";
        for (std::size_t k = 0; k < channels.size(); ++k)
            out << (k ? "," : "") << channels[k];
        out << '\n';
        for (std::size_t k = 0; k < v.size(); ++k)
            out << (k ? "," : "") << Shortest(v[k]);
        out << '\n';
        return;
    }
    out << ident << ' ' << KindName(kind) << ':';
    for (std::size_t k = 0; k < v.size(); ++k)
        out << "  " << (k < channels.size() ? channels[k] : "") << ' ' << Digits(v[k], o.precision);
    out << '\n';
}

void RunResample(const ResampleOptions& o, std::ostream& out) {
    std::vector<double> toNm;
    if (!o.gridFile.empty()) {
        toNm = FirstSpectrum(o.gridFile).nm;
        CheckGridSize(toNm.size(), o.gridFile);
    } else {
        toNm = GridFromRange(o.grid[0], o.grid[1], o.grid[2], "--grid");
    }
    const Kind kind = o.reflectance ? Kind::Surface : Kind::Light;
    PlugRef target = SpectralModelOn(toNm, false);
    const auto* dst = static_cast<const ColorModel*>(target.Get());
    std::vector<std::string> names;
    std::vector<std::vector<double>> columns;
    std::vector<double> fromNm;
    PlugRef source;
    ReadSpectrumFile(o.file, [&](SpectrumIO::Spectrum& s) {
        if (!source || s.nm != fromNm) {
            CheckGridSize(s.nm.size(), o.file + ": spectrum " + s.name);
            source = SpectralModelOn(s.nm, false);
            fromNm = s.nm;
        }
        const auto* src = static_cast<const ColorModel*>(source.Get());
        HeldColour in(src, kind), result(dst, kind);
        in.Set(s.values);
        const ReportMarker mark = ReportMark();
        if (result.ConvertFrom(in) != 0)
            DataError(o.file + ": resampling spectrum " + s.name +
                      " failed: " + ReportsSince(mark));
        names.push_back(s.name);
        columns.push_back(result.Get());
        return true;
    });
    out << "# " << KindName(kind) << " resampled from " << o.file << " onto " << toNm.size()
        << " wavelengths, " << Shortest(toNm.front()) << ".." << Shortest(toNm.back())
        << " nm\nwavelength_nm";
    for (const std::string& n : names)
        out << ',' << n;
    out << '\n';
    for (std::size_t i = 0; i < toNm.size(); ++i) {
        out << Shortest(toNm[i]);
        for (const auto& c : columns)
            out << ',' << Shortest(c[i]);
        out << '\n';
    }
}

} // namespace Korvane::Cli
