// The quantities, and how each is computed: cli/analysis/Colorimetry.h, which the Python
// module's korvane.analyze calls too; the JSON keys: cli/analysis/ColorimetryRecord.h.
#include "cli/Analyze.h"

#include "cli/Host.h"
#include "cli/Inputs.h"
#include "cli/Numbers.h"
#include "cli/ToolError.h"
#include "cli/analysis/Analysis.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <optional>

namespace Korvane::Cli {
namespace {

using Result = Analysis::SpectrumColorimetry;

// --illuminant: a named illuminant in any case, as it is spelled in the report, or a spectrum
// file. A name that is neither is a usage error; a file that exists but cannot be read, a data
// error when it is read.
std::string IlluminantOption(const std::string& given) {
    const std::string named = Analysis::IlluminantName(given);
    if (!named.empty())
        return named;
    errno = 0;
    if (given != "-" && !std::ifstream(given, std::ios::binary) && errno == ENOENT)
        UsageError("--illuminant takes D65, D50, A, E or a spectrum file; '" + given +
                   "' is neither");
    return given;
}

// The spectra's colorimetry, with one spectral model (and the colorimeter on its grid) per
// distinct grid, kept while spectra of that grid follow one another.
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
        Analysis::Colorimeter& colorimeter = On(s.nm, file + ": spectrum " + s.name);
        Result r;
        const ReportMarker mark = ReportMark();
        const Analysis::ColorimetryFailure failure = colorimeter.Analyze(s.values.data(), r);
        switch (failure.step) {
        case Analysis::ColorimetryStep::None:
            break;
        case Analysis::ColorimetryStep::Holders:
            DataError("making colour holders for " + s.name +
                      " failed: " + Reasons(ReportsSince(mark)));
        case Analysis::ColorimetryStep::Spectrum:
            DataError("converting " + s.name + " to XYZ failed: " + ReportsSince(mark));
        case Analysis::ColorimetryStep::WhiteReflector:
            DataError("converting the perfect white reflector to XYZ failed: " +
                      ReportsSince(mark));
        case Analysis::ColorimetryStep::Illuminant:
            DataError(file + ": spectrum " + s.name + ": the illuminant " + o_.illuminant +
                      " has no luminance on its grid");
        }
        r.name = s.name;
        r.file = file;
        return r;
    }

    Korvane::Observer GetObserver() const { return observer_; }

private:
    static std::string Reasons(const std::string& reports) {
        return reports.empty() ? "out of memory" : reports;
    }

    Analysis::Colorimeter& On(const std::vector<double>& nm, const std::string& what) {
        if (!colorimeter_ || nm != nm_) {
            CheckGridSize(nm.size(), what);
            colorimeter_.reset(); // its colours belong to the model about to be released
            model_ = SpectralModelOn(nm, false);
            nm_ = nm;
            colorimeter_.emplace(*static_cast<const ColorModel*>(model_.Get()), *xyz_, nm,
                                 o_.reflectance, IlluminantOn(nm));
        }
        return *colorimeter_;
    }

    // Reflectances under another illuminant than D65: its values on `nm`.
    std::vector<double> IlluminantOn(const std::vector<double>& nm) const {
        std::vector<double> illuminant;
        if (!o_.reflectance || o_.illuminant == "D65")
            return illuminant;
        if (illuminantFile_)
            return Analysis::Resample({illuminantFile_->nm.data(), illuminantFile_->values.data(),
                                       static_cast<int>(illuminantFile_->nm.size())},
                                      nm);
        Analysis::NamedIlluminant(o_.illuminant, nm, illuminant);
        return illuminant;
    }

    const AnalyzeOptions& o_;
    const ColorModel* xyz_;
    Korvane::Observer observer_;
    std::optional<SpectrumIO::Spectrum> illuminantFile_;
    std::vector<double> nm_;
    PlugRef model_;
    std::optional<Analysis::Colorimeter> colorimeter_;
};

using Json = nlohmann::ordered_json; // keys in the documented order

