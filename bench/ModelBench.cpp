// The models' per-ray paths on the default 33-point grid (390..710 nm), with the models that
// InitClasses registers, each beside a limit kernel doing the same arithmetic on plain arrays,
// built twice (LimitTargets.h): with the library's flags (<Plain>) and for AVX2 (<Avx2>):
//   spectral light from RGB       s_i = max(0, row_i . rgb)                  (reconstruction)
//   spectral LgtColorToRGB        RGB = sum_i s_i rgbDensity_i               (mass converter)
//   spectral light from spectral  s_i = (1 - u_i) v[j_i] + u_i v[j_i + 1]    (380..780 by 5)
//   DensityToEnergy, AddScaledLgt v_i *= w_i;  to_i += f from_i
//   RGB ray from spectral light   RGB = max(0, M sum_i s_i xyz_i) E / (R + G + B)
//   Stokes DensityToEnergy        (I, Q, U, V)_i *= w_i
// Every library benchmark also counts the "TArray" blocks it allocates per iteration. At start
// every path and every kernel under every target run once on the same colours, and any double
// that differs aborts the run.
#include "plugin/colour/ColourValues.h"
#include "plugin/frame/ModuleEntry.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYZModel.h"

#include "bench/LimitTargets.h"
#include "hostkit/base/MemStat.h"
#include "hostkit/cie/CIEConvAll.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace Korvane {
namespace {

constexpr int kN = 33; // the default grid
constexpr int kM = 81; // the resampling source grid, 380..780 nm by 5
constexpr int kW = 41; // the shared 380..780 nm grid by 10

using USpec = SpectralModel<Unpolarized>;
using SSpec = SpectralModel<StokesPolarization>;
using URGB = RGBModel<Unpolarized>;
using Limit::Plain;
#if KOR_LIMIT_AVX2
using Limit::Avx2;
#endif

// The registered models, colours on their grids and plain copies of the tables the library
// reads. Registration is undone when the process ends, so a sanitizer run sees nothing left.
struct Fixture {
    USpec* spectral = nullptr;
    SSpec* stokes = nullptr;
    URGB* rgb = nullptr;
    TPlugRef<USpec> wide;    // a spectral model on the 81-point grid
    USpec* wide10 = nullptr; // the shared 380..780 nm model, 41 points by 10
    XYZModel* xyzModel = nullptr;

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
    int lerpJ[kN];         // resampling 81 -> 33: left source index and weight
    double lerpU[kN];
    int lerp10J[kW]; // resampling 33 -> 41
    double lerp10U[kW];
    double span[kN];      // LgtEnergy: l[k+1] - l[k-1] inside, the single step at the ends
    double start[4 * kN]; // the values DensityToEnergy starts from on each iteration
    double plain[4 * kN]; // baseline storage
    double plainB[kN];

