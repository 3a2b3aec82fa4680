// The tool's analysis path beside the converter alone: for spectra at 1 nm (360..830 nm, 471
// points), reading them from CGATS text, the full colorimetry of one spectrum (XYZ, CCT and Duv,
// dominant wavelength, CRI, sRGB) through the analysis library, and the converter's
// spectrum2xyz of the same spectrum, which every figure starts from.
#include "cli/analysis/Analysis.h"
#include "cli/io/SpectrumReader.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <sstream>

namespace {

using namespace Korvane;

std::vector<double> Grid() {
    return Analysis::EvenGrid(360.0, 830.0, 1.0);
}

std::vector<double> Lamp(const std::vector<double>& nm, double kelvin) {
    std::vector<double> s(nm.size());
    for (std::size_t i = 0; i < nm.size(); ++i)
        s[i] = Analysis::Planck(nm[i], kelvin) * 1e-12 +
               0.3 * std::exp(-std::pow((nm[i] - 450.0) / 10.0, 2.0));
    return s;
}

void ConverterXYZ(benchmark::State& state) {
    const std::vector<double> nm = Grid(), s = Lamp(nm, 4000.0);
    for (auto _ : state) {
        Analysis::Vec3 xyz{};
        benchmark::DoNotOptimize(Analysis::LightXYZ({nm.data(), s.data(), 471}, xyz));
        benchmark::DoNotOptimize(xyz);
    }
}
BENCHMARK(ConverterXYZ);

void FullColorimetry(benchmark::State& state) {
    const std::vector<double> nm = Grid(), s = Lamp(nm, 4000.0);
    const Observer observer = Analysis::CurrentObserver();
    for (auto _ : state) {
        Analysis::Vec3 xyz{};
        Analysis::LightXYZ({nm.data(), s.data(), 471}, xyz);
        const auto xy = Analysis::Xy(xyz);
        benchmark::DoNotOptimize(Analysis::CctOhno2013(Analysis::Uv1960(xyz), observer));
        benchmark::DoNotOptimize(Analysis::DominantWavelengthOf(xy, observer));
        benchmark::DoNotOptimize(Analysis::ColourRenderingIndex({nm.data(), s.data(), 471}));
        benchmark::DoNotOptimize(Analysis::EncodeSrgb(Analysis::LinearSrgb(xyz)));
    }
}
BENCHMARK(FullColorimetry);

void ReadCgats(benchmark::State& state) {
    const std::vector<double> nm = Grid();
    std::ostringstream text;
    text << "SPECT\nSPECTRAL_BANDS \"471\"\nSPECTRAL_START_NM \"360\"\nSPECTRAL_END_NM "
            "\"830\"\nBEGIN_DATA_FORMAT\nSAMPLE_ID";
    for (double w : nm)
        text << " SPEC_" << w;
    text << "\nEND_DATA_FORMAT\nBEGIN_DATA\n";
    const int sets = 100;
    for (int k = 0; k < sets; ++k) {
        text << "s" << k;
        for (double v : Lamp(nm, 2000.0 + 50.0 * k))
            text << ' ' << v;
        text << '\n';
    }
    text << "END_DATA\n";
    const std::string file = text.str();
    for (auto _ : state) {
        SpectrumIO::ReadError e;
        int n = 0;
        SpectrumIO::ReadSpectra(
            file.data(), file.size(), "bench",
            [&](SpectrumIO::Spectrum&) {
                ++n;
                return true;
            },
            e);
        benchmark::DoNotOptimize(n);
    }
    state.SetItemsProcessed(state.iterations() * sets);
}
BENCHMARK(ReadCgats);

} // namespace
