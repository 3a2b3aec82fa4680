// The extension module korvane._korvane: the plug-in context, conversions and holder files for
// Python, with NumPy arrays in and out. The package korvane (korvane/__init__.py) re-exports it
// and adds the small helpers written in Python.
#include "python/src/AnalyzeSpectra.h"
#include "python/src/ConvertColours.h"
#include "python/src/HolderFiles.h"
#include "python/src/Session.h"

#include "cli/analysis/ColorimetryRecord.h"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <string>
#include <vector>

namespace py = pybind11;
using namespace Korvane;
using namespace Korvane::Py;

namespace {

using DoubleArray = py::array_t<double, py::array::c_style | py::array::forcecast>;

std::string ShapeText(const std::vector<long>& shape, bool many) {
    std::string s = "(";
    if (many)
        s += shape.empty() ? "N," : "N, ";
    for (std::size_t i = 0; i < shape.size(); ++i)
        s += (i ? ", " : "") + std::to_string(shape[i]);
    return s + (shape.size() == 1 && !many ? ",)" : ")");
}

// An array of colours of `shape` each: one colour of exactly that shape, many with one leading
// axis more, or the same flattened (one row of Doubles() values per colour).
struct Rows {
    DoubleArray data;
    std::size_t count = 0;
    bool single = false;
};

Rows AsRows(const py::handle& values, const std::vector<long>& shape, const std::string& what) {
    Rows rows;
    rows.data = DoubleArray::ensure(values);
    if (!rows.data)
        throw py::type_error(what + ": values must be an array of numbers");
    long doubles = 1;
    for (long d : shape)
        doubles *= d;
    const auto& a = rows.data;
    const auto nd = static_cast<std::size_t>(a.ndim());
    auto dimsFrom = [&](std::size_t first) {
        std::vector<long> dims;
        for (std::size_t i = first; i < nd; ++i)
            dims.push_back(static_cast<long>(a.shape(static_cast<py::ssize_t>(i))));
        return dims;
    };
    if (dimsFrom(0) == shape) {
        rows.single = true;
        rows.count = 1;
    } else if (nd == shape.size() + 1 && dimsFrom(1) == shape) {
        rows.count = static_cast<std::size_t>(a.shape(0));
    } else if (shape.size() > 1 && nd == 1 && a.shape(0) == doubles) {
        rows.single = true;
        rows.count = 1;
    } else if (shape.size() > 1 && nd == 2 && a.shape(1) == doubles) {
        rows.count = static_cast<std::size_t>(a.shape(0));
    } else {
        throw py::value_error(what + ": values of shape " + ShapeText(dimsFrom(0), false) +
                              " do not fit: one colour has shape " + ShapeText(shape, false) +
                              ", many " + ShapeText(shape, true));
    }
    return rows;
}

std::vector<double> GridOf(const py::object& grid, const char* name) {
    if (grid.is_none())
        return {};
    DoubleArray a = DoubleArray::ensure(grid);
    if (!a || a.ndim() != 1 || a.size() == 0)
        throw py::value_error(std::string(name) +
                              " must be a one-dimensional array of wavelengths in nm");
    return std::vector<double>(a.data(), a.data() + a.size());
}

py::array_t<double> NewColours(std::size_t count, const std::vector<long>& shape, bool single) {
    std::vector<py::ssize_t> dims;
    if (!single)
        dims.push_back(static_cast<py::ssize_t>(count));
    for (long d : shape)
        dims.push_back(static_cast<py::ssize_t>(d));
    return py::array_t<double>(dims);
}

py::array_t<double> Grid(const ColorModel& model) {
    const MArray<double>& g = model.GetWaveLengths();
    py::array_t<double> out(static_cast<py::ssize_t>(g.Count()));
    for (int i = 0; i < g.Count(); ++i)
        out.mutable_at(i) = g[i];
    return out;
}

py::array_t<double> Convert(const py::object& values, const std::string& source,
                            const std::string& target, const std::string& kindName,
                            const py::object& grid, const py::object& sourceGrid) {
    const Kind kind = ParseKind(kindName);
    Session& session = Session::Get();
    const std::vector<double> g = GridOf(grid, "grid");
    const std::vector<double> sg = sourceGrid.is_none() ? g : GridOf(sourceGrid, "source_grid");
    const ColorModel* from = &session.Model(source);
    const ColorModel* to = &session.Model(target);
    if (!g.empty() && !from->IsSpectral() && !to->IsSpectral())
        throw py::value_error("grid: neither " + source + " nor " + target +
                              " is a spectral model");
    if (!sourceGrid.is_none() && !from->IsSpectral())
        throw py::value_error("source_grid: " + source + " is not a spectral model");
    if (from->IsSpectral())
        from = &session.Model(source, sg);
    if (to->IsSpectral())
        to = &session.Model(target, g);
    const std::string what = "converting " + kindName + " colours from " + source;
    Rows rows = AsRows(values, ColourShape(*from, kind), what);
    const std::vector<long> outShape = ColourShape(*to, kind);
    py::array_t<double> out = NewColours(rows.count, outShape, rows.single);
    ConvertColours(*from, *to, kind, rows.data.data(), rows.count, out.mutable_data());
    return out;
}

void SaveHolderFile(const std::string& path, const py::object& values, const std::string& model,
                    const std::string& kindName, const py::object& grid,
                    const std::string& format) {
    const Kind kind = ParseKind(kindName);
    ArchiveFormat f;
    if (format == "binary")
        f = ArchiveFormat::Binary;
    else if (format == "text")
        f = ArchiveFormat::Text;
    else
        throw py::value_error("format must be \"binary\" or \"text\", not \"" + format + "\"");
    Session& session = Session::Get();
    const ColorModel& m = session.Model(model, GridOf(grid, "grid"));
    Rows rows =
        AsRows(values, ColourShape(m, kind), "saving a " + kindName + " colour of " + model);
    if (!rows.single)
        throw py::value_error("a holder keeps one colour; got " + std::to_string(rows.count));
    SaveHolder(path, m, kind, rows.data.data(), f);
}

py::dict LoadHolderFile(const std::string& path) {
    LoadedHolder h = LoadHolder(path);
    py::dict d;
    d["type"] = h.type;
    d["model"] = h.model;
    d["kind"] = h.kind;
    py::array_t<double> values = NewColours(1, h.shape, true);
    std::copy(h.values.begin(), h.values.end(), values.mutable_data());
    d["values"] = values;
    d["xort"] = h.xort.empty() ? py::object(py::none()) : py::object(py::cast(h.xort));
    return d;
}

// One spectrum's record as a dict, with the keys of the tool's `analyze --json` spectra
// (cli/analysis/ColorimetryRecord.h).
class DictRecord final : public Analysis::RecordWriter {
public:
    void Null(const char* key) override { Top()[key] = py::none(); }
    void Number(const char* key, double value) override { Top()[key] = value; }
    void Count(const char* key, std::size_t value) override { Top()[key] = value; }
    void Numbers(const char* key, const double* values, std::size_t count) override {
        py::list l;
        for (std::size_t i = 0; i < count; ++i)
            l.append(values[i]);
        Top()[key] = l;
    }
    void Text(const char* key, const std::string& value) override { Top()[key] = value; }
    void Flag(const char* key, bool value) override { Top()[key] = value; }
    void Open(const char* key) override {
        py::dict nested;
        Top()[key] = nested;
        open_.push_back(nested);
    }
    void Close() override { open_.pop_back(); }

