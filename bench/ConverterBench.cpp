// The converter's hot paths on the default 33-point grid (390..710 nm, a grid already seen), each
// beside a baseline that does the same arithmetic on plain arrays: the ratio is what we read.
//   RGB2Spectrum          out[i] = row_i . rgb            baseline: three weight arrays
//   spectrum2xyz          XYZ = sum_i s_i W_i             baseline: three weight arrays
//   MassColConv sum       RGB = sum_i s_i lightRGB[i]     baseline: three weight arrays
#include "hostkit/cie/CIEConvAll.h"
#include "plugin/masscolconv/MassColConv.h"

#include <benchmark/benchmark.h>

#include <cmath>

namespace Korvane {
namespace {

constexpr int kN = 33;

// The default grid, a test spectrum and plain copies of the converter's tables on it.
struct Fixture {
    MArray<double> grid;
    TArray<double> spectrum{10};
    TArray<double> out{10};
    double rec[3][kN];  // RGB2Spectrum of the unit colours: the reconstruction rows
    double xyzW[3][kN]; // spectrum2xyz of unit spikes: the integration weights
    double rgbW[3][kN]; // the mass converter's light RGB rows
    TPlugRef<MassColConv> mass;

    Fixture() {
        grid.Alloc(kN);
        spectrum.Alloc(kN);
        out.Alloc(kN);
        for (int i = 0; i < kN; ++i) {
            grid[i] = 390.0 + 10.0 * i;
            spectrum[i] = 1.0 + 0.5 * std::sin(0.3 * i);
        }
        const CIEConvAll* conv = CIEConvAll::Default();
        mass = new MassColConv(grid, conv);
        mass->PrepareForLight();
        TArray<double> spike(10);
        spike.Alloc(kN);
        spike.Fill(0.0);
        for (int c = 0; c < 3; ++c) {
            TVect3<double> unit{0.0, 0.0, 0.0};
            unit[c] = 1.0;
            conv->RGB2Spectrum(unit, grid, rec[c], kN);
        }
        for (int i = 0; i < kN; ++i) {
            spike[i] = 1.0;
            TVect3<double> xyz;
            CIEConv::spectrum2xyz(grid, spike, xyz);
            spike[i] = 0.0;
            const RGBColourDistr<double>& rgb = mass->WeightForLight(i);
            for (int c = 0; c < 3; ++c)
                xyzW[c][i] = xyz[c];
            rgbW[0][i] = rgb.r;
            rgbW[1][i] = rgb.g;
            rgbW[2][i] = rgb.b;
        }
    }
};

Fixture& F() {
    static Fixture f;
    return f;
}

// A colour that changes per iteration, so that nothing is hoisted out of the loop.
TVect3<double> Colour(int k) {
    return {0.2 + 1e-9 * (k & 7), 0.5, 0.3};
}

void ThreeWeightSum(const double* s, const double (*w)[kN], double out[3]) {
    double a = 0.0, b = 0.0, c = 0.0;
    for (int i = 0; i < kN; ++i) {
        a += s[i] * w[0][i];
        b += s[i] * w[1][i];
        c += s[i] * w[2][i];
    }
    out[0] = a;
    out[1] = b;
    out[2] = c;
}

void BM_RGB2Spectrum(benchmark::State& state) {
    Fixture& f = F();
    const CIEConvAll* conv = CIEConvAll::Default();
    int k = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(conv->RGB2Spectrum(Colour(k++), f.grid, f.out));
        benchmark::ClobberMemory();
    }
}

void BM_RGB2Spectrum_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double* out = f.out.Data();
    int k = 0;
    for (auto _ : state) {
        const TVect3<double> rgb = Colour(k++);
        for (int i = 0; i < kN; ++i)
            out[i] = f.rec[0][i] * rgb.x + f.rec[1][i] * rgb.y + f.rec[2][i] * rgb.z;
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
}

void BM_Spectrum2XYZ(benchmark::State& state) {
    Fixture& f = F();
    TVect3<double> xyz;
    for (auto _ : state) {
        benchmark::DoNotOptimize(CIEConv::spectrum2xyz(f.grid, f.spectrum, xyz));
        benchmark::DoNotOptimize(xyz);
        benchmark::ClobberMemory();
    }
}

void BM_Spectrum2XYZ_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double xyz[3];
    for (auto _ : state) {
        ThreeWeightSum(f.spectrum.Data(), f.xyzW, xyz);
        benchmark::DoNotOptimize(xyz);
        benchmark::ClobberMemory();
    }
}

void BM_MassColConvSum(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.spectrum.Data();
    for (auto _ : state) {
        const TVect3<double>* rows = f.mass->WeightsForLight();
        double r = 0.0, g = 0.0, b = 0.0;
        for (int i = 0; i < kN; ++i) {
            r += s[i] * rows[i].x;
            g += s[i] * rows[i].y;
            b += s[i] * rows[i].z;
        }
        benchmark::DoNotOptimize(r);
        benchmark::DoNotOptimize(g);
        benchmark::DoNotOptimize(b);
        benchmark::ClobberMemory();
    }
}

void BM_MassColConvSum_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double rgb[3];
    for (auto _ : state) {
        ThreeWeightSum(f.spectrum.Data(), f.rgbW, rgb);
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(BM_RGB2Spectrum);
BENCHMARK(BM_RGB2Spectrum_Baseline);
BENCHMARK(BM_Spectrum2XYZ);
BENCHMARK(BM_Spectrum2XYZ_Baseline);
BENCHMARK(BM_MassColConvSum);
BENCHMARK(BM_MassColConvSum_Baseline);

} // namespace
} // namespace Korvane

BENCHMARK_MAIN();
