// The models' per-ray paths on the default 33-point grid (390..710 nm), with the models that
// InitClasses registers, each beside a baseline doing the same arithmetic on plain arrays:
//   spectral light from RGB       s_i = max(0, row_i . rgb)                  (reconstruction)
//   spectral LgtColorToRGB        RGB = sum_i s_i rgbDensity_i               (mass converter)
//   spectral light from spectral  s_i = (1 - u_i) v[j_i] + u_i v[j_i + 1]    (380..780 by 5)
//   DensityToEnergy, AddScaledLgt v_i *= w_i;  to_i += f from_i
//   RGB ray from spectral light   RGB = max(0, M sum_i s_i xyz_i) E / (R + G + B)
//   Stokes DensityToEnergy        (I, Q, U, V)_i *= w_i
// Every library benchmark also counts the "TArray" blocks it allocates per iteration.
#include "plugin/colour/ColourValues.h"
#include "plugin/frame/ModuleEntry.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"

#include "hostkit/base/MemStat.h"
#include "hostkit/cie/CIEConvAll.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <cstring>

namespace Korvane {
namespace {

constexpr int kN = 33; // the default grid
constexpr int kM = 81; // the resampling source grid, 380..780 nm by 5

using USpec = SpectralModel<Unpolarized>;
using SSpec = SpectralModel<StokesPolarization>;
using URGB = RGBModel<Unpolarized>;

// The registered models, colours on their grids and plain copies of the tables the library
// reads. Registration is undone when the process ends, so a sanitizer run sees nothing left.
struct Fixture {
    USpec* spectral = nullptr;
    SSpec* stokes = nullptr;
    URGB* rgb = nullptr;
    TPlugRef<USpec> wide; // a spectral model on the 81-point grid

    LgtColor<URGB> rgbLight{};
    LgtColor<USpec> light;     // a positive spectrum on the default grid
    LgtColor<USpec> lightB;    // a second one, for sums
    LgtColor<USpec> target;    // where conversions write
    LgtColor<USpec> wideLight; // a spectrum on the 81-point grid
    LgtColor<SSpec> stokesLight;
    RayColor<URGB> rgbRay{};

    double rec[3][kN];     // RGB2Spectrum of the unit colours: the reconstruction rows
    double rgbDens[3][kN]; // the mass converter's density light RGB table
    double xyzW[3][kN];    // spectrum2xyz of unit spikes: the integration weights
    double m[3][3];        // the converter's XYZ-to-RGB matrix
    double w[kN];          // the grid's trapezoid weights
    double trap[kN];       // the trapezoid area weights of LgtEnergy
    int lerpJ[kN];         // resampling: left source index and weight
    double lerpU[kN];
    double start[4 * kN]; // the values DensityToEnergy starts from on each iteration
    double plain[4 * kN]; // baseline storage
    double plainB[kN];

    Fixture() {
        if (InitClasses() != 0)
            std::abort();
        spectral = USpec::GetModel();
        stokes = SSpec::GetModel();
        rgb = URGB::GetModel();
        const MArray<double>& grid = spectral->GetWaveLengths();

        MArray<double> wideGrid(10);
        wideGrid.Alloc(kM);
        for (int j = 0; j < kM; ++j)
            wideGrid[j] = 380.0 + 5.0 * j;
        wide = new USpec(wideGrid);

        Size(light, kN);
        Size(lightB, kN);
        Size(target, kN);
        Size(wideLight, kM);
        stokesLight.Distr().SetLength(kN);
        stokesLight.Distr().SetBand(0, kN - 1);
        for (int i = 0; i < kN; ++i) {
            light.Distr()[i][0] = 1.0 + 0.5 * std::sin(0.3 * i);
            lightB.Distr()[i][0] = 0.8 + 0.3 * std::cos(0.2 * i);
            for (int c = 0; c < 4; ++c)
                stokesLight.Distr()[i][c] = c == 0 ? light.Distr()[i][0] : 0.1 * c;
        }
        for (int j = 0; j < kM; ++j)
            wideLight.Distr()[j][0] = 1.0 + 0.5 * std::sin(0.15 * j);
        rgbLight[0] = 0.2;
        rgbLight[1] = 0.5;
        rgbLight[2] = 0.3;

        const CIEConvAll* conv = ColorModel::GetCIEConvAll();
        for (int c = 0; c < 3; ++c) {
            TVect3<double> unit{0.0, 0.0, 0.0};
            unit[c] = 1.0;
            conv->RGB2Spectrum(unit, grid, rec[c], kN);
        }
        MassColConv* mass = spectral->GetMassColConv();
        mass->PrepareForLight();
        TArray<double> spike(10);
        spike.Alloc(kN);
        spike.Fill(0.0);
        for (int i = 0; i < kN; ++i) {
            spike[i] = 1.0;
            TVect3<double> xyz;
            CIEConv::spectrum2xyz(grid, spike, xyz);
            spike[i] = 0.0;
            for (int c = 0; c < 3; ++c)
                xyzW[c][i] = xyz[c];
            rgbDens[0][i] = mass->LightRGBDensity()[i].r;
            rgbDens[1][i] = mass->LightRGBDensity()[i].g;
            rgbDens[2][i] = mass->LightRGBDensity()[i].b;
            w[i] = spectral->GetWeights()[i];
            const double left = i > 0 ? grid[i] - grid[i - 1] : 0.0;
            const double right = i < kN - 1 ? grid[i + 1] - grid[i] : 0.0;
            trap[i] = (left + right) / 2.0;
        }
        const TMatrix3& mat = ColorModel::GetCIEConv()->XYZ2RGB();
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                m[r][c] = mat[r][c];
        for (int i = 0; i < kN; ++i) {
            int j = 0;
            while (j < kM - 2 && wideGrid[j + 1] <= grid[i])
                ++j;
            lerpJ[i] = j;
            lerpU[i] = (grid[i] - wideGrid[j]) / (wideGrid[j + 1] - wideGrid[j]);
        }
        std::memcpy(start, stokesLight.Values(), sizeof start);
        std::memcpy(plain, start, sizeof plain);
        for (int i = 0; i < kN; ++i)
            plainB[i] = lightB.Distr()[i][0];
    }

