// HolderFiles: one colour kept in a holder of its model and written to a plug file, and any
// colour holder's plug file read back. The files are the host kit's plug files (binary or text
// archive): the holder type's identifier, then the group "Color" that the holder type writes.
//
// A holder does not know a grid: a spectral holder stores its samples only, and reads back with
// as many samples as it stored. XYZ and xyY colours live in the holders of the unpolarized RGB
// model, so their files read back as "URGB" holders.
#pragma once

#include "python/src/ColourSlot.h"

#include "hostkit/plugsys/PlugFile.h"

#include <string>
#include <vector>

namespace Korvane::Py {

// Writes one colour of `model` and `kind` (ColourSlot's layout) to `path`. Throws LibraryError
// with the report's text and code when the file cannot be written.
void SaveHolder(const std::string& path, const ColorModel& model, Kind kind, const double* values,
                ArchiveFormat format);

struct LoadedHolder {
    std::string type;        // the holder's plug type, e.g. "USpectrLgtColorHold"
    std::string model;       // the model identifier in it, e.g. "USpectr"
    std::string kind;        // "light", "ray", "surface" or "scalar"
    std::vector<long> shape; // ColourSlot's shape, with the stored sample count for spectra
    std::vector<double> values;
    std::vector<double> xort; // a polarized ray colour's X orientation, else empty
};

// Reads any light, ray, surface or scalar colour holder. Throws LibraryError naming the file and
// the cause for a missing, damaged or truncated file, a plug that is not a colour holder, or a
// dual light holder (not read here).
LoadedHolder LoadHolder(const std::string& path);

} // namespace Korvane::Py