    Fixture() {
        if (InitClasses() != 0)
            std::abort();
        spectral = USpec::GetModel();
        wide10 = USpec::GetModel_380_780();
        xyzModel = XYZModel::GetModel();
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
        Plan(wideGrid, grid, lerpJ, lerpU);
        Plan(grid, wide10->GetWaveLengths(), lerp10J, lerp10U);
        for (int k = 0; k < kN; ++k)
            span[k] = grid[k < kN - 1 ? k + 1 : k] - grid[k > 0 ? k - 1 : k];
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

    // The interval and weight that the resampling walk gives every target wavelength (bisection,
    // reciprocal width), held ends as weight 0 on the end interval: on finite values the same bits.
    static void Plan(const MArray<double>& s, const MArray<double>& t, int* js, double* us) {
        const int m = s.Count();
        int jPrev = -2;
        double r = 0.0;
        for (int i = 0; i < t.Count(); ++i) {
            if (t[i] <= s[0] || t[i] >= s[m - 1]) {
                js[i] = t[i] <= s[0] ? 0 : m - 2;
                us[i] = t[i] <= s[0] ? 0.0 : 1.0;
                continue;
            }
            int j = jPrev;
            if (j < 0 || t[i] > s[j + 1]) {
                j = 0;
                while (s[j + 1] <= t[i])
                    ++j;
                r = 1.0 / (s[j + 1] - s[j]);
            }
            jPrev = j;
            js[i] = j;
            us[i] = (t[i] - s[j]) * r;
        }
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

// Allocations per call (counted when one thread runs: the per-thread colours of a second thread
// are made outside its timing but inside the count) and calls done, for the scaling figures.
void Finish(benchmark::State& state, long long before) {
    if (state.threads() == 1)
        CountAllocations(state, before);
    state.SetItemsProcessed(state.iterations());
}

// The limit kernels' bodies, inlined into each target's function (LimitTargets.h).

// The same three weighted sums as the mass converter's response, in the same order.
KOR_LIMIT_INLINE inline TVect3<double> ThreeWeightSum(const double* s, int stride,
                                                      const double (*wt)[kN]) {
    double a = 0.0, b = 0.0, c = 0.0;
    for (int i = 0; i < kN; ++i) {
        const double v = s[i * stride];
        a += v * wt[0][i];
        b += v * wt[1][i];
        c += v * wt[2][i];
    }
    return {a, b, c};
}

// M xyz with negatives set to 0.
KOR_LIMIT_INLINE inline TVect3<double> ClampedM(const Fixture& f, const TVect3<double>& xyz) {
    TVect3<double> v;
    for (int r = 0; r < 3; ++r) {
        const double x = f.m[r][0] * xyz.x + f.m[r][1] * xyz.y + f.m[r][2] * xyz.z;
        v[r] = x < 0.0 ? 0.0 : x;
    }
    return v;
}

// The trapezoid energy, each term v_k (l_{k+1} - l_{k-1}) / 2 in index order.
KOR_LIMIT_INLINE inline double Energy(const double* v, const double* span) {
    double e = 0.0;
    for (int k = 0; k < kN; ++k)
        e += v[k] * span[k] / 2.0;
    return e;
}

// 1. A spectral light from an RGB light: reconstruction, then the clamp of negatives.
void BM_SpectralLightFromRGB(benchmark::State& state) {
    Fixture& f = F();
    LgtColor<USpec> target; // one per thread
    Fixture::Size(target, kN);
    LgtColor<URGB> source = f.rgbLight;
    const long long before = MemStats::Get("TArray").blocksTotal;
    int k = 0;
    for (auto _ : state) {
        const TVect3<double> c = Colour(k++);
        source[0] = c.x;
        source[2] = c.z;
        benchmark::DoNotOptimize(f.spectral->ConvertColor(f.rgb, source, target));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

// s_i = max(0, (1 - u_i) v[j_i] + u_i v[j_i + 1]) by the planned intervals and weights.
KOR_LIMIT_INLINE inline void LerpClamped(const double* v, const int* js, const double* us, int n,
                                         double* out) {
    for (int i = 0; i < n; ++i) {
        const int j = js[i];
        const double u = us[i];
        const double x = (1.0 - u) * v[j] + u * v[j + 1];
        out[i] = x < 0.0 ? 0.0 : x;
    }
}

// s_i = max(0, row_i . rgb): the reconstruction and the clamp in one pass.
KOR_LIMIT_INLINE inline void ReconstructClamped(const Fixture& f, const TVect3<double>& rgb,
                                                double* out) {
    for (int i = 0; i < kN; ++i) {
        const double v = f.rec[0][i] * rgb.x + f.rec[1][i] * rgb.y + f.rec[2][i] * rgb.z;
        out[i] = v < 0.0 ? 0.0 : v;
    }
}

template <class T>
void BM_SpectralLightFromRGB_Limit(benchmark::State& state) {
    Fixture& f = F();
    double* out = f.plain;
    int k = 0;
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        ReconstructClamped(f, Colour(k++), out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    });
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
    Finish(state, before);
}

template <class T>
void BM_SpectralLgtColorToRGB_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        TVect3<double> rgb = ThreeWeightSum(s, 1, f.rgbDens);
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    });
}

// 3. A spectral light resampled from the 81-point grid onto the default grid.
void BM_SpectralLightResample(benchmark::State& state) {
    Fixture& f = F();
    LgtColor<USpec> target; // one per thread
    Fixture::Size(target, kN);
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.spectral->ConvertColor(f.wide.Get(), f.wideLight, target));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

template <class T>
void BM_SpectralLightResample_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* v = f.wideLight.Values();
    double* out = f.plain;
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        LerpClamped(v, f.lerpJ, f.lerpU, kN, out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    });
}

