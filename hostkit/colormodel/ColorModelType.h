// ColorModelType: the host's colour-model type, the parent of every model type, with the registry
// of model instances that the host lists, searches by name and notifies of a new converter.
//
// Lifetime rule: a plug-in's models live in the plug-in, which is unloaded after its TermClasses.
// The host must therefore never hold the last reference to such a model, so the registry does
// not own what it lists: it keeps plain pointers, and a model leaves the registry by itself when
// it is destroyed (~ColorModel). The plug-in keeps its models alive through its own references.
#pragma once

#include "hostkit/plugsys/PlugType.h"

#include <mutex>
#include <vector>

namespace Korvane {

class ColorModel;
class CIEConvAll;

class KOR_HOST_API ColorModelType : public PlugType {
public:
    // Identifier "ColorModel", no parent.
    ColorModelType();

    // Lists a model instance (without taking a reference). 0, or the code of the internal error
    // reported when the model is null or already listed.
    int AddColorModel(ColorModel* model);
    // Drops a model from the list, silently; 0, or -1 when it was not listed.
    int RemoveColorModel(const ColorModel* model);
    // The listed models, in registration order.
    std::vector<ColorModel*> Models() const;
    // The first listed model whose name (Plug::Name) is `name`, or null.
    ColorModel* FindModel(const char* name) const;
    // Makes `conv` the host's current converter (null allowed), then calls the SetCIEConvAll slot
    // of every listed model, so that models that cache converter tables rebuild them. A
    // configuration-time call: no other thread may use the models meanwhile.
    void SetCIEConvAllForAll(const CIEConvAll* conv);

private:
    mutable std::mutex mutex_;
    std::vector<ColorModel*> models_;
};

// The host's colour-model type; alive from host start to host end.
KOR_HOST_API extern ColorModelType* TColorModel;

} // namespace Korvane
