// BSpectralModel: the non-template base of the spectral colour model. It owns the wavelength
// grid on which every colour of the model is sampled and derives from it the trapezoid
// quadrature weights, their reciprocals and the CIE XYZ response of a unit spike at each
// wavelength. It also keeps the process-wide implicit spectral model and the default grid.
//
// Trapezoid weights of a grid w[0..n-1]: weight[0] = (w[1]-w[0])/2, weight[n-1] =
// (w[n-1]-w[n-2])/2, weight[i] = (w[i+1]-w[i-1])/2 inside, so sum s[i] weight[i] is the area under
// the sampled curve. A one-point grid has weight 1 and XYZ row (1, 1, 1).
#pragma once

#include "hostkit/base/Serializer.h"
#include "hostkit/base/Vectors.h"
#include "hostkit/base/containers/TArray.h"
#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/plugsys/PlugRef.h"
#include "plugin/PluginExport.h"

namespace Korvane {

class KOR_PLUGIN_API BSpectralModel : public ColorModel {
public:
    BSpectralModel();
    // Copies the grid, weights, inverse weights and the equidistant flag; the XYZ table starts
    // empty and is rebuilt by the next SetWaveLengths or OnLoad.
    BSpectralModel(const BSpectralModel& other);
    ~BSpectralModel() override;

    static const char* Tag(); // "Spectr", exported with the class like every model's Tag

    // A grid is valid when it has at least one wavelength, the first is above 0 and every step
    // is above 0. It is equidistant when no two consecutive steps differ by more than
    // (d + dprev) * kEquidistantTolerance; a one-point grid is equidistant.
    static bool CheckWaves(const MArray<double>& waves, bool* equidistant);
    static constexpr double kEquidistantTolerance = 1.192092896e-7;

    bool IsSpectral() const override { return true; }
    int NWaves() const override { return waves_.Count(); }
    const MArray<double>& GetWaveLengths() const override { return waves_; }
    // First and last wavelength; the grid of a constructed model is never empty.
    void GetWaveRange(double& low, double& high) const override;
    // Same class type, element-wise equal grids (a NaN never matches) and equal flags.
    bool IsEqual(const ColorModel* other) const override;
    // Makes this model the host's implicit colour model and the implicit spectral model.
    void SetAsImplicit() override;

    const MArray<double>& GetWeights() const { return weights_; }
    const MArray<double>& GetWeightsInv() const { return weightsInv_; }
    const TArray<TVect3<double>>& GetSpectral2XYZWeights() const { return xyz_; }
    bool IsEquidistant() const { return equidistant_; }

    // Reads or writes the grid: group "Wavelengths" with the element count (omitted when 0)
    // and the wavelengths, then the named flag "EquiDistant". Weights are never stored; OnLoad
    // rebuilds them. A stored grid that is empty or not a valid grid is refused: the archive
    // fails with a message. Whenever a read fails the model keeps an empty grid, never one cut
    // short.
    int SerializeGrid(Serializer& s);

    // Shortcuts to the implicit spectral model; each requires that one has been set.
    using ColorModel::Wavelengths; // the value-range slot, beside the static grid shortcut
    static BSpectralModel* GetKLBMSpectralModel();
    static const MArray<double>& Wavelengths();
    static const MArray<double>& Weights();
    static bool Equidistant();
    static int NColours();
    // SetWaveLengths on the implicit model: 0 when it succeeded, else -1.
    static int SetSpectrogram(const MArray<double>& waves);
    // The default grid: 33 wavelengths 390, 400, ..., 710 nm once the library is initialised.
    static MArray<double>& DefWavelengths();
    // Fills the default grid; 0, or the code of the no-memory report.
    static int FillDefWavelengths();

    // The library-wide reference that holds the implicit spectral model.
    static PlugRef& ImplicitModelRef();

protected:
    // Validates and stores a grid, then recomputes the weights. 0, the code of the report made
    // (an invalid grid: internal error; no memory for the copy), or -1 from CalculateWeights.
    virtual int SetWaveLengths(const MArray<double>& waves);
    // Weights, inverse weights and the XYZ table from the grid. 0 or -1 (no memory, or the
    // converter refused a spike).
    int CalculateWeights();
    // Rebuilds the weights after loading.
    void OnLoad(int version) override;

private:
    MArray<double> waves_{10};
    MArray<double> weights_{10};
    MArray<double> weightsInv_{10};
    bool equidistant_ = false;
    TArray<TVect3<double>> xyz_{10, 1};
};

} // namespace Korvane
