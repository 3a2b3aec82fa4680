// What each quantity is, for light (the default):
//   XYZ: the XYZ model's conversion of the spectral light colour (X = integral S xbar, no 683);
//   luminance 683 Y and xy from the spectral model's GetChromaticity; radiant: the spectral
//   model's LgtEnergy (the area under the spectrum); u'v', CCT and Duv (CIE 1960 uv, Ohno 2013),
//   dominant wavelength and purity against E, and CRI from the analysis library;
//   sRGB: the converter's linear sRGB of XYZ scaled to Y = 1 (the light's colour at display
//   white luminance; D65 gives (1, 1, 1)), then encoded.
// For reflectances: D65 goes through the XYZ model's surface conversion (the converter's
// reflectance integral under D65, white Y = 1); another illuminant through the analysis library
// (the reflectance times the illuminant on the reflectance's grid, divided by the illuminant's
// Y). Lab is relative to the perfect white reflector under the same illuminant; sRGB of XYZ as
// it is (no chromatic adaptation). CCT and Duv are given for reflectances too (of their colour
// under the illuminant); CRI is not.
#include "cli/Analyze.h"

#include "cli/Host.h"
#include "cli/Inputs.h"
#include "cli/Numbers.h"
#include "cli/ToolError.h"
#include "cli/analysis/Analysis.h"

#include <nlohmann/json.hpp>

#include <optional>

namespace Korvane::Cli {
namespace {

using Analysis::Vec2;
using Analysis::Vec3;

struct Result {
    std::string name, file;
    double first = 0.0, last = 0.0;
    std::size_t count = 0;
    Vec3 xyz{};
    Vec2 xy{}, uv{};
    double luminance = 0.0, radiant = 0.0;
    std::optional<Analysis::CctDuv> cct;
    std::optional<Analysis::DominantWavelength> dominant;
    std::optional<Analysis::ColourRendering> cri;
    std::optional<Vec3> lab;
    Vec3 linear{};
    Analysis::EncodedSrgb srgb{};
};

// The models of the spectra's grids: one spectral model per distinct grid, kept while spectra of
// that grid follow one another.
class GridModels {
public:
    const ColorModel* For(const std::vector<double>& nm, const std::string& what) {
        if (!model_ || nm != nm_) {
            CheckGridSize(nm.size(), what);
            model_ = SpectralModelOn(nm, false);
            nm_ = nm;
        }
        return static_cast<const ColorModel*>(model_.Get());
    }

private:
    std::vector<double> nm_;
    PlugRef model_;
};

class Analyzer {
public:
    explicit Analyzer(const AnalyzeOptions& o)
        : o_(o), xyz_(RegisteredModel("XYZ")), observer_(Analysis::CurrentObserver()) {
        if (o.reflectance && o.illuminant != "D65") {
            std::vector<double> probe{560.0}, out;
            if (!Analysis::NamedIlluminant(o.illuminant, probe, out)) {
                const SpectrumIO::Spectrum s = FirstSpectrum(o.illuminant);
                illuminantFile_ = s;
            }
        }
    }

