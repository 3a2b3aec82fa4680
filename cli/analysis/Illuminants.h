// CIE illuminants sampled on any grid, and the CIE 13.3-1995 test colour samples.
#pragma once

#include "cli/analysis/Types.h"

#include <string>
#include <vector>

namespace Korvane::Analysis {

// CIE daylight at a correlated colour temperature of 4000..25000 K (CIE 15:2004, 3.1: x_D from
// the CCT, y_D = -3 x_D^2 + 2.87 x_D - 0.275, M1 and M2 weighting S0, S1, S2, the components
// tabulated at 5 nm over 300..830 nm and read linearly between). With `roundM`, M1 and M2 are
// rounded to three decimals, as the CIE did for its tabulated D illuminants. Empty outside the
// CCT range.
std::vector<double> Daylight(double cct, const std::vector<double>& nm, bool roundM = false);

// Illuminant A by the CIE formula (CIE 15:2004, 3.1: Planck's law with c2 = 1.435e-2 m K at
// 2848 K, i.e. 2856 K on today's c2), 100 at 560 nm.
std::vector<double> IlluminantA(const std::vector<double>& nm);
// D65 as tabulated at 1 nm (300..830 nm; 0 outside).
std::vector<double> IlluminantD65(const std::vector<double>& nm);
// D50: daylight at 5000 K x 1.4388 / 1.4380 with M1, M2 rounded to three decimals.
std::vector<double> IlluminantD50(const std::vector<double>& nm);

// The named illuminant that `name` stands for, in case ("d50" is D50), spelled as below: "D65",
// "D50", "A" or "E"; empty for another name.
std::string IlluminantName(const std::string& name);

// The named illuminants "D65", "D50", "A", "E" (equal energy, 1 everywhere) on `nm`, in any case;
// false for another name.
bool NamedIlluminant(const std::string& name, const std::vector<double>& nm,
                     std::vector<double>& out);

// The 14 CIE 13.3-1995 test colour samples (spectral radiance factors) at 5 nm, 360..830 nm.
inline constexpr int kTcsCount = 14;
const std::vector<double>& TcsWavelengths();
const std::vector<double>& TcsSample(int i); // i = 0..13 for TCS01..TCS14

} // namespace Korvane::Analysis
