// The record of one spectrum's colorimetry under the keys that scripts read: the spectra of the
// tool's `analyze --json` and the dicts of korvane.analyze. The keys and their order are written
// here only; each caller supplies the writer of its own format.
//
//   name, file, grid {first, last, count}, XYZ, xy, uv (CIE 1976 u'v'), luminance, radiant, CCT,
//   Duv, dominant_wavelength, purity, CRI {Ra, R: [R1..R14]}, Lab, sRGB_linear, sRGB, hex,
//   sRGB_clipped; null where a quantity does not apply.
#pragma once

#include "cli/analysis/Colorimetry.h"

#include <cstddef>
#include <string>

namespace Korvane::Analysis {

class RecordWriter {
public:
    virtual ~RecordWriter() = default;
    virtual void Null(const char* key) = 0;
    virtual void Number(const char* key, double value) = 0;
    virtual void Count(const char* key, std::size_t value) = 0;
    virtual void Numbers(const char* key, const double* values, std::size_t count) = 0;
    virtual void Text(const char* key, const std::string& value) = 0;
    virtual void Flag(const char* key, bool value) = 0;
    // The keys written until Close() belong to a record nested under `key`.
    virtual void Open(const char* key) = 0;
    virtual void Close() = 0;
};

void WriteRecord(const SpectrumColorimetry& r, RecordWriter& w);

} // namespace Korvane::Analysis