    Result Analyze(const SpectrumIO::Spectrum& s, const std::string& file) {
        Result r;
        r.name = s.name;
        r.file = file;
        r.first = s.nm.front();
        r.last = s.nm.back();
        r.count = s.nm.size();
        const ColorModel* spectral = models_.For(s.nm, file + ": spectrum " + s.name);
        const Analysis::SpectrumView view{s.nm.data(), s.values.data(), static_cast<int>(r.count)};
        Vec3 white{};
        if (!o_.reflectance) {
            HeldColour light(spectral, Kind::Light), xyz(xyz_, Kind::Light);
            light.Set(s.values);
            Convert(xyz, light, s.name);
            const std::vector<double> v = xyz.Get();
            r.xyz = {v[0], v[1], v[2]};
            TVect2<double> xy(0.0, 0.0);
            spectral->GetChromaticity(light.Light(), r.luminance, xy);
            r.xy = {xy.x, xy.y};
            r.radiant = spectral->LgtEnergy(light.Light());
            r.cri = Analysis::ColourRenderingIndex(view);
        } else if (o_.illuminant == "D65") {
            HeldColour surf(spectral, Kind::Surface), xyz(xyz_, Kind::Surface);
            surf.Set(s.values);
            Convert(xyz, surf, s.name);
            std::vector<double> v = xyz.Get();
            r.xyz = {v[0], v[1], v[2]};
            surf.Set(std::vector<double>(r.count, 1.0));
            Convert(xyz, surf, "the perfect white reflector");
            v = xyz.Get();
            white = {v[0], v[1], v[2]};
        } else {
            std::vector<double> illum;
            if (illuminantFile_)
                illum =
                    Analysis::Resample({illuminantFile_->nm.data(), illuminantFile_->values.data(),
                                        static_cast<int>(illuminantFile_->nm.size())},
                                       s.nm);
            else
                Analysis::NamedIlluminant(o_.illuminant, s.nm, illum);
            if (Analysis::ReflectanceXYZ(view, illum.data(), r.xyz, white) != 0)
                DataError(file + ": spectrum " + s.name + ": the illuminant " + o_.illuminant +
                          " has no luminance on its grid");
        }
        if (o_.reflectance) {
            r.xy = Analysis::Xy(r.xyz);
            r.luminance = 683.0 * r.xyz[1];
            r.radiant = spectral->LgtEnergy(LightOf(spectral, s.values));
            r.lab = Analysis::Lab(r.xyz, white);
        }
        r.uv = Analysis::UvPrime(r.xyz);
        r.cct = Analysis::CctOhno2013(Analysis::Uv1960(r.xyz), observer_);
        r.dominant = Analysis::DominantWavelengthOf(r.xy, observer_);
        if (o_.reflectance) {
            r.linear = Analysis::LinearSrgb(r.xyz);
        } else if (r.xyz[1] > 0.0) {
            r.linear = Analysis::LinearSrgb({r.xyz[0] / r.xyz[1], 1.0, r.xyz[2] / r.xyz[1]});
        }
        r.srgb = Analysis::EncodeSrgb(r.linear);
        return r;
    }

    Korvane::Observer GetObserver() const { return observer_; }

private:
    void Convert(HeldColour& to, const HeldColour& from, const std::string& what) {
        const ReportMarker mark = ReportMark();
        if (to.ConvertFrom(from) != 0)
            DataError("converting " + what + " to XYZ failed: " + ReportsSince(mark));
    }
    // The radiant quantity of a reflectance: the area under it, through a light colour.
    const ILgtColor& LightOf(const ColorModel* spectral, const std::vector<double>& values) {
        scratch_ = std::make_unique<HeldColour>(spectral, Kind::Light);
        scratch_->Set(values);
        return scratch_->Light();
    }

