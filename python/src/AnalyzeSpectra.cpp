#include "python/src/AnalyzeSpectra.h"

#include <stdexcept>

namespace Korvane::Py {
namespace {

using Analysis::Vec3;

Vec3 Triple(const ColourSlot& slot) {
    double v[3];
    slot.Get(v);
    return {v[0], v[1], v[2]};
}

void Convert(ColourSlot& to, const ColourSlot& from, const std::string& what, std::size_t row) {
    const unsigned long long mark = Session::Reports().Mark();
    const int status = to.ConvertFrom(from);
    if (status != 0)
        ThrowFailure(Session::Reports(), mark, "converting " + what + " to XYZ", status,
                     static_cast<long long>(row));
}

} // namespace

std::vector<SpectrumAnalysis> AnalyzeSpectra(Session& session, const std::vector<double>& nm,
                                             const double* values, std::size_t count,
                                             const AnalyzeRequest& request) {
    const ColorModel& spectral = session.Model("USpectr", nm);
    const ColorModel& xyzModel = session.Model("XYZ");
    const Observer observer = Analysis::CurrentObserver();
    const Kind kind = request.reflectance ? Kind::Surface : Kind::Light;
    ColourSlot colour(spectral, kind), xyz(xyzModel, kind), light(spectral, Kind::Light);
    const std::size_t n = nm.size();

    // Reflectances: the illuminant on the grid, or the perfect white reflector's XYZ under D65.
    const bool viaModels = !request.reflectance || request.illuminant == "D65";
    std::vector<double> illuminant = request.illuminantValues;
    Vec3 white{};
    if (request.reflectance && viaModels) {
        colour.Set(std::vector<double>(n, 1.0).data());
        Convert(xyz, colour, "the perfect white reflector", 0);
        white = Triple(xyz);
    } else if (request.reflectance && illuminant.empty() &&
               !Analysis::NamedIlluminant(request.illuminant, nm, illuminant)) {
        throw std::invalid_argument("illuminant must be \"D65\", \"D50\", \"A\", \"E\" or its "
                                    "values on the wavelengths, not \"" +
                                    request.illuminant + "\"");
    }

    std::vector<SpectrumAnalysis> results(count);
    for (std::size_t i = 0; i < count; ++i) {
        const double* s = values + i * n;
        SpectrumAnalysis& r = results[i];
        r.first = nm.front();
        r.last = nm.back();
        r.count = n;
        const Analysis::SpectrumView view{nm.data(), s, static_cast<int>(n)};
        light.Set(s);
        if (!request.reflectance) {
            colour.Set(s);
            Convert(xyz, colour, "a spectrum", i);
            r.xyz = Triple(xyz);
            TVect2<double> xy(0.0, 0.0);
            spectral.GetChromaticity(colour.Light(), r.luminance, xy);
            r.xy = {xy.x, xy.y};
            r.radiant = spectral.LgtEnergy(colour.Light());
            r.cri = Analysis::ColourRenderingIndex(view);
        } else {
            Vec3 w = white;
            if (viaModels) {
                colour.Set(s);
                Convert(xyz, colour, "a reflectance", i);
                r.xyz = Triple(xyz);
            } else if (Analysis::ReflectanceXYZ(view, illuminant.data(), r.xyz, w) != 0) {
                throw LibraryError("analyzing reflectance " + std::to_string(i),
                                   "the illuminant " + request.illuminant +
                                       " has no luminance on the spectra's grid",
                                   -1, {}, static_cast<long long>(i));
            }
            r.xy = Analysis::Xy(r.xyz);
            r.luminance = 683.0 * r.xyz[1];
            r.radiant = spectral.LgtEnergy(light.Light());
            r.lab = Analysis::Lab(r.xyz, w);
        }
        r.uv = Analysis::UvPrime(r.xyz);
        r.cct = Analysis::CctOhno2013(Analysis::Uv1960(r.xyz), observer);
        r.dominant = Analysis::DominantWavelengthOf(r.xy, observer);
        if (request.reflectance)
            r.linear = Analysis::LinearSrgb(r.xyz);
        else if (r.xyz[1] > 0.0)
            r.linear = Analysis::LinearSrgb({r.xyz[0] / r.xyz[1], 1.0, r.xyz[2] / r.xyz[1]});
        r.srgb = Analysis::EncodeSrgb(r.linear);
    }
    return results;
}

} // namespace Korvane::Py
