// AnalyzeSpectra: the colorimetry of sampled spectra for korvane.analyze, the quantities that the
// command-line tool's `analyze` reports, computed the same way: tristimulus values through the
// plug-in's models (the XYZ model's conversion of a spectral colour on the spectra's own grid),
// luminance, chromaticity and radiant quantity from the spectral model, and everything else
// (u'v', CCT and Duv, dominant wavelength and purity, CRI, CIELAB, sRGB encoding) from the
// tool's analysis library. Nothing is computed here that those do not compute.
//
// For light: XYZ by the XYZ model's light conversion; 683 Y and xy from the spectral model's
// GetChromaticity; radiant = its LgtEnergy (the area under the spectrum); CRI by CIE 13.3; sRGB
// of XYZ scaled to Y = 1 (the light's colour at display white; D65 gives (1, 1, 1)).
// For reflectances: under D65 by the XYZ model's surface conversion (white Y = 1), under another
// illuminant through the analysis library (the reflectance times the illuminant on the
// reflectance's grid over the illuminant's Y); CIELAB against the perfect white reflector under
// the same illuminant; sRGB of XYZ as it is; no CRI.
#pragma once

#include "python/src/ColourSlot.h"
#include "python/src/Session.h"

#include "cli/analysis/Analysis.h"

#include <optional>
#include <string>
#include <vector>

namespace Korvane::Py {

struct SpectrumAnalysis {
    double first = 0.0, last = 0.0;
    std::size_t count = 0;
    Analysis::Vec3 xyz{};
    Analysis::Vec2 xy{}, uv{};
    double luminance = 0.0, radiant = 0.0;
    std::optional<Analysis::CctDuv> cct;
    std::optional<Analysis::DominantWavelength> dominant;
    std::optional<Analysis::ColourRendering> cri;
    std::optional<Analysis::Vec3> lab;
    Analysis::Vec3 linear{};
    Analysis::EncodedSrgb srgb{};
};

struct AnalyzeRequest {
    bool reflectance = false;
    // For reflectances: "D65", "D50", "A", "E", or the illuminant's values on the spectra's grid.
    std::string illuminant = "D65";
    std::vector<double> illuminantValues;
};

// Analyzes `count` spectra of nm.size() values each (row after row in `values`) under the
// session's current observer. Throws std::invalid_argument for an unknown illuminant name and
// LibraryError when a model refuses the grid or a conversion fails.
std::vector<SpectrumAnalysis> AnalyzeSpectra(Session& session, const std::vector<double>& nm,
                                             const double* values, std::size_t count,
                                             const AnalyzeRequest& request);

} // namespace Korvane::Py
