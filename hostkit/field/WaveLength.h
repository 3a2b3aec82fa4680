// The host's wavelength field: values in nanometres from 360 to 830, the range over which the
// built-in colour-matching functions (CIE 1931 2-degree observer) are tabulated. Models without a
// wavelength grid of their own report this range as the one they cover.
#pragma once

#include "hostkit/field/SBFieldType.h"

namespace Korvane {

// Limits of TWaveLength, in nanometres.
inline constexpr double kWaveLengthBottomNm = 360.0;
inline constexpr double kWaveLengthTopNm = 830.0;

// The wavelength field type, identifier "WaveLength"; alive from host start to host end.
KOR_HOST_API extern SBFieldType<double>* TWaveLength;

} // namespace Korvane
