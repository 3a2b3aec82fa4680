// MassColConv: per-grid response tables, so that a spectral colour becomes RGB or XYZ by one
// weighted sum over wavelengths instead of a call into the CIE converter per colour.
//
// For one wavelength grid it holds, per wavelength, the RGB of a unit reflectance spike
// (surface RGB), the RGB and the XYZ of a unit light spike (light RGB, light XYZ) and both of
// those times the inverse trapezoid weight (the density forms), plus per channel the range of
// the light RGB density widened by the factor (1 + 1.192092896e-7). Tables are filled lazily and
// once: a preparation returns at once when its table already has one row per wavelength.
#pragma once

#include "hostkit/base/Vectors.h"
#include "hostkit/base/containers/TArray.h"
#include "hostkit/cie/CIEConv.h"
#include "hostkit/plugsys/PlugRef.h"
#include "plugin/PluginExport.h"

namespace Korvane {

// Three doubles, red, green, blue: the layout of TVect3<double>.
template <class T>
struct RGBColourDistr {
    T r, g, b;
};

class KOR_PLUGIN_API MassColConv : public Plug {
public:
    // Copies the grid and references the converter; nothing is computed yet.
    MassColConv(const MArray<double>& waves, const CIEConv* conv);
    // Shares the converter; copies the grid, all five tables, the bounds and the zero RGB.
    MassColConv(const MassColConv& other);
    ~MassColConv() override;

    const MArray<double>& Wavelengths() const { return waves_; }

    // Fills light RGB, light RGB density, light XYZ, light XYZ density and the bounds. 0 or -1.
    int PrepareForLight();
    // Fills surface RGB. 0 or -1.
    int PrepareForSurface();

    // Run the preparation; on success the row (or the table), else the zero RGB (or null).
    const RGBColourDistr<double>& WeightForLight(int i);
    const RGBColourDistr<double>& WeightForSurface(int i);
    const TVect3<double>* WeightsForLight();
    const BVect3<BBox1<double>>& BoundsOfRayRGB() const { return bounds_; }

    // The prepared tables (read after a successful preparation).
    const TArray<RGBColourDistr<double>>& LightRGB() const { return lightRGB_; }
    const TArray<RGBColourDistr<double>>& LightRGBDensity() const { return lightRGBDensity_; }
    const TArray<RGBColourDistr<double>>& LightXYZ() const { return lightXYZ_; }
    const TArray<RGBColourDistr<double>>& LightXYZDensity() const { return lightXYZDensity_; }
    const TArray<RGBColourDistr<double>>& SurfaceRGB() const { return surfaceRGB_; }
    const CIEConv* Converter() const { return static_cast<const CIEConv*>(conv_.Get()); }

private:
    MArray<double> waves_;
    PlugRef conv_;
    TArray<RGBColourDistr<double>> surfaceRGB_;
    TArray<RGBColourDistr<double>> lightRGB_;
    TArray<RGBColourDistr<double>> lightRGBDensity_;
    TArray<RGBColourDistr<double>> lightXYZ_;
    TArray<RGBColourDistr<double>> lightXYZDensity_;
    BVect3<BBox1<double>> bounds_;
    RGBColourDistr<double> zeroRGB_;
};

} // namespace Korvane
