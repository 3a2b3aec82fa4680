// ColorModelType: the host's colour-model type, with the registry of model instances.
#pragma once

#include "hostkit/plugsys/PlugRef.h"
#include "hostkit/plugsys/PlugType.h"

#include <vector>

namespace Korvane {

class ColorModel;
class CIEConvAll;

class KOR_HOST_API ColorModelType : public PlugType {
public:
    ColorModelType();

    // Registers a model instance (the registry holds a reference). 0, or non-zero when the model
    // is null or already registered.
    int AddColorModel(ColorModel* model);
    // Drops a model from the registry; 0, or non-zero when it was not registered.
    int RemoveColorModel(ColorModel* model);
    // The registered models, in registration order.
    std::vector<ColorModel*> Models() const;
    // The registered model whose name is `name`, or null.
    ColorModel* FindModel(const char* name) const;
    // Makes `conv` the current converter of the host and of every registered model (each model's
    // SetCIEConvAll slot is called, so models that cache converter tables rebuild them).
    void SetCIEConvAllForAll(const CIEConvAll* conv);

private:
    std::vector<PlugRef> models_;
};

// The host's colour-model type; parent of every model type.
KOR_HOST_API extern ColorModelType* TColorModel;

} // namespace Korvane
