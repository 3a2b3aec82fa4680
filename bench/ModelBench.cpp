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
#include "plugin/models/XYZModel.h"

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

void BM_SpectralLightFromRGB_Limit(benchmark::State& state) {
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
    Finish(state, before);
}

void BM_SpectralLgtColorToRGB_Limit(benchmark::State& state) {
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
    LgtColor<USpec> target; // one per thread
    Fixture::Size(target, kN);
    const long long before = MemStats::Get("TArray").blocksTotal;
    for (auto _ : state) {
        benchmark::DoNotOptimize(f.spectral->ConvertColor(f.wide.Get(), f.wideLight, target));
        benchmark::ClobberMemory();
    }
    Finish(state, before);
}

void BM_SpectralLightResample_Limit(benchmark::State& state) {
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

void BM_SpectralDensityToEnergy_Limit(benchmark::State& state) {
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

void BM_SpectralAddScaledLgt_Limit(benchmark::State& state) {
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

void BM_RGBRayFromSpectral_Limit(benchmark::State& state) {
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

void BM_StokesDensityToEnergy_Limit(benchmark::State& state) {
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

TVect3<double> ClampedM(const Fixture& f, const TVect3<double>& xyz) {
    TVect3<double> v;
    for (int r = 0; r < 3; ++r) {
        const double x = f.m[r][0] * xyz.x + f.m[r][1] * xyz.y + f.m[r][2] * xyz.z;
        v[r] = x < 0.0 ? 0.0 : x;
    }
    return v;
}

void BM_RGBLightFromSpectral_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    for (auto _ : state) {
        TVect3<double> rgb = ClampedM(f, ThreeWeightSum(s, 1, f.xyzW));
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    }
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

void BM_XYZLightFromSpectral_Limit(benchmark::State& state) {
    Fixture& f = F();
    const double* s = f.light.Values();
    for (auto _ : state) {
        TVect3<double> xyz = ThreeWeightSum(s, 1, f.xyzW);
        for (int c = 0; c < 3; ++c)
            xyz[c] = xyz[c] >= 0.0 ? xyz[c] : 0.0;
        benchmark::DoNotOptimize(xyz);
        benchmark::ClobberMemory();
    }
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

void Lerp(const double* v, const int* js, const double* us, int n, double* out) {
    for (int i = 0; i < n; ++i) {
        const int j = js[i];
        const double u = us[i];
        const double x = (1.0 - u) * v[j] + u * v[j + 1];
        out[i] = x < 0.0 ? 0.0 : x;
    }
}

void BM_SpectralLightResampleTo41_Limit(benchmark::State& state) {
    Fixture& f = F();
    double out[kW];
    for (auto _ : state) {
        Lerp(f.light.Values(), f.lerp10J, f.lerp10U, kW, out);
        benchmark::DoNotOptimize(out);
        benchmark::ClobberMemory();
    }
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

double Energy(const double* v, const double* span) {
    double e = 0.0;
    for (int k = 0; k < kN; ++k)
        e += v[k] * span[k] / 2.0;
    return e;
}

void BM_SpectralLgtEnergy_Limit(benchmark::State& state) {
    Fixture& f = F();
    for (auto _ : state) {
        benchmark::DoNotOptimize(Energy(f.light.Values(), f.span));
        benchmark::ClobberMemory();
    }
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

void BM_RGBLightFromXYZ_Limit(benchmark::State& state) {
    Fixture& f = F();
    for (auto _ : state) {
        TVect3<double> rgb = ClampedM(f, {f.rgbLight[0], f.rgbLight[1], f.rgbLight[2]});
        benchmark::DoNotOptimize(rgb);
        benchmark::ClobberMemory();
    }
}

// Every library path against its limit kernel on the fixture's colours, double by double, once
// before any timing: a kernel that does not compute the library's bits measures nothing.
bool SameBits(const double* a, const double* b, int n, const char* what) {
    if (std::memcmp(a, b, static_cast<std::size_t>(n) * sizeof(double)) == 0)
        return true;
    std::fprintf(stderr, "limit kernel differs from the library: %s\n", what);
    return false;
}

void CheckLimitKernels() {
    Fixture& f = F();
    bool ok = true;
    {
        const TVect3<double> c = Colour(1);
        f.rgbLight[0] = c.x;
        f.rgbLight[1] = c.y;
        f.rgbLight[2] = c.z;
        f.spectral->ConvertColor(f.rgb, f.rgbLight, f.target);
        double out[kN];
        for (int i = 0; i < kN; ++i) {
            const double v = f.rec[0][i] * c.x + f.rec[1][i] * c.y + f.rec[2][i] * c.z;
            out[i] = v < 0.0 ? 0.0 : v;
        }
        ok &= SameBits(f.target.Values(), out, kN, "spectral light from RGB");
    }
    {
        TVect3<double> rgb;
        f.spectral->LgtColorToRGB(f.light, rgb, false, false);
        const TVect3<double> lim = ThreeWeightSum(f.light.Values(), 1, f.rgbDens);
        ok &= SameBits(&rgb.x, &lim.x, 3, "LgtColorToRGB");
    }
    {
        LgtColor<URGB> out{};
        f.rgb->ConvertColor(f.spectral, f.light, out);
        const TVect3<double> lim = ClampedM(f, ThreeWeightSum(f.light.Values(), 1, f.xyzW));
        ok &= SameBits(&out[0], &lim.x, 3, "RGB light from spectral");
        f.xyzModel->ConvertColor(f.spectral, f.light, out);
        const TVect3<double> xyz = ThreeWeightSum(f.light.Values(), 1, f.xyzW);
        ok &= SameBits(&out[0], &xyz.x, 3, "XYZ light from spectral");
        f.rgb->ConvertColor(f.xyzModel, f.rgbLight, out);
        const TVect3<double> m = ClampedM(f, {f.rgbLight[0], f.rgbLight[1], f.rgbLight[2]});
        ok &= SameBits(&out[0], &m.x, 3, "RGB light from XYZ");
    }
    {
        double out[kW];
        f.spectral->ConvertColor(f.wide.Get(), f.wideLight, f.target);
        Lerp(f.wideLight.Values(), f.lerpJ, f.lerpU, kN, out);
        ok &= SameBits(f.target.Values(), out, kN, "resampling 81 -> 33");
        LgtColor<USpec> to41;
        Fixture::Size(to41, kW);
        f.wide10->ConvertColor(f.spectral, f.light, to41);
        Lerp(f.light.Values(), f.lerp10J, f.lerp10U, kW, out);
        ok &= SameBits(to41.Values(), out, kW, "resampling 33 -> 41");
        to41.Distr().SetLength(0);
    }
    {
        const double e = f.spectral->LgtEnergy(f.light), lim = Energy(f.light.Values(), f.span);
        ok &= SameBits(&e, &lim, 1, "LgtEnergy");
        std::memcpy(f.target.Values(), f.start, kN * sizeof(double));
        f.spectral->DensityToEnergy(f.target);
        double v[kN];
        for (int i = 0; i < kN; ++i)
            v[i] = f.start[i] * f.w[i];
        ok &= SameBits(f.target.Values(), v, kN, "DensityToEnergy");
    }
    if (!ok)
        std::abort();
}

const int kChecked = (CheckLimitKernels(), 0);

BENCHMARK(BM_RGBLightFromSpectral)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_RGBLightFromSpectral_Limit);
BENCHMARK(BM_XYZLightFromSpectral)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_XYZLightFromSpectral_Limit);
BENCHMARK(BM_SpectralLightResampleTo41)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_SpectralLightResampleTo41_Limit);
BENCHMARK(BM_SpectralLgtEnergy)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_SpectralLgtEnergy_Limit);
BENCHMARK(BM_RGBLightFromXYZ)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_RGBLightFromXYZ_Limit);

BENCHMARK(BM_SpectralLightFromRGB)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_SpectralLightFromRGB_Limit);
BENCHMARK(BM_SpectralLgtColorToRGB)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_SpectralLgtColorToRGB_Limit);
BENCHMARK(BM_SpectralLightResample)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_SpectralLightResample_Limit);
BENCHMARK(BM_SpectralDensityToEnergy)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(BM_SpectralDensityToEnergy_Limit);
BENCHMARK(BM_SpectralAddScaledLgt);
BENCHMARK(BM_SpectralAddScaledLgt_Limit);
BENCHMARK(BM_RGBRayFromSpectral);
BENCHMARK(BM_RGBRayFromSpectral_Limit);
BENCHMARK(BM_StokesDensityToEnergy);
BENCHMARK(BM_StokesDensityToEnergy_Limit);

} // namespace
} // namespace Korvane