    const py::dict& Dict() const { return root_; }

private:
    py::dict& Top() { return open_.empty() ? root_ : open_.back(); }

    py::dict root_;
    std::vector<py::dict> open_; // nested records being written, innermost last
};

py::dict Record(const Analysis::SpectrumColorimetry& r) {
    DictRecord record;
    Analysis::WriteRecord(r, record);
    return record.Dict();
}

// The session's observer for the length of one call, restored whatever happens.
class ObserverFor {
public:
    ObserverFor(Session& s, int degrees) : session_(s), before_(s.ObserverDegrees()) {
        s.SetObserver(degrees);
    }
    ~ObserverFor() {
        try {
            session_.SetObserver(before_);
        } catch (...) { // restoring a converter that was current cannot fail but for memory
        }
    }
    ObserverFor(const ObserverFor&) = delete;
    ObserverFor& operator=(const ObserverFor&) = delete;

private:
    Session& session_;
    int before_;
};

py::object Analyze(const py::object& wavelengths, const py::object& values,
                   const std::string& kindName, int observer, const py::object& illuminant) {
    AnalyzeRequest request;
    if (kindName == "reflectance" || kindName == "surface")
        request.reflectance = true;
    else if (kindName != "light")
        throw py::value_error("kind must be \"light\" or \"reflectance\", not \"" + kindName +
                              "\"");
    const std::vector<double> nm = GridOf(wavelengths, "wavelengths");
    if (nm.empty())
        throw py::value_error("wavelengths must be a one-dimensional array of wavelengths in nm");
    if (py::isinstance<py::str>(illuminant)) {
        request.illuminant = illuminant.cast<std::string>();
    } else {
        request.illuminant = "given";
        request.illuminantValues = GridOf(illuminant, "illuminant");
        if (request.illuminantValues.size() != nm.size())
            throw py::value_error("illuminant: " + std::to_string(request.illuminantValues.size()) +
                                  " values for " + std::to_string(nm.size()) + " wavelengths");
    }
    Rows rows = AsRows(values, {static_cast<long>(nm.size())}, "analyzing spectra");
    Session& session = Session::Get();
    if (observer != 2 && observer != 10)
        throw py::value_error("observer must be 2 (CIE 1931) or 10 (CIE 1964), not " +
                              std::to_string(observer));
    std::vector<Analysis::SpectrumColorimetry> results;
    {
        ObserverFor chosen(session, observer);
        results = AnalyzeSpectra(session, nm, rows.data.data(), rows.count, request);
    }
    if (rows.single)
        return Record(results.front());
    py::list out;
    for (const Analysis::SpectrumColorimetry& r : results)
        out.append(Record(r));
    return out;
}

// korvane.KorvaneError, with the library's report text and code.
py::handle g_error;

} // namespace

