// ColourSlot: one colour of one model and kind, kept in a holder that the model makes, with the
// shape its values have in NumPy. It is how the module moves values in and out of a model: Set
// and Get go through the model's own slots (SetLgtColor, LgtToArray and their surface and scalar
// siblings), never around them.
//
// Shapes, one colour (layouts of the models' colour values):
//   BW:             light ()  (Stokes: (4,)),    surface ()  (Stokes: (4, 4)),    scalar ()
//   RGB, XYZ, XYY:  light (3,) (Stokes: (3, 4)), surface (3,) (Stokes: (3, 4, 4)), scalar (3,)
//   spectral on n:  light (n,) (Stokes: (n, 4)), surface (n,) (Stokes: (n, 4, 4)), scalar (n,)
// XYZ and xyY colours are the triples (X, Y, Z) and (x, y, Y).
//
// Spectral colours start empty; a slot sizes its colour to the model's grid (the host kit's
// SizeSpectralColour, through the holder's own type) before any value goes in.
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/plugsys/PlugRef.h"

#include <string>
#include <vector>

namespace Korvane::Py {

enum class Kind { Light, Surface, Scalar };

// "light", "surface" or "scalar"; anything else throws std::invalid_argument.
Kind ParseKind(const std::string& name);
const char* KindWord(Kind kind);

// The NumPy shape of one colour of `model` and `kind` (see above).
std::vector<long> ColourShape(const ColorModel& model, Kind kind);

class ColourSlot {
public:
    // A colour of `model`'s own kind, in a new holder of the model; spectral colours are sized to
    // the model's grid. Throws LibraryError when the holder cannot be made or sized.
    ColourSlot(const ColorModel& model, Kind kind);

    const ColorModel& Model() const { return *model_; }
    Kind GetKind() const { return kind_; }
    // Doubles per colour: the product of ColourShape.
    long Doubles() const { return doubles_; }

    // The model's Set...Color from Doubles() values, and its ...ToArray into Doubles() values.
    void Set(const double* values);
    void Get(double* out) const;
    // This model's ConvertColor of `from`'s colour into this colour; the status it returns.
    int ConvertFrom(const ColourSlot& from);

    Plug& HolderPlug() { return *holder_.Get(); }
    // The colour itself, for the model's other operations; only of the slot's own kind.
    const ILgtColor& Light() const { return *light_; }

private:
    const ColorModel* model_;
    Kind kind_;
    long doubles_;
    PlugRef holder_;
    ILgtColor* light_ = nullptr;
    ISurfColor* surface_ = nullptr;
    IScalarColor* scalar_ = nullptr;
};

// The number of samples a spectral colour of `model` stores (its distribution's count), for
// colours read from files; -1 when `model` is not spectral.
int StoredSamples(const ColorModel& model, Kind kind, const void* colour);

} // namespace Korvane::Py
