// The colour interfaces through which the host passes colours to a model. They carry no data
// and no virtual operations: each model casts them to its own colour-value classes.
//
// Layout rule of the host: every model's ray colour begins with its light colour, so the light
// part of a ray colour is reached at the ray colour's own address (LightPart).
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/base/containers/TArray.h"

namespace Korvane {

struct ILgtColor {};
struct IRayColor {};
struct ISurfColor {};
struct IScalarColor {};
struct IDualLgtColor {};

inline ILgtColor& LightPart(IRayColor& ray) {
    return *reinterpret_cast<ILgtColor*>(&ray);
}
inline const ILgtColor& LightPart(const IRayColor& ray) {
    return *reinterpret_cast<const ILgtColor*>(&ray);
}

// Response curves for LgtColorToRGBByCurves: the red, green and blue responses sampled on a
// model's grid, and the per-wavelength quadrature weights (empty: the grid's trapezoid weights).
class KOR_HOST_API ColorCurves {
public:
    virtual ~ColorCurves();
    virtual const TArray<double>& Red() const = 0;
    virtual const TArray<double>& Green() const = 0;
    virtual const TArray<double>& Blue() const = 0;
    virtual const TArray<double>& Weights() const = 0;
};

} // namespace Korvane
