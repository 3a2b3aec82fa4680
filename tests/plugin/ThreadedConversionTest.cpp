// Several threads convert colours through the same models at once: spectral <-> RGB, XYZ and xyY,
// lights and surfaces, spectral between two grids (resampling), display colours, and the
// converter's first sight of a grid, on a grid of each thread's own and on one grid that every
// thread meets at the same moment. Every thread must get the numbers that one thread alone gets.
// Run under the "tsan" preset, where ThreadSanitizer reports any data race.
//
// Kept out on purpose, because the library allows them to race: the first WeightForSurface of a
// mass converter (its surface table is filled on first use, unguarded) and the first
// GetModel_380_780 (the shared model is made on first request). Both are made once here before
// the threads start.
#include "hostkit/cie/CIEConv.h"
#include "hostkit/colormodel/Holders.h"
#include "plugin/masscolconv/MassColConv.h"
#include "plugin/models/ColourAccess.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"
#include "tests/plugin/HolderTestSupport.h"
#include "tests/plugin/ModelTestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

using namespace Korvane;
using Korvane::Testing::GridModel;

using Korvane::Testing::EvenGrid;

namespace {

using ThreadedConversion = Korvane::Testing::Registered;

// Everything one round of conversions produces (the answers of the steps included, which must
// be 0), compared bit for bit between threads.
struct Results {
    std::vector<double> values;
    int failedSteps = 0; // conversions that did not answer 0
    bool operator==(const Results& o) const {
        return values.size() == o.values.size() &&
               std::memcmp(values.data(), o.values.data(), values.size() * sizeof(double)) == 0;
    }
};

// A spectral colour given its model's length, as a host does before converting into it (a new
// spectral holder is empty).
template <class I>
void Size(const ColorModel& m, I& c) {
    ASSERT_EQ(ColourAccess::Value<SpectralModel<Unpolarized>>(c).Distr().SetLength(m.NWaves()), 0);
}

// The answer of one conversion step.
void Step(Results& r, int code) {
    r.values.push_back(code);
    r.failedSteps += code != 0;
}

void Add(Results& r, const TVect3<double>& v) {
    r.values.insert(r.values.end(), {v.x, v.y, v.z});
}

// One round: an RGB light through the spectral model (and on to the model on another grid),
// back to RGB, XYZ and xyY, and the display colours of each; an RGB surface colour the same way
// through both grids and back; the converter's first use of a grid that no one has converted on
// yet.
Results Round(const ColorModel& spectral, const ColorModel& other, const MArray<double>& fresh,
              double seed) {
    Results r;
    const ColorModel* rgb = RGBModel<Unpolarized>::GetModel();
    const ColorModel* xyz = XYZModel::GetModel();
    const ColorModel* xyy = XYYModel::GetModel();
    TPlugRef<Holder<ILgtColor>> source = rgb->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> spectrum = spectral.NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> resampled = other.NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> back = rgb->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> asXYZ = xyz->NewLgtColorHold();
    TPlugRef<Holder<ILgtColor>> asXYY = xyy->NewLgtColorHold();
    Size(spectral, spectrum->Color());
    Size(other, resampled->Color());
    const double values[3] = {0.2 + seed, 0.5, 0.7 - seed};
    rgb->SetLgtColor(source->Color(), values);
    Step(r, spectral.ConvertColor(rgb, source->Color(), spectrum->Color()));
    Step(r, other.ConvertColor(&spectral, spectrum->Color(), resampled->Color()));
    Step(r, rgb->ConvertColor(&other, resampled->Color(), back->Color()));
    Step(r, xyz->ConvertColor(&spectral, spectrum->Color(), asXYZ->Color()));
    Step(r, xyy->ConvertColor(xyz, asXYZ->Color(), asXYY->Color()));
    Step(r, spectral.ConvertColor(xyy, asXYY->Color(), spectrum->Color()));
    TVect3<double> v;
    for (const auto* pair : {&spectral, &other}) {
        const Holder<ILgtColor>& c = pair == &spectral ? *spectrum.Get() : *resampled.Get();
        r.values.push_back(pair->LgtColorToDisplayRGB(c.Color(), v));
        Add(r, v);
        r.values.push_back(pair->LgtColorToRGB(c.Color(), v, false, true));
        Add(r, v);
        r.values.push_back(pair->LgtColorToXYZ(c.Color(), v));
        Add(r, v);
    }
    double out[3];
    rgb->LgtToArray(back->Color(), out);
    r.values.insert(r.values.end(), out, out + 3);
    TPlugRef<Holder<ISurfColor>> surface = rgb->NewSurfColorHold();
    TPlugRef<Holder<ISurfColor>> reflectance = spectral.NewSurfColorHold();
    TPlugRef<Holder<ISurfColor>> resampledSurface = other.NewSurfColorHold();
    TPlugRef<Holder<ISurfColor>> backSurface = rgb->NewSurfColorHold();
    Size(spectral, reflectance->Color());
    Size(other, resampledSurface->Color());
    const double albedo[3] = {0.6 - seed, 0.3, 0.1 + seed};
    rgb->SetSurfColor(surface->Color(), albedo);
    Step(r, spectral.ConvertColor(rgb, surface->Color(), reflectance->Color()));
    Step(r, other.ConvertColor(&spectral, reflectance->Color(), resampledSurface->Color()));
    Step(r, rgb->ConvertColor(&other, resampledSurface->Color(), backSurface->Color()));
    rgb->SurfToArray(backSurface->Color(), out);
    r.values.insert(r.values.end(), out, out + 3);
    spectral.SurfColorToRGB(reflectance->Color(), v);
    Add(r, v);
    TArray<double> flat(10, 1);
    flat.Alloc(fresh.Count());
    flat.Fill(1.0 + seed);
    r.values.push_back(CIEConv::spectrum2xyz(fresh, flat, v));
    Add(r, v);
    return r;
}

} // namespace

