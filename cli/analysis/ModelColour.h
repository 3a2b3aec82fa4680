// ModelColour: one colour of a model and kind, kept in a holder that the model makes. It is how
// the tool and the Python module put values into a model, take them out and convert between
// models: Set and Get go through the model's own slots (SetLgtColor, LgtToArray and their surface
// and scalar siblings), conversions through the target model's ConvertColor.
//
// Spectral colours start empty; the colour is sized to the model's grid (the host kit's
// SizeSpectralColour, through the holder's own type) before any value goes in.
#pragma once

#include "hostkit/colormodel/ColorModel.h"
#include "hostkit/plugsys/PlugRef.h"

namespace Korvane::Analysis {

enum class ColourKind { Light, Surface, Scalar };

class ModelColour {
public:
    // Status() when the model makes no holder (no report is made).
    static constexpr int kNoHolder = -1;

    // A new holder of `model` for a colour of `kind`; a spectral colour gets the model's length.
    // Check Status() before using the colour.
    ModelColour(const ColorModel& model, ColourKind kind);
    ModelColour(const ModelColour&) = delete;
    ModelColour& operator=(const ModelColour&) = delete;

    // 0; kNoHolder; or the code of the report that sizing the spectral colour made.
    int Status() const { return status_; }
    const ColorModel& Model() const { return *model_; }
    ColourKind GetKind() const { return kind_; }
    Plug& HolderPlug() const { return *holder_.Get(); }

    // The model's Set...Color from the values of one colour in the model's layout, and its
    // ...ToArray into as many values.
    void Set(const double* values);
    void Get(double* out) const;
    // This model's ConvertColor of `from`'s colour (of the same kind) into this colour; the
    // status it returns.
    int ConvertFrom(const ModelColour& from);
    // The colour itself, for the model's other operations (ColourKind::Light only).
    const ILgtColor& Light() const { return *light_; }

private:
    const ColorModel* model_;
    ColourKind kind_;
    int status_ = 0;
    PlugRef holder_;
    ILgtColor* light_ = nullptr;
    ISurfColor* surface_ = nullptr;
    IScalarColor* scalar_ = nullptr;
};

} // namespace Korvane::Analysis