    ~Fixture() {
        wide = nullptr;
        // The colours give their storage back before registration is undone.
        light.Distr().SetLength(0);
        lightB.Distr().SetLength(0);
        target.Distr().SetLength(0);
        wideLight.Distr().SetLength(0);
        stokesLight.Distr().SetLength(0);
        TermClasses();
    }

    template <class C>
    static void Size(C& c, int n) {
        c.Distr().SetLength(n);
        c.Distr().SetBand(0, n - 1);
    }
};

Fixture& F() {
    static Fixture f;
    return f;
}

// An RGB that changes per iteration, so that nothing is hoisted out of the loop; its blue is
// negative on odd iterations, so the clamp has work to do.
TVect3<double> Colour(int k) {
    return {0.2 + 1e-9 * (k & 7), 0.5, (k & 1) ? -0.05 : 0.3};
}

// "TArray" blocks allocated per iteration since `before`.
void CountAllocations(benchmark::State& state, long long before) {
    const long long blocks = MemStats::Get("TArray").blocksTotal - before;
    state.counters["allocs/iter"] =
        benchmark::Counter(static_cast<double>(blocks) / static_cast<double>(state.iterations()));
}

// The same three weighted sums as the mass converter's response, in the same order.
TVect3<double> ThreeWeightSum(const double* s, int stride, const double (*wt)[kN]) {
    double a = 0.0, b = 0.0, c = 0.0;
    for (int i = 0; i < kN; ++i) {
        const double v = s[i * stride];
        a += v * wt[0][i];
        b += v * wt[1][i];
        c += v * wt[2][i];
    }
    return {a, b, c};
}

// 1. A spectral light from an RGB light: reconstruction, then the clamp of negatives.
void BM_SpectralLightFromRGB(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    int k = 0;
    for (auto _ : state) {
        const TVect3<double> c = Colour(k++);
        f.rgbLight[0] = c.x;
        f.rgbLight[2] = c.z;
        benchmark::DoNotOptimize(f.spectral->ConvertColor(f.rgb, f.rgbLight, f.target));
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_SpectralLightFromRGB_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double* out = f.plain;
    int k = 0;
    for (auto _ : state) {
        const TVect3<double> rgb = Colour(k++);
        for (int i = 0; i < kN; ++i) {
            const double v = f.rec[0][i] * rgb.x + f.rec[1][i] * rgb.y + f.rec[2][i] * rgb.z;
            out[i] = v < 0.0 ? 0.0 : v;
        }
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
}

// 2. RGB of a spectral light through the mass converter's density table.
void BM_SpectralLgtColorToRGB(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    TVect3<double> rgb;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.spectral->LgtColorToRGB(f.light, rgb, false, false));
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_SpectralLgtColorToRGB_Baseline(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    for (auto _ : state) {
        TVect3<double> rgb = ThreeWeightSum(s, 1, f.rgbDens);
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    }
}

// 3. A spectral light resampled from the 81-point grid onto the default grid.
void BM_SpectralLightResample(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.spectral->ConvertColor(f.wide.Get(), f.wideLight, f.target));
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_SpectralLightResample_Baseline(benchmark::State& state) {
    Fixture& f = F();
    const double* v = f.wideLight.Values();
    double* out = f.plain;
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i) {
            const int j = f.lerpJ[i];
            const double u = f.lerpU[i];
            const double x = (1.0 - u) * v[j] + u * v[j + 1];
            out[i] = x < 0.0 ? 0.0 : x;
        }
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
}

// 4. Density to energy and a scaled sum. DensityToEnergy would grow the values without bound,
// so both sides copy the starting values in first; the copy is the same 33 doubles in both.
void BM_SpectralDensityToEnergy(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    double* v = f.target.Values();
    for (auto _ : state) {
        std::memcpy(v, f.start, kN * sizeof(double));
        f.spectral->DensityToEnergy(f.target);
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_SpectralDensityToEnergy_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double* v = f.plain;
    for (auto _ : state) {
        std::memcpy(v, f.start, kN * sizeof(double));
        for (int i = 0; i < kN; ++i)
            v[i] *= f.w[i];
        benchmark::DoNotOptimize(v);
        benchmark::ClobberMemory();
    }
}

// The factor is small enough that the sum stays finite for any run length.
constexpr double kAddFactor = 1e-9;

void BM_SpectralAddScaledLgt(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        f.spectral->AddScaledLgt(f.lightB, kAddFactor, f.light);
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_SpectralAddScaledLgt_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double* to = f.plain;
    for (auto _ : state) {
        for (int i = 0; i < kN; ++i)
            to[i] += kAddFactor * f.plainB[i];
        benchmark::DoNotOptimize(to);
        benchmark::ClobberMemory();
    }
}

// 5. An RGB ray from a spectral light: XYZ, M, clamp, then scaling to the spectral energy.
void BM_RGBRayFromSpectral(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.rgb->ConvertToRayColor(f.spectral, f.light, f.rgbRay));
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_RGBRayFromSpectral_Baseline(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    double out[3];
    for (auto _ : state) {
        const TVect3<double> xyz = ThreeWeightSum(s, 1, f.xyzW);
        double e = 0.0;
        for (int i = 0; i < kN; ++i)
            e += s[i] * f.trap[i];
        double sum = 0.0;
        for (int r = 0; r < 3; ++r) {
            const double v = f.m[r][0] * xyz.x + f.m[r][1] * xyz.y + f.m[r][2] * xyz.z;
            out[r] = v < 0.0 ? 0.0 : v;
            sum += out[r];
        }
        const double scale = e / sum;
        for (double& v : out)
            v *= scale;
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
}

// 6. Density to energy of a Stokes light: all four doubles of each wavelength.
void BM_StokesDensityToEnergy(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    double* v = f.stokesLight.Values();
    for (auto _ : state) {
        std::memcpy(v, f.start, sizeof f.start);
        f.stokes->DensityToEnergy(f.stokesLight);
        benchmark::ClobberMemory();
    }
    CountAllocations(state, before);
}

void BM_StokesDensityToEnergy_Baseline(benchmark::State& state) {
    Fixture& f = F();
    double* v = f.plain;
    for (auto _ : state) {
        std::memcpy(v, f.start, sizeof f.start);
        for (int i = 0; i < kN; ++i) {
            const double wi = f.w[i]; // read once: the stores below may alias the table
            double* p = v + 4 * i;
            p[0] *= wi;
            p[1] *= wi;
            p[2] *= wi;
            p[3] *= wi;
        }
        benchmark::DoNotOptimize(v);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(BM_SpectralLightFromRGB);
BENCHMARK(BM_SpectralLightFromRGB_Baseline);
BENCHMARK(BM_SpectralLgtColorToRGB);
BENCHMARK(BM_SpectralLgtColorToRGB_Baseline);
BENCHMARK(BM_SpectralLightResample);
BENCHMARK(BM_SpectralLightResample_Baseline);
BENCHMARK(BM_SpectralDensityToEnergy);
BENCHMARK(BM_SpectralDensityToEnergy_Baseline);
BENCHMARK(BM_SpectralAddScaledLgt);
BENCHMARK(BM_SpectralAddScaledLgt_Baseline);
BENCHMARK(BM_RGBRayFromSpectral);
BENCHMARK(BM_RGBRayFromSpectral_Baseline);
BENCHMARK(BM_StokesDensityToEnergy);
BENCHMARK(BM_StokesDensityToEnergy_Baseline);

} // namespace
} // namespace Korvane