TEST_F(ThreadedConversion, SharedModelsGiveEveryThreadTheSameNumbers) {
    constexpr int kThreads = 4;
    constexpr int kRounds = 20;
    const ColorModel& spectral = *SpectralModel<Unpolarized>::GetModel();
    const GridModel<Unpolarized> other(EvenGrid(380.0, 5.0, 81));
    // The races the library allows, taken out of the threads (see the top of the file).
    spectral.GetMassColConv()->WeightForSurface(0);
    other.GetMassColConv()->WeightForSurface(0);
    SpectralModel<Unpolarized>::GetModel_380_780();

    // The expected numbers come from one thread, on a grid the converter then knows; the threads
    // get grids of their own that the converter has not seen, all at once.
    std::vector<MArray<double>> fresh;
    for (int t = 0; t <= kThreads; ++t)
        fresh.push_back(EvenGrid(400.0 + 0.25 * t, 3.0, 90));
    std::vector<Results> expected;
    for (int k = 0; k < kRounds; ++k) {
        expected.push_back(Round(spectral, other, fresh[kThreads], 0.01 * k));
        ASSERT_EQ(expected.back().failedSteps, 0) << "round " << k;
    }
    // The result of the fresh grid's conversion is the same function on every grid of this
    // shape only up to its position, so it is compared on the expected grid's own numbers below.
    std::vector<std::vector<Results>> got(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int k = 0; k < kRounds; ++k)
                got[t].push_back(
                    Round(spectral, other, fresh[(t + k) % 2 ? t : kThreads], 0.01 * k));
        });
    for (std::thread& th : threads)
        th.join();
    for (int t = 0; t < kThreads; ++t)
        for (int k = 0; k < kRounds; ++k) {
            // Rounds on the threads' own grids differ in the last four numbers only.
            Results a = got[t][k];
            Results b = expected[k];
            if ((t + k) % 2) {
                a.values.resize(a.values.size() - 4);
                b.values.resize(b.values.size() - 4);
            }
            EXPECT_TRUE(a == b) << "thread " << t << ", round " << k;
        }
}

// Every thread meets the same grid, new to the converter, at the same moment: one builds its
// tables while the others wait for them or find them; all get the numbers of a serial run made
// afterwards on the same grid.
TEST_F(ThreadedConversion, ThreadsMeetingANewGridTogether) {
    constexpr int kThreads = 4;
    const ColorModel& spectral = *SpectralModel<Unpolarized>::GetModel();
    const GridModel<Unpolarized> other(EvenGrid(382.5, 7.5, 53));
    spectral.GetMassColConv()->WeightForSurface(0);
    other.GetMassColConv()->WeightForSurface(0);
    SpectralModel<Unpolarized>::GetModel_380_780();

    for (int round = 0; round < 3; ++round) {
        const MArray<double> shared = EvenGrid(401.0 + 0.125 * round, 2.75, 97);
        std::atomic<int> waiting{kThreads};
        std::vector<Results> got(kThreads);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] {
                waiting.fetch_sub(1);
                while (waiting.load() > 0)
                    std::this_thread::yield();
                got[t] = Round(spectral, other, shared, 0.02 * round);
            });
        for (std::thread& th : threads)
            th.join();
        const Results serial = Round(spectral, other, shared, 0.02 * round);
        ASSERT_EQ(serial.failedSteps, 0) << "round " << round;
        for (int t = 0; t < kThreads; ++t)
            EXPECT_TRUE(got[t] == serial) << "thread " << t << ", round " << round;
    }
}
