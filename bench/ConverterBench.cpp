// The converter's hot paths on the default 33-point grid (390..710 nm, a grid already seen), each
// beside a limit kernel that computes the same bits on plain arrays, built for the library's flags
// and for AVX2 (LimitTargets.h): the ratio is what we read.
//   RGB2Spectrum          out[i] = row_i . rgb            limit: three weight arrays
//   spectrum2xyz          XYZ = sum_i s_i W_i             limit: three weight arrays
//   MassColConv sum       RGB = sum_i s_i lightRGB[i]     limit: three weight arrays
// At start every path and every kernel run once on the same values, and any double that differs
// aborts the run.
#include "bench/LimitTargets.h"
#include "hostkit/cie/CIEConvAll.h"
#include "plugin/masscolconv/MassColConv.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Korvane {
namespace {

using Limit::Plain;
#if KOR_LIMIT_AVX2
using Limit::Avx2;
#endif

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

KOR_LIMIT_INLINE inline void ThreeWeightSum(const double* s, const double (*w)[kN], double out[3]) {
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

KOR_LIMIT_INLINE inline void Reconstruct(const Fixture& f, const TVect3<double>& rgb, double* out) {
    for (int i = 0; i < kN; ++i)
        out[i] = f.rec[0][i] * rgb.x + f.rec[1][i] * rgb.y + f.rec[2][i] * rgb.z;
}

// The mass converter's light response, as BM_MassColConvSum reads it.
void MassSum(const Fixture& f, double out[3]) {
    const double* s = f.spectrum.Data();
    const TVect3<double>* rows = f.mass->WeightsForLight();
    double r = 0.0, g = 0.0, b = 0.0;
    for (int i = 0; i < kN; ++i) {
        r += s[i] * rows[i].x;
        g += s[i] * rows[i].y;
        b += s[i] * rows[i].z;
    }
    out[0] = r;
    out[1] = g;
    out[2] = b;
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

template <class T>
void BM_RGB2Spectrum_Limit(benchmark::State& state) {
    Fixture& f = F();
    double* out = f.out.Data();
    int k = 0;
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        Reconstruct(f, Colour(k++), out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    });
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

template <class T>
void BM_Spectrum2XYZ_Limit(benchmark::State& state) {
    Fixture& f = F();
    double xyz[3];
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        ThreeWeightSum(f.spectrum.Data(), f.xyzW, xyz);
        benchmark::DoNotOptimize(xyz);
        benchmark::ClobberMemory();
    });
}

void BM_MassColConvSum(benchmark::State& state) {
    Fixture& f = F();
    double rgb[3];
    for (auto _ : state) {
        MassSum(f, rgb);
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    }
}

template <class T>
void BM_MassColConvSum_Limit(benchmark::State& state) {
    Fixture& f = F();
    double rgb[3];
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        ThreeWeightSum(f.spectrum.Data(), f.rgbW, rgb);
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    });
}

// Every path against its limit kernel under each target, double by double, once before any
// timing.
template <class T>
bool CheckLimitKernels(const char* target) {
    Fixture& f = F();
    bool ok = true;
    const auto same = [&](const double* a, const double* b, int n, const char* what) {
        if (std::memcmp(a, b, static_cast<std::size_t>(n) * sizeof(double)) == 0)
            return;
        std::fprintf(stderr, "limit kernel (%s) differs from the converter: %s\n", target, what);
        ok = false;
    };
    double out[kN];
    TArray<double> spectrum(10);
    CIEConvAll::Default()->RGB2Spectrum(Colour(3), f.grid, spectrum);
    T::Once([&]() KOR_LIMIT_INLINE { Reconstruct(f, Colour(3), out); });
    same(spectrum.Data(), out, kN, "RGB2Spectrum");
    TVect3<double> xyz;
    CIEConv::spectrum2xyz(f.grid, f.spectrum, xyz);
    T::Once([&]() KOR_LIMIT_INLINE { ThreeWeightSum(f.spectrum.Data(), f.xyzW, out); });
    same(&xyz.x, out, 3, "spectrum2xyz");
    double rgb[3];
    MassSum(f, rgb);
    T::Once([&]() KOR_LIMIT_INLINE { ThreeWeightSum(f.spectrum.Data(), f.rgbW, out); });
    same(rgb, out, 3, "MassColConv sum");
    return ok;
}

const bool kChecked = Limit::CheckEveryTarget(
    [](auto target, const char* name) { return CheckLimitKernels<decltype(target)>(name); });

BENCHMARK(BM_RGB2Spectrum);
KOR_LIMIT_BENCHMARK(BM_RGB2Spectrum_Limit);
BENCHMARK(BM_Spectrum2XYZ);
KOR_LIMIT_BENCHMARK(BM_Spectrum2XYZ_Limit);
BENCHMARK(BM_MassColConvSum);
KOR_LIMIT_BENCHMARK(BM_MassColConvSum_Limit);

} // namespace
} // namespace Korvane

BENCHMARK_MAIN();