// 4. Density to energy and a scaled sum. DensityToEnergy would grow the values without bound,
// so both sides copy the starting values in first; the copy is the same 33 doubles in both.
void BM_SpectralDensityToEnergy(benchmark::State& state) {
    Fixture& f = F();
    LgtColor<USpec> target; // one per thread
    Fixture::Size(target, kN);
    const long long before = MemStats::Get("TArray").blocksTotal;
    double* v = target.Values();
    for (auto _ : state) {
        std::memcpy(v, f.start, kN * sizeof(double));
        f.spectral->DensityToEnergy(target);
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

// v_i *= w_i over the grid.
KOR_LIMIT_INLINE inline void Weigh(double* v, const double* w) {
    for (int i = 0; i < kN; ++i)
        v[i] *= w[i];
}

template <class T>
void BM_SpectralDensityToEnergy_Limit(benchmark::State& state) {
    Fixture& f = F();
    double* v = f.plain;
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        std::memcpy(v, f.start, kN * sizeof(double));
        Weigh(v, f.w);
        benchmark::DoNotOptimize(v);
        benchmark::ClobberMemory();
    });
}

// The factor is small enough that the sum stays finite for any run length.
constexpr double kAddFactor = 1e-9;

void BM_SpectralAddScaledLgt(benchmark::State& state) {
    Fixture& f = F();
    LgtColor<USpec> to; // one per thread, starting as the fixture's light
    Fixture::Size(to, kN);
    std::memcpy(to.Values(), f.light.Values(), kN * sizeof(double));
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        f.spectral->AddScaledLgt(f.lightB, kAddFactor, to);
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

// to_i += f from_i over the grid.
KOR_LIMIT_INLINE inline void AddScaled(double* to, double factor, const double* from) {
    for (int i = 0; i < kN; ++i)
        to[i] += factor * from[i];
}

template <class T>
void BM_SpectralAddScaledLgt_Limit(benchmark::State& state) {
    Fixture& f = F();
    double* to = f.plain;
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        AddScaled(to, kAddFactor, f.plainB);
        benchmark::DoNotOptimize(to);
        benchmark::ClobberMemory();
    });
}

// 5. An RGB ray from a spectral light: XYZ, M, clamp, then scaling to the spectral energy.
void BM_RGBRayFromSpectral(benchmark::State& state) {
    Fixture& f = F();
    RayColor<URGB> ray{}; // one per thread
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.rgb->ConvertToRayColor(f.spectral, f.light, ray));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

// The ray's RGB: M XYZ clamped, scaled by E / (R + G + B) with E the trapezoid energy.
KOR_LIMIT_INLINE inline void RayRGB(const Fixture& f, const double* s, double out[3]) {
    const TVect3<double> xyz = ThreeWeightSum(s, 1, f.xyzW);
    const double e = Energy(s, f.span);
    const TVect3<double> rgb = ClampedM(f, xyz);
    const double scale = e / (rgb.x + rgb.y + rgb.z);
    for (int r = 0; r < 3; ++r)
        out[r] = rgb[r] * scale;
}

template <class T>
void BM_RGBRayFromSpectral_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    double out[3];
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        RayRGB(f, s, out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    });
}

// 6. Density to energy of a Stokes light: all four doubles of each wavelength.
void BM_StokesDensityToEnergy(benchmark::State& state) {
    Fixture& f = F();
    LgtColor<SSpec> light; // one per thread
    Fixture::Size(light, kN);
    const long long before = MemStats::Get("TArray").blocksTotal;
    double* v = light.Values();
    for (auto _ : state) {
        std::memcpy(v, f.start, sizeof f.start);
        f.stokes->DensityToEnergy(light);
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

// (I, Q, U, V)_i *= w_i over the grid.
KOR_LIMIT_INLINE inline void WeighStokes(double* v, const double* w) {
    for (int i = 0; i < kN; ++i) {
        const double wi = w[i]; // read once: the stores below may alias the table
        double* p = v + 4 * i;
        p[0] *= wi;
        p[1] *= wi;
        p[2] *= wi;
        p[3] *= wi;
    }
}

template <class T>
void BM_StokesDensityToEnergy_Limit(benchmark::State& state) {
    Fixture& f = F();
    double* v = f.plain;
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        std::memcpy(v, f.start, sizeof f.start);
        WeighStokes(v, f.w);
        benchmark::DoNotOptimize(v);
        benchmark::ClobberMemory();
    });
}

// 7. An RGB light from a spectral light: XYZ by the converter's light rows, M, the clamp.
void BM_RGBLightFromSpectral(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    LgtColor<URGB> out{};
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.rgb->ConvertColor(f.spectral, f.light, out));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

template <class T>
void BM_RGBLightFromSpectral_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        TVect3<double> rgb = ClampedM(f, ThreeWeightSum(s, 1, f.xyzW));
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    });
}

// 8. An XYZ light from a spectral light: the converter's light rows, the clamp.
void BM_XYZLightFromSpectral(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    LgtColor<URGB> out{};
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.xyzModel->ConvertColor(f.spectral, f.light, out));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

