// XYYModel: identity and construction. The operations are grouped by theme in XYY*.cpp.
#include "plugin/models/XYYModel.h"

#include "plugin/frame/LibraryObjects.h"

namespace Korvane {
namespace {

constexpr int kXYYKindBit = 256;

} // namespace

XYYModel::XYYModel() {
    if (PlugType* type = ClassType())
        SetName(type->Ident().c_str());
}

XYYModel::XYYModel(const XYYModel& other) = default;

XYYModel::~XYYModel() = default;

PlugType* XYYModel::ClassType() {
    return Library::Slot(ModelKind::XYY).type;
}

XYYModel* XYYModel::GetModel() {
    return static_cast<XYYModel*>(Library::Slot(ModelKind::XYY).model.Get());
}

PlugType* XYYModel::ObjType() const {
    return ClassType();
}

const char* XYYModel::ClassName() {
    return "XYYModel";
}

int XYYModel::GetModelCode() const {
    return kXYYKindBit + Unpolarized::kPolarizationBit;
}

bool XYYModel::IsXYY() const {
    return true;
}

int XYYModel::NWaves() const {
    return 3;
}

} // namespace Korvane
