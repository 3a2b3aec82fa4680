#include "cli/analysis/Illuminants.h"

#include "cli/analysis/Spectrum.h"

#include "analysis/AnalysisD65.h"
#include "analysis/AnalysisDaylight.h"
#include "analysis/AnalysisTcs.h"

#include <cmath>

namespace Korvane::Analysis {
namespace {

namespace Dl = Data::AnalysisDaylight;
namespace Tcs = Data::AnalysisTcs;
static_assert(Dl::kCount == 107 && Dl::lambda[0] == 300 && Dl::lambda[106] == 830);
static_assert(Tcs::kCount == 95 && Tcs::lambda[0] == 360 && Tcs::lambda[94] == 830);
static_assert(Data::AnalysisD65::kCount == 531 && Data::AnalysisD65::lambda[0] == 300);

std::vector<double> Tabulated(const double* nm, const double* values, int count,
                              const std::vector<double>& grid) {
    return Resample(SpectrumView{nm, values, count}, grid);
}

double Round3(double v) {
    return std::round(v * 1000.0) / 1000.0;
}

} // namespace

std::vector<double> Daylight(double cct, const std::vector<double>& nm, bool roundM) {
    if (!(cct >= 4000.0 && cct <= 25000.0))
        return {};
    const double t = cct, t2 = t * t, t3 = t2 * t;
    const double xd = t <= 7000.0 ? -4.6070e9 / t3 + 2.9678e6 / t2 + 0.09911e3 / t + 0.244063
                                  : -2.0064e9 / t3 + 1.9018e6 / t2 + 0.24748e3 / t + 0.237040;
    const double yd = -3.000 * xd * xd + 2.870 * xd - 0.275;
    const double m = 0.0241 + 0.2562 * xd - 0.7341 * yd;
    double m1 = (-1.3515 - 1.7703 * xd + 5.9114 * yd) / m;
    double m2 = (0.0300 - 31.4424 * xd + 30.0717 * yd) / m;
    if (roundM) {
        m1 = Round3(m1);
        m2 = Round3(m2);
    }
    // The components on the last grid the calling thread asked for.
    thread_local std::vector<double> grid, s0, s1, s2;
    if (nm != grid || s0.size() != nm.size()) {
        grid = nm;
        s0 = Tabulated(Dl::lambda, Dl::s0, Dl::kCount, nm);
        s1 = Tabulated(Dl::lambda, Dl::s1, Dl::kCount, nm);
        s2 = Tabulated(Dl::lambda, Dl::s2, Dl::kCount, nm);
    }
    std::vector<double> out(nm.size());
    for (std::size_t i = 0; i < nm.size(); ++i)
        out[i] = s0[i] + m1 * s1[i] + m2 * s2[i];
    return out;
}

std::vector<double> IlluminantA(const std::vector<double>& nm) {
    std::vector<double> out(nm.size());
    const double k = 1.435e7 / (2848.0 * 560.0);
    for (std::size_t i = 0; i < nm.size(); ++i)
        out[i] = 100.0 * std::pow(560.0 / nm[i], 5.0) * std::expm1(k) /
                 std::expm1(1.435e7 / (2848.0 * nm[i]));
    return out;
}

std::vector<double> IlluminantD65(const std::vector<double>& nm) {
    return Tabulated(Data::AnalysisD65::lambda, Data::AnalysisD65::d65, Data::AnalysisD65::kCount,
                     nm);
}

std::vector<double> IlluminantD50(const std::vector<double>& nm) {
    return Daylight(5000.0 * 1.4388 / 1.4380, nm, true);
}

std::string IlluminantName(const std::string& name) {
    std::string upper = name;
    for (char& c : upper)
        c = c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    for (const char* named : {"D65", "D50", "A", "E"})
        if (upper == named)
            return upper;
    return {};
}

bool NamedIlluminant(const std::string& given, const std::vector<double>& nm,
                     std::vector<double>& out) {
    const std::string name = IlluminantName(given);
    if (name == "D65")
        out = IlluminantD65(nm);
    else if (name == "D50")
        out = IlluminantD50(nm);
    else if (name == "A")
        out = IlluminantA(nm);
    else if (name == "E")
        out.assign(nm.size(), 1.0);
    else
        return false;
    return true;
}

const std::vector<double>& TcsWavelengths() {
    static const std::vector<double> nm(Tcs::lambda, Tcs::lambda + Tcs::kCount);
    return nm;
}

const std::vector<double>& TcsSample(int i) {
    static const std::vector<double> samples[kTcsCount] = {
        {Tcs::TCS01, Tcs::TCS01 + Tcs::kCount}, {Tcs::TCS02, Tcs::TCS02 + Tcs::kCount},
        {Tcs::TCS03, Tcs::TCS03 + Tcs::kCount}, {Tcs::TCS04, Tcs::TCS04 + Tcs::kCount},
        {Tcs::TCS05, Tcs::TCS05 + Tcs::kCount}, {Tcs::TCS06, Tcs::TCS06 + Tcs::kCount},
        {Tcs::TCS07, Tcs::TCS07 + Tcs::kCount}, {Tcs::TCS08, Tcs::TCS08 + Tcs::kCount},
        {Tcs::TCS09, Tcs::TCS09 + Tcs::kCount}, {Tcs::TCS10, Tcs::TCS10 + Tcs::kCount},
        {Tcs::TCS11, Tcs::TCS11 + Tcs::kCount}, {Tcs::TCS12, Tcs::TCS12 + Tcs::kCount},
        {Tcs::TCS13, Tcs::TCS13 + Tcs::kCount}, {Tcs::TCS14, Tcs::TCS14 + Tcs::kCount}};
    return samples[i];
}

} // namespace Korvane::Analysis
