// The colorimetry of one sampled spectrum, as light or as a reflectance under an illuminant: what
// the tool's `analyze` and the Python module's korvane.analyze report, computed here once for
// both. Tristimulus values go through the plug-in's models; everything else comes from this
// library.
//
// Light:
//   XYZ: the XYZ model's conversion of the spectral light colour (X = integral S xbar, no 683);
//   luminance 683 Y and xy: the spectral model's GetChromaticity; radiant: its LgtEnergy (the
//   area under the spectrum); CRI by CIE 13.3; sRGB: the converter's linear sRGB of XYZ scaled
//   so that its largest channel is 1 (LightSrgb: the light's chromaticity at full strength, D65
//   white, A orange; only channels below 0 clip), then encoded.
// Reflectances (no luminance: 683 Y is a quantity of light):
//   under D65 through the XYZ model's surface conversion (the converter's reflectance integral
//   under D65, white Y = 1); under another illuminant through ReflectanceXYZ (the reflectance
//   times the illuminant on the reflectance's grid over the illuminant's Y). Lab is relative to
//   the perfect white reflector under the same illuminant; sRGB of XYZ as it is (no chromatic
//   adaptation); radiant is the area under the reflectance; no CRI.
// Both: u'v', CCT and Duv (CIE 1960 uv, Ohno 2013), dominant wavelength and purity against E
// (none for black, X + Y + Z <= 0: its xy of (0, 0) is no chromaticity).
#pragma once

#include "cli/analysis/Chromaticity.h"
#include "cli/analysis/Cri.h"
#include "cli/analysis/ModelColour.h"
#include "cli/analysis/Planckian.h"
#include "cli/analysis/Srgb.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace Korvane::Analysis {

struct SpectrumColorimetry {
    // Where the spectrum came from, when it came from a file; the caller fills them in.
    std::optional<std::string> name, file;
    double first = 0.0, last = 0.0; // the grid, nm
    std::size_t count = 0;
    Vec3 xyz{};
    Vec2 xy{}, uv{};
    std::optional<double> luminance; // light only: 683 Y, as the spectral model computes it
    double radiant = 0.0;
    std::optional<CctDuv> cct;
    std::optional<DominantWavelength> dominant;
    std::optional<ColourRendering> cri; // light only
    std::optional<Vec3> lab;            // reflectances only
    Vec3 linear{};
    EncodedSrgb srgb{};
};

// Where analyzing a spectrum stopped. The caller words the message, with the reports the host
// received meanwhile.
enum class ColorimetryStep {
    None,
    Holders,        // a model made no colour holder, or its colour could not be sized
    Spectrum,       // the XYZ model refused to convert the spectrum
    WhiteReflector, // ... or the perfect white reflector (reflectances under D65)
    Illuminant,     // the illuminant has no luminance on the grid
};

struct ColorimetryFailure {
    ColorimetryStep step = ColorimetryStep::None;
    int code = 0; // the status of the failed operation (-1 where no report was made)

    bool Failed() const { return step != ColorimetryStep::None; }
};

// Analyzes spectra sampled on one grid, one after the other, keeping the holders (and, for
// reflectances, the white) between spectra.
class Colorimeter {
public:
    // Spectra on `nm`, the grid of `spectral` (a spectral model made on it); `xyz` is the XYZ
    // model. Light, or with `reflectance` reflectances under `illuminant` (its values on `nm`),
    // under D65 through the XYZ model when that is empty. The observer is the current
    // converter's.
    Colorimeter(const ColorModel& spectral, const ColorModel& xyz, std::vector<double> nm,
                bool reflectance, std::vector<double> illuminant = {});

    // The colorimetry of the nm.size() values at `values` into `out` (name and file left empty).
    ColorimetryFailure Analyze(const double* values, SpectrumColorimetry& out);

    Observer GetObserver() const { return observer_; }

private:
    ColorimetryFailure Prepare();

    const ColorModel& spectral_;
    std::vector<double> nm_;
    bool reflectance_;
    std::vector<double> illuminant_;
    Observer observer_;
    ModelColour colour_, xyz_, light_;
    bool prepared_ = false;
    Vec3 white_{};
};

} // namespace Korvane::Analysis
