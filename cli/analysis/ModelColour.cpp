#include "cli/analysis/ModelColour.h"

#include "hostkit/colormodel/SpectralSizing.h"

namespace Korvane::Analysis {
namespace {

// Keeps the new holder `h` (null when the model made none) and returns its colour.
template <class I>
I* Keep(Holder<I>* h, PlugRef& holder) {
    holder = h;
    return h ? &h->Color() : nullptr;
}

} // namespace

ModelColour::ModelColour(const ColorModel& model, ColourKind kind) : model_(&model), kind_(kind) {
    switch (kind) {
    case ColourKind::Light:
        light_ = Keep(model.NewLgtColorHold(), holder_);
        break;
    case ColourKind::Surface:
        surface_ = Keep(model.NewSurfColorHold(), holder_);
        break;
    case ColourKind::Scalar:
        scalar_ = Keep(model.NewScalarColorHold(), holder_);
        break;
    }
    if (!holder_)
        status_ = kNoHolder;
    else if (model.IsSpectral())
        status_ = SizeSpectralColour(*holder_.Get(), model);
}

void ModelColour::Set(const double* values) {
    switch (kind_) {
    case ColourKind::Light:
        model_->SetLgtColor(*light_, values);
        return;
    case ColourKind::Surface:
        model_->SetSurfColor(*surface_, values);
        return;
    case ColourKind::Scalar:
        model_->SetScalarColor(*scalar_, values);
        return;
    }
}

void ModelColour::Get(double* out) const {
    switch (kind_) {
    case ColourKind::Light:
        model_->LgtToArray(*light_, out);
        return;
    case ColourKind::Surface:
        model_->SurfToArray(*surface_, out);
        return;
    case ColourKind::Scalar:
        model_->ScalarToArray(*scalar_, out);
        return;
    }
}

int ModelColour::ConvertFrom(const ModelColour& from) {
    switch (kind_) {
    case ColourKind::Light:
        return model_->ConvertColor(from.model_, *from.light_, *light_);
    case ColourKind::Surface:
        return model_->ConvertColor(from.model_, *from.surface_, *surface_);
    case ColourKind::Scalar:
        break;
    }
    return model_->ConvertColor(from.model_, *from.scalar_, *scalar_);
}

} // namespace Korvane::Analysis