// XYZ by the integration weights, negatives set to 0.
KOR_LIMIT_INLINE inline TVect3<double> ClampedXYZ(const Fixture& f, const double* s) {
    TVect3<double> xyz = ThreeWeightSum(s, 1, f.xyzW);
    for (int c = 0; c < 3; ++c)
        xyz[c] = xyz[c] >= 0.0 ? xyz[c] : 0.0;
    return xyz;
}

template <class T>
void BM_XYZLightFromSpectral_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        TVect3<double> xyz = ClampedXYZ(f, s);
        benchmark::DoNotOptimize(xyz);
        benchmark::ClobberMemory();
    });
}

// 9. Resampling the default grid onto 380..780 nm by 10 (a shift of one step, held ends).
void BM_SpectralLightResampleTo41(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    LgtColor<USpec> out;
    Fixture::Size(out, kW);
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.wide10->ConvertColor(f.spectral, f.light, out));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

template <class T>
void BM_SpectralLightResampleTo41_Limit(benchmark::State& state) {
    Fixture& f = F();
    double out[kW];
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        LerpClamped(f.light.Values(), f.lerp10J, f.lerp10U, kW, out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    });
}

// 10. LgtEnergy: the trapezoid area.
void BM_SpectralLgtEnergy(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.spectral->LgtEnergy(f.light));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

template <class T>
void BM_SpectralLgtEnergy_Limit(benchmark::State& state) {
    Fixture& f = F();
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        benchmark::DoNotOptimize(Energy(f.light.Values(), f.span));
        benchmark::ClobberMemory();
    });
}

// 11. An RGB light from an XYZ light: M and the clamp, behind the interface's virtual calls.
void BM_RGBLightFromXYZ(benchmark::State& state) {
    Fixture& f = F();
    const long long before = MemStats::Get("TArray").blocksTotal;
    LgtColor<URGB> out{};
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.rgb->ConvertColor(f.xyzModel, f.rgbLight, out));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

template <class T>
void BM_RGBLightFromXYZ_Limit(benchmark::State& state) {
    Fixture& f = F();
    T::Loop(state, [&]() KOR_LIMIT_INLINE {
        TVect3<double> rgb = ClampedM(f, {f.rgbLight[0], f.rgbLight[1], f.rgbLight[2]});
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    });
}

// Every library path against its limit kernel, under each target, on the fixture's colours,
// double by double, once before any timing: a kernel that does not compute the library's bits
// measures nothing.
bool SameBits(const double* a, const double* b, int n, const char* what, const char* target) {
    if (std::memcmp(a, b, static_cast<std::size_t>(n) * sizeof(double)) == 0)
        return true;
    std::fprintf(stderr, "limit kernel (%s) differs from the library: %s\n", target, what);
    return false;
}

