#include "cli/analysis/ObserverTables.h"

#include "analysis/AnalysisCmf1931.h"
#include "analysis/AnalysisCmf1964.h"

namespace Korvane::Analysis {
namespace {

static_assert(Data::AnalysisCmf1931::kCount == kLocusCount);
static_assert(Data::AnalysisCmf1964::kCount == kLocusCount);
static_assert(Data::AnalysisCmf1931::lambda[0] == kLocusFirstNm);
static_assert(Data::AnalysisCmf1964::lambda[kLocusCount - 1] == kLocusLastNm);

std::vector<Vec2> LocusOf(Observer observer) {
    const CmfColumns cmf = ObserverCmf(observer);
    std::vector<Vec2> xy(kLocusCount);
    for (int i = 0; i < kLocusCount; ++i) {
        const double sum = cmf.xbar[i] + cmf.ybar[i] + cmf.zbar[i];
        xy[static_cast<std::size_t>(i)] = {cmf.xbar[i] / sum, cmf.ybar[i] / sum};
    }
    return xy;
}

} // namespace

CmfColumns ObserverCmf(Observer observer) {
    if (observer == Observer::CIE1964_10deg)
        return {Data::AnalysisCmf1964::xbar, Data::AnalysisCmf1964::ybar,
                Data::AnalysisCmf1964::zbar};
    return {Data::AnalysisCmf1931::xbar, Data::AnalysisCmf1931::ybar, Data::AnalysisCmf1931::zbar};
}

const std::vector<Vec2>& SpectralLocusXy(Observer observer) {
    static const std::vector<Vec2> locus2 = LocusOf(Observer::CIE1931_2deg);
    static const std::vector<Vec2> locus10 = LocusOf(Observer::CIE1964_10deg);
    return observer == Observer::CIE1964_10deg ? locus10 : locus2;
}

Observer CurrentObserver() {
    return CIEConv::Current()->GetObserver();
}

const char* ObserverName(Observer observer) {
    return observer == Observer::CIE1964_10deg ? "CIE 1964 10" : "CIE 1931 2";
}

} // namespace Korvane::Analysis