    const AnalyzeOptions& o_;
    const ColorModel* xyz_;
    Korvane::Observer observer_;
    GridModels models_;
    std::optional<SpectrumIO::Spectrum> illuminantFile_;
    std::unique_ptr<HeldColour> scratch_;
};

using Json = nlohmann::ordered_json; // keys in the documented order

Json Null() {
    return Json(nullptr);
}

Json ToJson(const Result& r) {
    using json = Json;
    json j;
    j["name"] = r.name;
    j["file"] = r.file;
    j["grid"] = {{"first", r.first}, {"last", r.last}, {"count", r.count}};
    j["XYZ"] = {r.xyz[0], r.xyz[1], r.xyz[2]};
    j["xy"] = {r.xy[0], r.xy[1]};
    j["uv"] = {r.uv[0], r.uv[1]};
    j["luminance"] = r.luminance;
    j["radiant"] = r.radiant;
    j["CCT"] = r.cct ? json(r.cct->cct) : Null();
    j["Duv"] = r.cct ? json(r.cct->duv) : Null();
    j["dominant_wavelength"] = r.dominant ? json(r.dominant->wavelength) : Null();
    j["purity"] = r.dominant ? json(r.dominant->purity) : Null();
    if (r.cri) {
        j["CRI"] = {{"Ra", r.cri->ra}, {"R", r.cri->r}};
    } else {
        j["CRI"] = Null();
    }
    j["Lab"] = r.lab ? json{(*r.lab)[0], (*r.lab)[1], (*r.lab)[2]} : Null();
    j["sRGB_linear"] = {r.linear[0], r.linear[1], r.linear[2]};
    j["sRGB"] = {r.srgb.value[0], r.srgb.value[1], r.srgb.value[2]};
    j["hex"] = r.srgb.hex;
    j["sRGB_clipped"] = r.srgb.clipped;
    return j;
}

std::string Opt(bool has, double v) {
    return has ? Shortest(v) : "";
}

void WriteCsvHeader(std::ostream& out) {
    out << "name,file,first_nm,last_nm,count,X,Y,Z,x,y,u',v',luminance,radiant,CCT_K,Duv,"
           "dominant_wavelength_nm,purity,Ra";
    for (int i = 1; i <= 14; ++i)
        out << ",R" << i;
    out << ",L*,a*,b*,sRGB_linear_r,sRGB_linear_g,sRGB_linear_b,sRGB_r,sRGB_g,sRGB_b,hex,"
           "sRGB_clipped\n";
}

std::string CsvText(const std::string& s) {
    if (s.find_first_of(",\"\n") == std::string::npos)
        return s;
    std::string q = "\"";
    for (char c : s)
        q += c == '"' ? std::string("\"\"") : std::string(1, c);
    return q + "\"";
}

void WriteCsvRow(const Result& r, std::ostream& out) {
    out << CsvText(r.name) << ',' << CsvText(r.file) << ',' << Shortest(r.first) << ','
        << Shortest(r.last) << ',' << r.count;
    for (double v : r.xyz)
        out << ',' << Shortest(v);
    out << ',' << Shortest(r.xy[0]) << ',' << Shortest(r.xy[1]) << ',' << Shortest(r.uv[0]) << ','
        << Shortest(r.uv[1]) << ',' << Shortest(r.luminance) << ',' << Shortest(r.radiant);
    out << ',' << Opt(r.cct.has_value(), r.cct ? r.cct->cct : 0.0) << ','
        << Opt(r.cct.has_value(), r.cct ? r.cct->duv : 0.0);
    out << ',' << Opt(r.dominant.has_value(), r.dominant ? r.dominant->wavelength : 0.0) << ','
        << Opt(r.dominant.has_value(), r.dominant ? r.dominant->purity : 0.0);
    out << ',' << Opt(r.cri.has_value(), r.cri ? r.cri->ra : 0.0);
    for (std::size_t i = 0; i < 14; ++i)
        out << ',' << Opt(r.cri.has_value(), r.cri ? r.cri->r[i] : 0.0);
    for (std::size_t i = 0; i < 3; ++i)
        out << ',' << Opt(r.lab.has_value(), r.lab ? (*r.lab)[i] : 0.0);
    for (double v : r.linear)
        out << ',' << Shortest(v);
    for (double v : r.srgb.value)
        out << ',' << Shortest(v);
    out << ',' << r.srgb.hex << ',' << (r.srgb.clipped ? "true" : "false") << '\n';
}

// The aligned table: fixed column widths from the precision, so rows stream.
class Table {
public:
    Table(bool reflectance, int precision, std::ostream& out)
        : reflectance_(reflectance), p_(precision), w_(static_cast<std::size_t>(precision) + 7),
          out_(out) {}

