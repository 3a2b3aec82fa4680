// The standard observers' colour-matching functions at 1 nm, 360..830 nm, as this library reads
// them for the loci: the spectral locus (the chromaticity of each wavelength) and the Planckian
// locus. The same tables as the host's converter (data/cie1931_2deg_cmf_1nm.csv and
// data/cie1964_10deg_cmf_1nm.csv).
#pragma once

#include "cli/analysis/Types.h"
#include "hostkit/cie/CIEConv.h"

#include <vector>

namespace Korvane::Analysis {

inline constexpr int kLocusFirstNm = 360;
inline constexpr int kLocusLastNm = 830;
inline constexpr int kLocusCount = kLocusLastNm - kLocusFirstNm + 1;

struct CmfColumns {
    const double* xbar;
    const double* ybar;
    const double* zbar;
};

// The colour-matching functions of `observer`, kLocusCount samples each from 360 nm.
CmfColumns ObserverCmf(Observer observer);

// CIE 1931 xy of each wavelength 360, 361, ..., 830 nm.
const std::vector<Vec2>& SpectralLocusXy(Observer observer);

// The observer of the host's current converter (CIEConv::Current()).
Observer CurrentObserver();

// "CIE 1931 2" or "CIE 1964 10".
const char* ObserverName(Observer observer);

} // namespace Korvane::Analysis
