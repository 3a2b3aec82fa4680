#include "python/src/AnalyzeSpectra.h"

#include "cli/analysis/Illuminants.h"

#include <stdexcept>

namespace Korvane::Py {

std::vector<Analysis::SpectrumColorimetry> AnalyzeSpectra(Session& session,
                                                          const std::vector<double>& nm,
                                                          const double* values, std::size_t count,
                                                          const AnalyzeRequest& request) {
    // Reflectances under D65 go through the XYZ model (no illuminant values); others through
    // the illuminant on the grid.
    std::vector<double> illuminant = request.illuminantValues;
    const std::string named = Analysis::IlluminantName(request.illuminant); // "d50" is D50
    if (request.reflectance && named != "D65" && illuminant.empty() &&
        !Analysis::NamedIlluminant(request.illuminant, nm, illuminant))
        throw std::invalid_argument("illuminant must be \"D65\", \"D50\", \"A\", \"E\" or its "
                                    "values on the wavelengths, not \"" +
                                    request.illuminant + "\"");
    if (!request.reflectance)
        illuminant.clear();
    Analysis::Colorimeter colorimeter(session.Model("USpectr", nm), session.Model("XYZ"), nm,
                                      request.reflectance, illuminant);
    const std::size_t n = nm.size();
    std::vector<Analysis::SpectrumColorimetry> results(count);
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned long long mark = Session::Reports().Mark();
        const Analysis::ColorimetryFailure failure =
            colorimeter.Analyze(values + i * n, results[i]);
        const auto row = static_cast<long long>(i);
        switch (failure.step) {
        case Analysis::ColorimetryStep::None:
            break;
        case Analysis::ColorimetryStep::Holders:
            ThrowFailure(Session::Reports(), mark, "making colour holders", failure.code, row);
        case Analysis::ColorimetryStep::Spectrum:
            ThrowFailure(Session::Reports(), mark,
                         request.reflectance ? "converting a reflectance to XYZ"
                                             : "converting a spectrum to XYZ",
                         failure.code, row);
        case Analysis::ColorimetryStep::WhiteReflector:
            ThrowFailure(Session::Reports(), mark, "converting the perfect white reflector to XYZ",
                         failure.code, row);
        case Analysis::ColorimetryStep::Illuminant:
            throw LibraryError("analyzing reflectance " + std::to_string(i),
                               "the illuminant " + request.illuminant +
                                   " has no luminance on the spectra's grid",
                               -1, {}, row);
        }
    }
    return results;
}

} // namespace Korvane::Py
