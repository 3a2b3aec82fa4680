#include "hostkit/colormodel/ColorModelType.h"

#include "hostkit/base/CallLog.h"
#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModel.h"

#include <algorithm>
#include <cstring>

namespace Korvane {

ColorModelType* TColorModel = nullptr;

namespace {

// Makes the colour-model type while the host library is initialised, before any plug-in can
// load, and deletes it when the host library is finalised. The pointer is cleared first, so a
// model that outlives the host (a leak elsewhere) finds no registry to leave.
struct ColorModelTypeObject {
    ColorModelTypeObject() { TColorModel = new ColorModelType(); }
    ~ColorModelTypeObject() {
        PlugType* type = TColorModel;
        TColorModel = nullptr;
        DeleteType(type);
    }
    ColorModelTypeObject(const ColorModelTypeObject&) = delete;
    ColorModelTypeObject& operator=(const ColorModelTypeObject&) = delete;
};

const ColorModelTypeObject gColorModelType;

} // namespace

ColorModelType::ColorModelType() : PlugType("ColorModel", nullptr, false, nullptr) {}

int ColorModelType::AddColorModel(ColorModel* model) {
    CallLog::Record("AddColorModel", model ? std::string(model->Name()) : std::string("null"));
    if (!model)
        return User()->InternalError("ColorModelType::AddColorModel(): no model given");
    if (CallLog::IsRegistrationRefused(model->Name()))
        return User()->InternalError("ColorModelType::AddColorModel(): model \"%s\" is refused",
                                     model->Name().c_str());
    {
        std::lock_guard<std::mutex> lock(mutex_);
        if (std::find(models_.begin(), models_.end(), model) == models_.end()) {
            models_.push_back(model);
            return 0;
        }
    }
    return User()->InternalError(
        "ColorModelType::AddColorModel(): model \"%s\" is already registered",
        model->Name().c_str());
}

int ColorModelType::RemoveColorModel(const ColorModel* model) {
    std::lock_guard<std::mutex> lock(mutex_);
    const auto it = std::find(models_.begin(), models_.end(), model);
    if (it == models_.end())
        return -1;
    models_.erase(it);
    return 0;
}

std::vector<ColorModel*> ColorModelType::Models() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return models_;
}

ColorModel* ColorModelType::FindModel(const char* name) const {
    if (!name)
        return nullptr;
    std::lock_guard<std::mutex> lock(mutex_);
    for (ColorModel* m : models_)
        if (m->Name() == name)
            return m;
    return nullptr;
}

void ColorModelType::SetCIEConvAllForAll(const CIEConvAll* conv) {
    ColorModel::StoreCIEConvAll(conv);
    // The slots run without the lock: a model's slot may itself ask the registry.
    for (ColorModel* m : Models())
        m->SetCIEConvAll(conv);
}

} // namespace Korvane
