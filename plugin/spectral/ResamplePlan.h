// A resampling plan: what ResampleSpectrum does at each target wavelength for one pair of grids,
// worked out once. Each target index i either copies source component j (the held ends, equal
// grids, a one-point source) or blends j and j + 1 with the weight u that ResampleSpectrum
// computes, (t[i] - s[j]) * reciprocalWidth; applied through the same layout, a plan gives the
// very bits ResampleSpectrum gives, without the interval search and the division per interval.
//
// ResamplePlanCache keeps the plans of one target grid (a spectral model's own), keyed by the
// bits of the source grid. Thread rules: Resample may run from several threads at once; Clear
// (a change of the target grid) must not run while any Resample is under way, as the grid it
// resamples onto is being changed too.
#pragma once

#include "hostkit/base/containers/TArray.h"
#include "plugin/PluginExport.h"
#include "plugin/spectral/Resample.h"

#include <atomic>
#include <memory>
#include <mutex>

namespace Korvane {

class KOR_PLUGIN_API ResamplePlan {
public:
    // The plan from grid s onto grid t; null when ResampleSpectrum refuses the pair (-1: s empty
    // and t not, grids that are not ascending) or when memory runs out. Not reported.
    static std::unique_ptr<ResamplePlan> Build(const TArray<double>& s, const TArray<double>& t);

    int SourceCount() const { return sourceCount_; }
    int TargetCount() const { return targetCount_; }
    // Whether s has the plan's source grid bit for bit and t the plan's target count.
    bool Fits(const TArray<double>& s, const TArray<double>& t) const;

    // Writes the layout's target as ResampleSpectrum would: 0, or -1 (nothing written) when the
    // layout's counts are not the plan's.
    template <class Layout>
    int Apply(Layout& layout) const {
        if (layout.SourceCount() != sourceCount_ || layout.TargetCount() != targetCount_)
            return -1;
        for (int i = 0; i < targetCount_; ++i) {
            const Step& step = steps_[i];
            if (step.blend)
                layout.Lerp(i, step.j, step.u);
            else
                layout.Copy(i, step.j);
        }
        return 0;
    }

private:
    friend class PlanRecorder;
    struct Step {
        double u;
        int j;
        bool blend;
    };
    ResamplePlan() = default;

    int sourceCount_ = 0;
    int targetCount_ = 0;
    std::unique_ptr<double[]> source_;
    std::unique_ptr<Step[]> steps_;
};

class KOR_PLUGIN_API ResamplePlanCache {
public:
    // Plans kept at most; a source grid beyond them is resampled without a plan.
    static constexpr int kMaxPlans = 16;

    ResamplePlanCache() = default;
    ResamplePlanCache(const ResamplePlanCache&) = delete;
    ResamplePlanCache& operator=(const ResamplePlanCache&) = delete;
    ~ResamplePlanCache() = default;

    // ResampleSpectrum(s, t, layout), through the plan of s when there is one or one can be made
    // and kept. The same result and status in every case. t must be the cache's target grid.
    template <class Layout>
    int Resample(const TArray<double>& s, const TArray<double>& t, Layout& layout) {
        const ResamplePlan* plan = Find(s, t);
        return plan ? plan->Apply(layout) : ResampleSpectrum(s, t, layout);
    }

    // Drops every plan (the target grid changed).
    void Clear();
    int CachedPlans() const;
    // Plans built since construction: a plan found again is not counted.
    long long PlansBuilt() const { return built_.load(std::memory_order_relaxed); }

private:
    // The plan of s onto t: the one used last, a kept one, or a new one kept; null when s is
    // empty, the pair is refused, memory runs out or kMaxPlans are kept.
    const ResamplePlan* Find(const TArray<double>& s, const TArray<double>& t);

    std::atomic<const ResamplePlan*> last_{nullptr};
    std::atomic<long long> built_{0};
    mutable std::mutex mutex_; // guards plans_ and count_
    std::unique_ptr<ResamplePlan> plans_[kMaxPlans];
    int count_ = 0;
};

} // namespace Korvane
