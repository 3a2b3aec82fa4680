// Resampling plans: the same bits as ResampleSpectrum on random grid pairs in every component
// layout, the same refusals, one plan per source grid kept by the spectral model, dropped when its
// grid changes and shared safely between threads.
#include "ModelTestSupport.h"

#include "plugin/colour/ColourValues.h"
#include "plugin/spectral/ResamplePlan.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <thread>
#include <vector>

using namespace Korvane;
using Korvane::Testing::Grid;
using Values = std::vector<double>;
using USpec = SpectralModel<Unpolarized>;

namespace {

bool SameBits(const Values& a, const Values& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

// n ascending wavelengths from `start`, steps drawn from [0.1, maxStep) nm.
MArray<double> Ascending(std::mt19937& rng, int n, double start, double maxStep) {
    MArray<double> grid(10);
    grid.Alloc(n);
    for (int k = 0; k < n; ++k, start += std::uniform_real_distribution<double>(0.1, maxStep)(rng))
        grid[k] = start;
    return grid;
}

// A target grid of one of the shapes that take different paths through the resampling.
MArray<double> TargetFor(std::mt19937& rng, int shape, const MArray<double>& s, int m) {
    const double end = s[s.Count() - 1];
    switch (shape) {
    case 0:
        return Ascending(rng, m / 4 + 2, 370.0, 80.0); // sparser
    case 1:
        return Ascending(rng, m * 3, 385.0, 4.0); // denser
    case 2:
        return Ascending(rng, m, s[s.Count() / 2], 20.0); // overlapping
    case 3:
        return Ascending(rng, m, end + 1.0, 10.0); // above
    case 4:
        return Ascending(rng, m, 100.0, 1.0); // below
    case 5:
        return Ascending(rng, m, 370.0, 20.0); // over a one-point source
    case 6:
        return Ascending(rng, 1, end, 1.0); // the last source point alone
    default:
        return s; // equal
    }
}

// Random values and band in layout kSource/kTarget: the cache gives ResampleSpectrum's status and
// bits. The targets start at a value no path writes, so a skipped index shows.
template <int kSource, int kTarget>
void ExpectSameBits(std::mt19937& rng, const MArray<double>& s, const MArray<double>& t,
                    ResamplePlanCache& cache) {
    const int m = s.Count(), n = t.Count();
    Values v(static_cast<std::size_t>(m * kSource));
    for (double& x : v)
        x = std::uniform_real_distribution<double>(-2.0, 3.0)(rng);
    const int first = std::uniform_int_distribution<int>(0, m - 1)(rng);
    const int last = std::uniform_int_distribution<int>(first, m - 1)(rng);
    Values expected(static_cast<std::size_t>(n * kTarget), 99.0), cached = expected;
    SpectrumLayout<kSource, kTarget> a(v.data(), m, first, last, expected.data(), n);
    SpectrumLayout<kSource, kTarget> b(v.data(), m, first, last, cached.data(), n);
    ASSERT_EQ(ResampleSpectrum(s, t, a), 0);
    ASSERT_EQ(cache.Resample(s, t, b), 0);
    EXPECT_TRUE(SameBits(cached, expected))
        << kSource << "/" << kTarget << ", " << m << " to " << n;
}

LgtColor<USpec> Light(const Values& v) {
    LgtColor<USpec> c;
    c.Distr().SetLength(static_cast<int>(v.size()));
    std::copy(v.begin(), v.end(), c.Values());
    return c;
}

} // namespace

TEST(ResamplePlan, ReproducesResampleSpectrumBitForBitInEveryLayout) {
    std::mt19937 rng(20261121);
    for (int round = 0; round < 400; ++round) {
        const int m = std::uniform_int_distribution<int>(2, 40)(rng);
        const MArray<double> s = Ascending(rng, round % 8 == 5 ? 1 : m, 380.0, 20.0);
        const MArray<double> t = TargetFor(rng, round % 8, s, m);
        ResamplePlanCache cache; // one per target grid, as a model keeps it
        ExpectSameBits<1, 1>(rng, s, t, cache);
        ExpectSameBits<4, 4>(rng, s, t, cache);
        ExpectSameBits<4, 1>(rng, s, t, cache);
        ExpectSameBits<16, 1>(rng, s, t, cache);
        EXPECT_EQ(cache.PlansBuilt(), 1); // the four layouts share the grids' plan
    }
}

TEST(ResamplePlan, RefusesWhatResampleSpectrumRefusesAndKeepsNoPlanForIt) {
    const MArray<double> t = Grid({400, 450, 500, 550}), empty = Grid({});
    const MArray<double> three = Grid({400, 500, 600}), backwards = Grid({450, 700, 420});
    const Values v{1, 2, 3, 4};
    for (const auto& [s, to] : {std::pair(&empty, &t), std::pair(&three, &backwards)}) {
        const int m = s->Count(), n = to->Count();
        Values expected(static_cast<std::size_t>(n), 99.0), cached = expected;
        SpectrumLayout<1, 1> a(v.data(), m, 0, m - 1, expected.data(), n);
        SpectrumLayout<1, 1> b(v.data(), m, 0, m - 1, cached.data(), n);
        ResamplePlanCache cache;
        EXPECT_EQ(ResampleSpectrum(*s, *to, a), -1);
        EXPECT_EQ(cache.Resample(*s, *to, b), -1);
        EXPECT_TRUE(SameBits(cached, expected)); // the same partial writes
        EXPECT_EQ(cache.CachedPlans(), 0);
    }
    // Counts that do not fit the grids: refused before and after the grids' plan exists.
    ResamplePlanCache cache;
    Values out(4);
    SpectrumLayout<1, 1> fits(v.data(), 3, 0, 2, out.data(), 4),
        shortTarget(v.data(), 3, 0, 2, out.data(), 3);
    EXPECT_EQ(cache.Resample(three, t, shortTarget), -1);
    EXPECT_EQ(cache.Resample(three, t, fits), 0);
    EXPECT_EQ(cache.Resample(three, t, shortTarget), -1);
}

class SpectralModelPlans : public testing::Test {
protected:
    Values Convert(const USpec* src, const Values& v) {
        auto to = Light(Values(static_cast<std::size_t>(u_->NWaves())));
        EXPECT_EQ(u_->ConvertColor(src, Light(v), to), 0);
        return {to.Values(), to.Values() + to.Count()};
    }
    // ResampleSpectrum onto the model's grid, then the light conversion's closing clamp.
    Values Expected(const USpec* src, const Values& v) {
        Values out(static_cast<std::size_t>(u_->NWaves()));
        SpectrumLayout<1, 1> layout(v.data(), src->NWaves(), 0, src->NWaves() - 1, out.data(),
                                    u_->NWaves());
        EXPECT_EQ(ResampleSpectrum(src->GetWaveLengths(), u_->GetWaveLengths(), layout), 0);
        for (double& x : out)
            x = x < 0.0 ? 0.0 : x;
        return out;
    }

