// ColourSlot: one colour of one model and kind, kept in a holder that the model makes (the
// analysis library's ModelColour, which the command-line tool's analysis uses too), with the
// shape its values have in NumPy. It is how the module moves values in and out of a model: Set
// and Get go through the model's own slots (SetLgtColor, LgtToArray and their surface and scalar
// siblings), never around them.
//
// Shapes, one colour (layouts of the models' colour values):
//   BW:             light ()  (Stokes: (4,)),    surface ()  (Stokes: (4, 4)),    scalar ()
//   RGB, XYZ, XYY:  light (3,) (Stokes: (3, 4)), surface (3,) (Stokes: (3, 4, 4)), scalar (3,)
//   spectral on n:  light (n,) (Stokes: (n, 4)), surface (n,) (Stokes: (n, 4, 4)), scalar (n,)
// XYZ and xyY colours are the triples (X, Y, Z) and (x, y, Y).
#pragma once

#include "cli/analysis/ModelColour.h"

#include <string>
#include <vector>

namespace Korvane::Py {

using Kind = Analysis::ColourKind;

// "light", "surface" or "scalar"; anything else throws std::invalid_argument.
Kind ParseKind(const std::string& name);
const char* KindWord(Kind kind);

// The NumPy shape of one colour of `model` and `kind` (see above).
std::vector<long> ColourShape(const ColorModel& model, Kind kind);

class ColourSlot : public Analysis::ModelColour {
public:
    // A colour of `model`'s own kind, in a new holder of the model; spectral colours are sized to
    // the model's grid. Throws LibraryError when the holder cannot be made or sized.
    ColourSlot(const ColorModel& model, Kind kind);

    // Doubles per colour: the product of ColourShape.
    long Doubles() const { return doubles_; }

private:
    ColourSlot(const ColorModel& model, Kind kind, unsigned long long reportMark);

    long doubles_ = 1;
};

// The number of samples a spectral colour of `model` stores (its distribution's count), for
// colours read from files; -1 when `model` is not spectral.
int StoredSamples(const ColorModel& model, Kind kind, const void* colour);

} // namespace Korvane::Py