PYBIND11_MODULE(_korvane, m) {
    m.doc() = "Korvane colour models for Python: the plug-in loaded through the host kit.";

    static py::exception<LibraryError> error(m, "KorvaneError", PyExc_RuntimeError);
    error.doc() = "A failure reported by the colour-model library or the host kit.\n\n"
                  "Attributes: text (the library's report text), code (the status the failing\n"
                  "operation returned: 2 internal error, 3 error message, 4 no memory, -1 where\n"
                  "no report was made), reports (every error report of the call), index (the\n"
                  "row of the colour that failed, or None).";
    error.attr("text") = "";
    error.attr("code") = -1;
    error.attr("reports") = py::list();
    error.attr("index") = py::none();
    g_error = error;
    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p)
                std::rethrow_exception(p);
        } catch (const LibraryError& e) {
            py::object type = py::reinterpret_borrow<py::object>(g_error);
            py::object instance = type(e.what());
            instance.attr("text") = e.Text();
            instance.attr("code") = e.Code();
            instance.attr("reports") = py::cast(e.Reports());
            instance.attr("index") =
                e.Index() < 0 ? py::object(py::none()) : py::object(py::int_(e.Index()));
            PyErr_SetObject(type.ptr(), instance.ptr());
        }
    });

    m.def(
        "load", [](const std::string& plugin) { Session::Load(plugin); }, py::arg("plugin") = "",
        "Loads the colour-model plug-in (a shared library) and lets it register its models.\n\n"
        "Without a path: the file named by the environment variable KORVANE_PLUGIN, else the\n"
        "plug-in beside this module in the build tree, else the installed one. Every other\n"
        "function loads the default plug-in when none is loaded. Loading the file that is\n"
        "already loaded does nothing; another file needs unload() first.");
    m.def("unload", &Session::Unload,
          "Unloads the plug-in (its TermClasses runs); the next call loads it again.");
    m.def("is_loaded", &Session::IsLoaded, "Whether a plug-in is loaded.");
    m.def("default_plugin_path", &Session::DefaultPluginPath,
          "The plug-in that load() takes when given no path.");
    m.def(
        "plugin_path", [] { return Session::Get().Path(); }, "The file of the loaded plug-in.");
    m.def(
        "version", [] { return Session::Get().Version(); },
        "What the plug-in's VersionId export returns.");
    m.def(
        "models", [] { return Session::Get().Models(); },
        "Identifiers of the registered colour models, in registration order\n"
        "(\"UBW\", \"StkBW\", \"URGB\", \"StkRGB\", \"USpectr\", \"StkSpectr\", \"XYZ\", "
        "\"XYY\").");
    m.def(
        "observer", [] { return Session::Get().ObserverDegrees(); },
        "The standard observer of the current CIE converter: 2 (CIE 1931) or 10 (CIE 1964).");
    m.def(
        "set_observer", [](int degrees) { Session::Get().SetObserver(degrees); },
        py::arg("degrees"),
        "Makes a converter for the CIE 1931 2 degree (2) or CIE 1964 10 degree (10) observer\n"
        "the current one for every model: conversions, XYZ and RGB then use it.");
    m.def(
        "default_grid", [] { return Grid(Session::Get().Model("USpectr")); },
        "The wavelength grid (nm) of the registered spectral models.");
    m.def("convert", &Convert, py::arg("values"), py::arg("source"), py::arg("target"),
          py::arg("kind") = "light", py::arg("grid") = py::none(), py::kw_only(),
          py::arg("source_grid") = py::none(),
          "Converts colours of the model `source` into the model `target`, one per row, through\n"
          "the target model's ConvertColor (light conversions end with its light clamp).\n\n"
          "values: one colour, or many with a leading axis (shapes in docs/python.md:\n"
          "(3,) for URGB, XYZ (X, Y, Z) and XYY (x, y, Y), (n,) for USpectr on n wavelengths,\n"
          "Stokes models with a trailing axis of 4 or (4, 4)). kind: \"light\", \"surface\" or\n"
          "\"scalar\". grid: wavelengths in nm of the spectral model on either side (default:\n"
          "the registered models' grid); source_grid: the source's grid when it differs.\n"
          "Returns a new float64 array of the target's colours. Raises KorvaneError with the\n"
          "library's report text and code when a conversion fails.");
    m.def("analyze", &Analyze, py::arg("wavelengths"), py::arg("values"), py::arg("kind") = "light",
          py::arg("observer") = 2, py::arg("illuminant") = "D65",
          "The colorimetry of sampled spectra, as the command-line tool's `analyze` reports it.\n\n"
          "wavelengths: the grid in nm (finite, positive, increasing); values: one spectrum on\n"
          "it (1-D: returns one dict) or one per row (2-D: returns a list of dicts). kind:\n"
          "\"light\" or \"reflectance\" (under `illuminant`: \"D65\", \"D50\", \"A\", \"E\"\n"
          "in any case, or its values on the wavelengths; ignored for light). observer: 2\n"
          "(CIE 1931) or 10 (CIE 1964), for this call. Each dict has the keys of `korvane\n"
          "analyze --json` spectra: name and file (None here), grid {first, last, count}, XYZ,\n"
          "xy, uv (CIE 1976 u'v'), luminance (683 Y; light, else None), radiant (area under the\n"
          "spectrum), CCT and Duv (Ohno 2013; None farther than 0.05 from the Planckian locus),\n"
          "dominant_wavelength and purity (against E; negative: complementary; None for black),\n"
          "CRI {Ra, R: [R1..R14]} (light) or None, Lab (reflectances) or None, sRGB_linear,\n"
          "sRGB (encoded, clipped to 0..1), hex and sRGB_clipped.");
    m.def("save_holder", &SaveHolderFile, py::arg("path"), py::arg("values"), py::arg("model"),
          py::arg("kind") = "light", py::arg("grid") = py::none(), py::arg("format") = "binary",
          "Writes one colour of `model` in a holder of the model to a plug file, in the binary\n"
          "or the text archive format. A spectral colour's grid is not stored, only its values.");
    m.def("_load_holder", &LoadHolderFile, py::arg("path"));
    m.def(
        "reports",
        [] {
            std::vector<std::pair<std::string, std::string>> out;
            for (const Report& r : Session::Reports().Kept())
                out.emplace_back(KindName(r.kind), r.text);
            return out;
        },
        "The most recent reports of the library and the host kit (at most 256), oldest first,\n"
        "as (kind, text): kind is \"internal error\", \"error\", \"no memory\" or \"log\".\n"
        "Older reports are let go and counted by reports_dropped().");
    m.def(
        "reports_dropped", [] { return Session::Reports().Dropped(); },
        "The number of reports made but no longer kept by reports() (the oldest, let go to keep\n"
        "at most 256) since the last clear_reports(); 0 when reports() holds every one.");
    m.def(
        "clear_reports", [] { Session::Reports().Clear(); },
        "Forgets the reports kept so far and sets reports_dropped() to 0.");
}