// The record of a spectrum (its keys: cli/analysis/ColorimetryRecord.h) as a JSON object.
class JsonRecord final : public Analysis::RecordWriter {
public:
    void Null(const char* key) override { Top()[key] = nullptr; }
    void Number(const char* key, double value) override { Top()[key] = value; }
    void Count(const char* key, std::size_t value) override { Top()[key] = value; }
    void Numbers(const char* key, const double* values, std::size_t count) override {
        Top()[key] = std::vector<double>(values, values + count);
    }
    void Text(const char* key, const std::string& value) override { Top()[key] = value; }
    void Flag(const char* key, bool value) override { Top()[key] = value; }
    void Open(const char* key) override { open_.push_back(&(Top()[key] = Json::object())); }
    void Close() override { open_.pop_back(); }

    const Json& Object() const { return root_; }

private:
    Json& Top() { return open_.empty() ? root_ : *open_.back(); }

    Json root_ = Json::object();
    std::vector<Json*> open_; // nested records being written, innermost last
};

Json ToJson(const Result& r) {
    JsonRecord record;
    Analysis::WriteRecord(r, record);
    return record.Object();
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
    out << CsvText(*r.name) << ',' << CsvText(*r.file) << ',' << Shortest(r.first) << ','
        << Shortest(r.last) << ',' << r.count;
    for (double v : r.xyz)
        out << ',' << Shortest(v);
    out << ',' << Shortest(r.xy[0]) << ',' << Shortest(r.xy[1]) << ',' << Shortest(r.uv[0]) << ','
        << Shortest(r.uv[1]) << ',' << Opt(r.luminance.has_value(), r.luminance.value_or(0.0))
        << ',' << Shortest(r.radiant);
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
        out_ << Left(*r.name);
        for (double v : r.xyz)
            Cell(v);
        Cell(r.xy[0]);
        Cell(r.xy[1]);
        Cell(r.uv[0]);
        Cell(r.uv[1]);
        Cell(r.luminance);
        Cell(r.radiant);
        if (reflectance_) {
            const Analysis::Vec3& lab = *r.lab;
            const double largest = std::max({std::abs(lab[0]), std::abs(lab[1]), std::abs(lab[2])});
            for (double v : lab)
                Cell(ZeroBelowLastDigit(v, largest, p_));
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

void RunAnalyze(const AnalyzeOptions& options, std::ostream& out) {
    AnalyzeOptions o = options;
    if (o.reflectance)
        o.illuminant = IlluminantOption(o.illuminant);
    Analyzer analyzer(o);
    const char* observer = Analysis::ObserverName(analyzer.GetObserver());
    const std::string illuminant = o.reflectance ? o.illuminant : "";
    const char* kind = o.reflectance ? "reflectance" : "light";
    Table table(o.reflectance, o.precision, out);
    // The JSON document is written whole once every file has been read, so that a bad file
    // leaves standard output empty rather than a document that does not parse (some 1.5 kB a
    // spectrum held meanwhile). The table and CSV rows stream.
    std::string document;
    if (o.format == OutputFormat::Csv) {
        out << "# observer: " << observer << "\n# kind: " << kind
            << "\n# illuminant: " << (o.reflectance ? illuminant : "none")
            << "\n# grid: per spectrum (first_nm, last_nm, count)\n";
        WriteCsvHeader(out);
    } else if (o.format == OutputFormat::Json) {
        document = "{\"observer\": " + nlohmann::json(observer).dump() + ", \"kind\": \"" + kind +
                   "\", \"illuminant\": " +
                   (o.reflectance ? nlohmann::json(illuminant) : nlohmann::json(nullptr)).dump() +
                   ", \"spectra\": [";
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
                document += firstRow ? "\n" : ",\n";
                document += ToJson(r).dump();
            } else {
                table.Row(r);
            }
            firstRow = false;
            return true;
        });
    }
    if (o.format == OutputFormat::Json)
        out << document << "\n]}\n";
}

} // namespace Korvane::Cli