    Testing::ScopedModelTypes types_;
    TPlugRef<Testing::GridModel<Unpolarized>> u_ = new Testing::GridModel<Unpolarized>(
        Grid({400, 430, 460, 490, 520, 550, 580, 610, 640, 670, 700}));
    TPlugRef<USpec> coarse_ = new Testing::GridModel<Unpolarized>(Grid({380, 455, 520, 610, 780}));
    TPlugRef<USpec> fine_ = new Testing::GridModel<Unpolarized>(Grid({390, 402.5, 415, 600, 690}));
    Values coarseLight_{1.0, 0.5, 2.0, -0.25, 3.0}, fineLight_{0.2, 0.9, 0.4, 1.5, 0.1};
};

TEST_F(SpectralModelPlans, ConversionsReuseTheSourceGridsPlanUntilTheGridChanges) {
    for (int k = 0; k < 2; ++k)
        EXPECT_TRUE(
            SameBits(Convert(coarse_.Get(), coarseLight_), Expected(coarse_.Get(), coarseLight_)));
    EXPECT_EQ(u_->ResamplePlans().PlansBuilt(), 1);
    EXPECT_TRUE(SameBits(Convert(fine_.Get(), fineLight_), Expected(fine_.Get(), fineLight_)));
    EXPECT_EQ(u_->ResamplePlans().CachedPlans(), 2);
    TPlugRef<USpec> copy = static_cast<USpec*>(u_->Clone());
    EXPECT_EQ(copy->ResamplePlans().CachedPlans(), 0);

    ASSERT_EQ(u_->SetWaveLengths(Grid({420, 500, 580, 660})), 0);
    EXPECT_EQ(u_->ResamplePlans().CachedPlans(), 0);
    EXPECT_TRUE(
        SameBits(Convert(coarse_.Get(), coarseLight_), Expected(coarse_.Get(), coarseLight_)));
    u_->OnLoad(1);
    EXPECT_EQ(u_->ResamplePlans().CachedPlans(), 0);
}

TEST_F(SpectralModelPlans, ThreadsConvertingAtOnceGiveTheSerialResults) {
    const Values coarse = Expected(coarse_.Get(), coarseLight_);
    const Values fine = Expected(fine_.Get(), fineLight_);
    int mismatches[2] = {0, 0};
    const auto worker = [&](int w) { // the two threads alternate the sources out of step
        for (int k = 0; k < 300; ++k) {
            const bool c = (k + w) % 2 == 0;
            if (!SameBits(Convert(c ? coarse_.Get() : fine_.Get(), c ? coarseLight_ : fineLight_),
                          c ? coarse : fine))
                ++mismatches[w];
        }
    };
    std::thread a(worker, 0), b(worker, 1);
    a.join();
    b.join();
    EXPECT_EQ(mismatches[0] + mismatches[1], 0);
    EXPECT_EQ(u_->ResamplePlans().PlansBuilt(), 2);
}