    void Header() {
        const char* lightCols[] = {"CCT K", "Duv", "Ra"};
        const char* reflCols[] = {"L*", "a*", "b*"};
        out_ << Left("spectrum");
        for (const char* c : {"X", "Y", "Z", "x", "y", "u'", "v'", "683 Y", "radiant"})
            out_ << PadLeft(c, w_);
        for (const char* c : reflectance_ ? reflCols : lightCols)
            out_ << PadLeft(c, w_);
        out_ << PadLeft("dom. nm", w_) << PadLeft("purity", w_) << "  sRGB\n";
    }

    void Row(const Result& r) {
        out_ << Left(r.name);
        for (double v : r.xyz)
            Cell(v);
        Cell(r.xy[0]);
        Cell(r.xy[1]);
        Cell(r.uv[0]);
        Cell(r.uv[1]);
        Cell(r.luminance);
        Cell(r.radiant);
        if (reflectance_) {
            for (double v : *r.lab)
                Cell(v);
        } else {
            Cell(r.cct ? std::optional<double>(r.cct->cct) : std::nullopt);
            Cell(r.cct ? std::optional<double>(r.cct->duv) : std::nullopt);
            Cell(r.cri ? std::optional<double>(r.cri->ra) : std::nullopt);
        }
        Cell(r.dominant ? std::optional<double>(r.dominant->wavelength) : std::nullopt);
        Cell(r.dominant ? std::optional<double>(r.dominant->purity) : std::nullopt);
        out_ << "  " << r.srgb.hex << (r.srgb.clipped ? " (clipped)" : "") << '\n';
    }

private:
    std::string Left(const std::string& s) const {
        constexpr std::size_t kName = 16;
        return s.size() >= kName ? s + " " : s + std::string(kName - s.size(), ' ');
    }
    void Cell(std::optional<double> v) { out_ << PadLeft(v ? Digits(*v, p_) : "-", w_); }

    bool reflectance_;
    int p_;
    std::size_t w_;
    std::ostream& out_;
};

} // namespace

void RunAnalyze(const AnalyzeOptions& o, std::ostream& out) {
    Analyzer analyzer(o);
    const char* observer = Analysis::ObserverName(analyzer.GetObserver());
    const std::string illuminant = o.reflectance ? o.illuminant : "";
    const char* kind = o.reflectance ? "reflectance" : "light";
    Table table(o.reflectance, o.precision, out);
    if (o.format == OutputFormat::Csv) {
        out << "# observer: " << observer << "\n# kind: " << kind
            << "\n# illuminant: " << (o.reflectance ? illuminant : "none")
            << "\n# grid: per spectrum (first_nm, last_nm, count)\n";
        WriteCsvHeader(out);
    } else if (o.format == OutputFormat::Json) {
        out << "{\"observer\": " << nlohmann::json(observer).dump() << ", \"kind\": \"" << kind
            << "\", \"illuminant\": "
            << (o.reflectance ? nlohmann::json(illuminant) : nlohmann::json(nullptr)).dump()
            << ", \"spectra\": [";
    } else {
        out << "observer: " << observer << "; " << kind
            << (o.reflectance ? " under " + illuminant : std::string()) << "; XYZ "
            << (o.reflectance ? "with the white reflector at Y = 1"
                              : "as integrals of the spectrum (683 Y is its luminous quantity)")
            << "; CCT in K, Duv in CIE 1960 uv, dominant wavelength in nm (negative: "
               "complementary)\n";
        table.Header();
    }
    bool firstRow = true;
    for (const std::string& file : o.files) {
        ReadSpectrumFile(file, [&](SpectrumIO::Spectrum& s) {
            const Result r = analyzer.Analyze(s, file == "-" ? "<stdin>" : file);
            if (o.format == OutputFormat::Csv) {
                WriteCsvRow(r, out);
            } else if (o.format == OutputFormat::Json) {
                out << (firstRow ? "\n" : ",\n") << ToJson(r).dump();
            } else {
                table.Row(r);
            }
            firstRow = false;
            return true;
        });
    }
    if (o.format == OutputFormat::Json)
        out << "\n]}\n";
}

} // namespace Korvane::Cli
