// CIE 1976 L*a*b* (CIE 15:2004, 8.2.1) of an XYZ relative to a white's XYZ.
#pragma once

#include "cli/analysis/Types.h"

namespace Korvane::Analysis {

// L* in 0..100 for Y from 0 to the white's Y; the linear segment below (6/29)^3.
Vec3 Lab(const Vec3& xyz, const Vec3& white);

} // namespace Korvane::Analysis
