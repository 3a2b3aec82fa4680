#include "plugin/spectral/ResamplePlan.h"

#include <cstring>
#include <new>

namespace Korvane {

// A layout that writes nothing: ResampleSpectrum's Copy and Lerp calls become the plan's steps,
// so the plan holds exactly the intervals and weights of ResampleSpectrum.
class PlanRecorder {
public:
    explicit PlanRecorder(ResamplePlan& plan) : plan_(plan) {}
    int SourceCount() const { return plan_.sourceCount_; }
    int TargetCount() const { return plan_.targetCount_; }
    void Copy(int i, int j) { plan_.steps_[i] = {0.0, j, false}; }
    void Lerp(int i, int j, double u) { plan_.steps_[i] = {u, j, true}; }

private:
    ResamplePlan& plan_;
};

std::unique_ptr<ResamplePlan> ResamplePlan::Build(const TArray<double>& s,
                                                  const TArray<double>& t) {
    std::unique_ptr<ResamplePlan> plan(new (std::nothrow) ResamplePlan());
    if (!plan)
        return nullptr;
    const int m = s.Count();
    const int n = t.Count();
    plan->sourceCount_ = m;
    plan->targetCount_ = n;
    plan->source_.reset(new (std::nothrow) double[static_cast<std::size_t>(m > 0 ? m : 1)]);
    plan->steps_.reset(new (std::nothrow) Step[static_cast<std::size_t>(n > 0 ? n : 1)]);
    if (!plan->source_ || !plan->steps_)
        return nullptr;
    for (int k = 0; k < m; ++k)
        plan->source_[k] = s[k];
    PlanRecorder recorder(*plan);
    if (ResampleSpectrum(s, t, recorder) != 0)
        return nullptr;
    return plan;
}

bool ResamplePlan::Fits(const TArray<double>& s, const TArray<double>& t) const {
    return s.Count() == sourceCount_ && t.Count() == targetCount_ &&
           (sourceCount_ == 0 ||
            std::memcmp(s.Data(), source_.get(),
                        static_cast<std::size_t>(sourceCount_) * sizeof(double)) == 0);
}

const ResamplePlan* ResamplePlanCache::Find(const TArray<double>& s, const TArray<double>& t) {
    if (s.Count() == 0)
        return nullptr;
    if (const ResamplePlan* last = last_.load(std::memory_order_acquire); last && last->Fits(s, t))
        return last;
    std::lock_guard<std::mutex> lock(mutex_);
    for (int k = 0; k < count_; ++k)
        if (plans_[k]->Fits(s, t)) {
            last_.store(plans_[k].get(), std::memory_order_release);
            return plans_[k].get();
        }
    if (count_ == kMaxPlans)
        return nullptr;
    std::unique_ptr<ResamplePlan> plan = ResamplePlan::Build(s, t);
    if (!plan)
        return nullptr;
    built_.fetch_add(1, std::memory_order_relaxed);
    plans_[count_] = std::move(plan);
    last_.store(plans_[count_].get(), std::memory_order_release);
    return plans_[count_++].get();
}

void ResamplePlanCache::Clear() {
    std::lock_guard<std::mutex> lock(mutex_);
    last_.store(nullptr, std::memory_order_release);
    for (int k = 0; k < count_; ++k)
        plans_[k].reset();
    count_ = 0;
}

int ResamplePlanCache::CachedPlans() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return count_;
}

} // namespace Korvane
