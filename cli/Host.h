// What the tool does as a host of the colour-model plug-in: finds registered models, makes
// spectral models on a grid the way a host makes one (a stored grid read through the model's
// type), and keeps colours of any model and kind in that model's holders, sized for spectral
// models by the host itself (a spectral holder may start empty; the host gives its distribution
// the model's length before writing values).
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/plugsys/PlugRef.h"

#include <string>
#include <vector>

namespace Korvane::Cli {

// Largest grid the tool gives a spectral model. Loading a grid costs time linear in its length,
// but every colour on it costs memory and time per point too, so the tool keeps grids to what a
// measured or tabulated spectrum needs (4,001 points: 380-780 nm at 0.1 nm) and refuses longer
// ones.
inline constexpr int kMaxGridPoints = 4001;

// first, first + step, ..., last: all finite, first > 0, step > 0, last >= first, and at most
// kMaxGridPoints points; otherwise a usage error naming `option`.
std::vector<double> GridFromRange(double first, double last, double step,
                                  const std::string& option);
// A grid from a file: at most kMaxGridPoints (a data error naming `what` otherwise).
void CheckGridSize(std::size_t count, const std::string& what);

// A registered model by identifier ("URGB", "XYZ", ...); a data error when the plug-in did not
// register it.
const ColorModel* RegisteredModel(const char* ident);

// A new spectral model (unpolarized, or Stokes with `stokes`) on `nm`, made by the host kit's
// MakeSpectralModel (its type reads the grid, flagged equidistant by the model's own rule). A data
// error beyond kMaxGridPoints wavelengths, and with the model's reason when it refuses the grid
// or makes a model on another number of wavelengths.
PlugRef SpectralModelOn(const std::vector<double>& nm, bool stokes);

enum class Kind { Light, Surface, Scalar };
const char* KindName(Kind kind);

// One colour of a model and kind, in one of the model's holders.
class HeldColour {
public:
    HeldColour(const ColorModel* model, Kind kind);
    HeldColour(const HeldColour&) = delete;
    HeldColour& operator=(const HeldColour&) = delete;

    const ColorModel* Model() const { return model_; }
    Kind GetKind() const { return kind_; }
    Plug* HolderPlug() const { return holder_.Get(); }
    // Doubles per colour of this model and kind (wavelengths x Stokes or Mueller size).
    int ValueCount() const;
    // Writes `values` (ValueCount() of them) through the model's Set...Color.
    void Set(const std::vector<double>& values);
    std::vector<double> Get() const;
    // this = model's ConvertColor(from); the model's report code, or 0.
    int ConvertFrom(const HeldColour& from);
    // The light colour itself (Kind::Light only).
    const ILgtColor& Light() const { return *static_cast<const ILgtColor*>(Interface()); }

private:
    void* Interface() const; // the colour interface of the holder, by kind
    const ColorModel* model_;
    Kind kind_;
    PlugRef holder_;
};

// The values of the colour in a holder of `model` and `kind`. A spectral colour gives what its
// distribution holds (its own length, which a loaded holder need not share with the model).
std::vector<double> ValuesOf(const ColorModel* model, Kind kind, Plug* holder);

// A place in the host's report log: the sequence number of the latest report made so far (0
// when the log keeps none). Sequence numbers go on counting when the log is full and drops its
// oldest reports, so a mark still finds the reports made after it.
using ReportMarker = unsigned long long;
ReportMarker ReportMark();
// The report texts (errors, not log lines) made after `mark` that the log still keeps, joined by
// "; ".
std::string ReportsSince(ReportMarker mark);

} // namespace Korvane::Cli
