#include "cli/analysis/ColorimetryRecord.h"

namespace Korvane::Analysis {
namespace {

void Optional(RecordWriter& w, const char* key, bool has, double value) {
    if (has)
        w.Number(key, value);
    else
        w.Null(key);
}

void Optional(RecordWriter& w, const char* key, const std::optional<std::string>& value) {
    if (value)
        w.Text(key, *value);
    else
        w.Null(key);
}

} // namespace

void WriteRecord(const SpectrumColorimetry& r, RecordWriter& w) {
    Optional(w, "name", r.name);
    Optional(w, "file", r.file);
    w.Open("grid");
    w.Number("first", r.first);
    w.Number("last", r.last);
    w.Count("count", r.count);
    w.Close();
    w.Numbers("XYZ", r.xyz.data(), r.xyz.size());
    w.Numbers("xy", r.xy.data(), r.xy.size());
    w.Numbers("uv", r.uv.data(), r.uv.size());
    Optional(w, "luminance", r.luminance.has_value(), r.luminance.value_or(0.0));
    w.Number("radiant", r.radiant);
    Optional(w, "CCT", r.cct.has_value(), r.cct ? r.cct->cct : 0.0);
    Optional(w, "Duv", r.cct.has_value(), r.cct ? r.cct->duv : 0.0);
    Optional(w, "dominant_wavelength", r.dominant.has_value(),
             r.dominant ? r.dominant->wavelength : 0.0);
    Optional(w, "purity", r.dominant.has_value(), r.dominant ? r.dominant->purity : 0.0);
    if (r.cri) {
        w.Open("CRI");
        w.Number("Ra", r.cri->ra);
        w.Numbers("R", r.cri->r.data(), r.cri->r.size());
        w.Close();
    } else {
        w.Null("CRI");
    }
    if (r.lab)
        w.Numbers("Lab", r.lab->data(), r.lab->size());
    else
        w.Null("Lab");
    w.Numbers("sRGB_linear", r.linear.data(), r.linear.size());
    w.Numbers("sRGB", r.srgb.value.data(), r.srgb.value.size());
    w.Text("hex", r.srgb.hex);
    w.Flag("sRGB_clipped", r.srgb.clipped);
}

} // namespace Korvane::Analysis
