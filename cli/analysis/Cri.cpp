#include "cli/analysis/Cri.h"

#include "cli/analysis/Chromaticity.h"
#include "cli/analysis/Illuminants.h"
#include "cli/analysis/ObserverTables.h"
#include "cli/analysis/Spectrum.h"
#include "cli/analysis/SpectrumXYZ.h"

#include <cmath>
#include <vector>

namespace Korvane::Analysis {
namespace {

// Y (scaled to 100 for the source) and CIE 1960 u, v of each test colour sample under a source,
// and of the source itself (index kTcsCount).
struct Rendered {
    std::array<double, kTcsCount + 1> y, u, v;
};

// `samples` holds the test colour samples on the grid wavelength-major: samples[k * kTcsCount + i]
// is sample i at wavelength k, so that the sums of all samples advance together (independent
// sums, each in wavelength order).
bool Render(const std::vector<double>& weights, const std::vector<double>& source,
            const std::vector<double>& samples, Rendered& out) {
    constexpr std::size_t m = kTcsCount;
    const std::size_t n = source.size();
    double sum[3][m] = {};
    Vec3 white{0.0, 0.0, 0.0};
    for (std::size_t k = 0; k < n; ++k) {
        const double* r = &samples[k * m];
        for (std::size_t c = 0; c < 3; ++c) {
            const double sw = source[k] * weights[3 * k + c];
            white[c] += sw;
            for (std::size_t i = 0; i < m; ++i)
                sum[c][i] += r[i] * sw;
        }
    }
    if (!(white[1] > 0.0))
        return false;
    for (std::size_t i = 0; i <= m; ++i) {
        const Vec3 xyz = i < m ? Vec3{sum[0][i], sum[1][i], sum[2][i]} : white;
        const Vec2 uv = Uv1960(xyz);
        out.y[i] = 100.0 * xyz[1] / white[1];
        out.u[i] = uv[0];
        out.v[i] = uv[1];
    }
    return true;
}

// The test colour samples on `nm` (wavelength-major, see Render), kept for the last grid the
// calling thread asked for.
const std::vector<double>& SamplesOn(const std::vector<double>& nm) {
    thread_local std::vector<double> grid;
    thread_local std::vector<double> samples;
    if (nm == grid && !samples.empty())
        return samples;
    grid = nm;
    samples.assign(nm.size() * kTcsCount, 0.0);
    const SpectrumView tcsGrid{TcsWavelengths().data(), nullptr,
                               static_cast<int>(TcsWavelengths().size())};
    for (int i = 0; i < kTcsCount; ++i) {
        SpectrumView tcs = tcsGrid;
        tcs.values = TcsSample(i).data();
        const std::vector<double> r = Resample(tcs, nm);
        for (std::size_t k = 0; k < nm.size(); ++k)
            samples[k * kTcsCount + static_cast<std::size_t>(i)] = r[k];
    }
    return samples;
}

double C(double u, double v) {
    return (4.0 - u - 10.0 * v) / v;
}
double D(double u, double v) {
    return (1.708 * v + 0.404 - 1.481 * u) / v;
}

} // namespace

std::optional<ColourRendering> ColourRenderingIndex(const SpectrumView& light) {
    if (light.count <= 0)
        return std::nullopt;
    const Observer observer = CurrentObserver();
    const std::vector<double> nm(light.nm, light.nm + light.count);
    const std::vector<double> test(light.values, light.values + light.count);
    Vec3 xyz{};
    if (LightXYZ(light, xyz) != 0)
        return std::nullopt;
    const std::optional<CctDuv> cct = CctOhno2013(Uv1960(xyz), observer);
    if (!cct || cct->cct > 25000.0)
        return std::nullopt;

    ColourRendering result{};
    result.cct = cct->cct;
    result.daylightReference = cct->cct >= 5000.0;
    std::vector<double> reference;
    if (result.daylightReference) {
        reference = Daylight(cct->cct, nm);
    } else {
        reference.resize(nm.size());
        for (std::size_t i = 0; i < nm.size(); ++i)
            reference[i] = Planck(nm[i], cct->cct);
    }
    const std::vector<double>& samples = SamplesOn(nm);
    const std::vector<double>& weights = SpikeWeights(nm);
    Rendered k{}, r{};
    if (weights.empty() || !Render(weights, test, samples, k) ||
        !Render(weights, reference, samples, r))
        return std::nullopt;

    constexpr std::size_t w = kTcsCount; // the sources' own entries
    result.dc = std::hypot(k.u[w] - r.u[w], k.v[w] - r.v[w]);
    const double ck = C(k.u[w], k.v[w]), dk = D(k.u[w], k.v[w]);
    const double cr = C(r.u[w], r.v[w]), dr = D(r.u[w], r.v[w]);
    double sum8 = 0.0;
    for (std::size_t i = 0; i < static_cast<std::size_t>(kTcsCount); ++i) {
        // Test sample adapted to the reference source (von Kries in CIE 1960 UCS).
        const double cki = C(k.u[i], k.v[i]) * cr / ck, dki = D(k.u[i], k.v[i]) * dr / dk;
        const double den = 16.518 + 1.481 * cki - dki;
        const double ua = (10.872 + 0.404 * cki - 4.0 * dki) / den, va = 5.520 / den;
        const double wk = 25.0 * std::cbrt(k.y[i]) - 17.0, wr = 25.0 * std::cbrt(r.y[i]) - 17.0;
        const double du = 13.0 * wk * (ua - r.u[w]) - 13.0 * wr * (r.u[i] - r.u[w]);
        const double dv = 13.0 * wk * (va - r.v[w]) - 13.0 * wr * (r.v[i] - r.v[w]);
        const double de = std::sqrt(du * du + dv * dv + (wk - wr) * (wk - wr));
        result.r[i] = 100.0 - 4.6 * de;
        if (i < 8)
            sum8 += result.r[i];
    }
    result.ra = sum8 / 8.0;
    return result;
}

} // namespace Korvane::Analysis