template <class T>
bool CheckLimitKernels(const char* target) {
    Fixture& f = F();
    bool ok = true;
    const auto same = [&](const double* a, const double* b, int n, const char* what) {
        ok = SameBits(a, b, n, what, target) && ok;
    };
    double out[kW];
    TVect3<double> lim;
    {
        const TVect3<double> c = Colour(1);
        f.rgbLight[0] = c.x;
        f.rgbLight[1] = c.y;
        f.rgbLight[2] = c.z;
        f.spectral->ConvertColor(f.rgb, f.rgbLight, f.target);
        T::Once([&]() KOR_LIMIT_INLINE { ReconstructClamped(f, c, out); });
        same(f.target.Values(), out, kN, "spectral light from RGB");
    }
    {
        TVect3<double> rgb;
        f.spectral->LgtColorToRGB(f.light, rgb, false, false);
        T::Once([&]() KOR_LIMIT_INLINE { lim = ThreeWeightSum(f.light.Values(), 1, f.rgbDens); });
        same(&rgb.x, &lim.x, 3, "LgtColorToRGB");
    }
    {
        LgtColor<URGB> rgb{};
        f.rgb->ConvertColor(f.spectral, f.light, rgb);
        T::Once([&]() KOR_LIMIT_INLINE {
            lim = ClampedM(f, ThreeWeightSum(f.light.Values(), 1, f.xyzW));
        });
        same(&rgb[0], &lim.x, 3, "RGB light from spectral");
        f.xyzModel->ConvertColor(f.spectral, f.light, rgb);
        T::Once([&]() KOR_LIMIT_INLINE { lim = ClampedXYZ(f, f.light.Values()); });
        same(&rgb[0], &lim.x, 3, "XYZ light from spectral");
        f.rgb->ConvertColor(f.xyzModel, f.rgbLight, rgb);
        T::Once([&]() KOR_LIMIT_INLINE {
            lim = ClampedM(f, {f.rgbLight[0], f.rgbLight[1], f.rgbLight[2]});
        });
        same(&rgb[0], &lim.x, 3, "RGB light from XYZ");
        f.rgb->ConvertToRayColor(f.spectral, f.light, f.rgbRay);
        T::Once([&]() KOR_LIMIT_INLINE { RayRGB(f, f.light.Values(), out); });
        same(&f.rgbRay.Light()[0], out, 3, "RGB ray from spectral");
    }
    {
        f.spectral->ConvertColor(f.wide.Get(), f.wideLight, f.target);
        T::Once([&]() KOR_LIMIT_INLINE {
            LerpClamped(f.wideLight.Values(), f.lerpJ, f.lerpU, kN, out);
        });
        same(f.target.Values(), out, kN, "resampling 81 -> 33");
        LgtColor<USpec> to41;
        Fixture::Size(to41, kW);
        f.wide10->ConvertColor(f.spectral, f.light, to41);
        T::Once([&]() KOR_LIMIT_INLINE {
            LerpClamped(f.light.Values(), f.lerp10J, f.lerp10U, kW, out);
        });
        same(to41.Values(), out, kW, "resampling 33 -> 41");
        to41.Distr().SetLength(0);
    }
    {
        const double e = f.spectral->LgtEnergy(f.light);
        double e2 = 0.0;
        T::Once([&]() KOR_LIMIT_INLINE { e2 = Energy(f.light.Values(), f.span); });
        same(&e, &e2, 1, "LgtEnergy");
        std::memcpy(f.target.Values(), f.start, kN * sizeof(double));
        f.spectral->DensityToEnergy(f.target);
        std::memcpy(out, f.start, kN * sizeof(double));
        T::Once([&]() KOR_LIMIT_INLINE { Weigh(out, f.w); });
        same(f.target.Values(), out, kN, "DensityToEnergy");
        std::memcpy(f.target.Values(), f.light.Values(), kN * sizeof(double));
        f.spectral->AddScaledLgt(f.lightB, kAddFactor, f.target);
        std::memcpy(out, f.light.Values(), kN * sizeof(double));
        T::Once([&]() KOR_LIMIT_INLINE { AddScaled(out, kAddFactor, f.plainB); });
        same(f.target.Values(), out, kN, "AddScaledLgt");
    }
    {
        std::memcpy(f.stokesLight.Values(), f.start, sizeof f.start);
        f.stokes->DensityToEnergy(f.stokesLight);
        double v[4 * kN];
        std::memcpy(v, f.start, sizeof v);
        T::Once([&]() KOR_LIMIT_INLINE { WeighStokes(v, f.w); });
        same(f.stokesLight.Values(), v, 4 * kN, "Stokes DensityToEnergy");
    }
    return ok;
}

const bool kChecked = Limit::CheckEveryTarget(
    [](auto target, const char* name) { return CheckLimitKernels<decltype(target)>(name); });

BENCHMARK(BM_RGBLightFromSpectral)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_RGBLightFromSpectral_Limit);
BENCHMARK(BM_XYZLightFromSpectral)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_XYZLightFromSpectral_Limit);
BENCHMARK(BM_SpectralLightResampleTo41)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralLightResampleTo41_Limit);
BENCHMARK(BM_SpectralLgtEnergy)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralLgtEnergy_Limit);
BENCHMARK(BM_RGBLightFromXYZ)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_RGBLightFromXYZ_Limit);

BENCHMARK(BM_SpectralLightFromRGB)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralLightFromRGB_Limit);
BENCHMARK(BM_SpectralLgtColorToRGB)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralLgtColorToRGB_Limit);
BENCHMARK(BM_SpectralLightResample)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralLightResample_Limit);
BENCHMARK(BM_SpectralDensityToEnergy)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralDensityToEnergy_Limit);
BENCHMARK(BM_SpectralAddScaledLgt)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_SpectralAddScaledLgt_Limit);
BENCHMARK(BM_RGBRayFromSpectral)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_RGBRayFromSpectral_Limit);
BENCHMARK(BM_StokesDensityToEnergy)->ThreadRange(1, 2)->UseRealTime();
KOR_LIMIT_BENCHMARK(BM_StokesDensityToEnergy_Limit);

} // namespace
} // namespace Korvane
