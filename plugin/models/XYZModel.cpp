// XYZModel: identity and construction. The operations are grouped by theme in XYZ*.cpp.
#include "plugin/models/XYZModel.h"

#include "plugin/frame/LibraryObjects.h"

namespace Korvane {
namespace {

constexpr int kXYZKindBit = 128;

} // namespace

XYZModel::XYZModel() {
    if (PlugType* type = ClassType())
        SetName(type->Ident().c_str());
}

XYZModel::XYZModel(const XYZModel& other) = default;

XYZModel::~XYZModel() = default;

PlugType* XYZModel::ClassType() {
    return Library::Slot(ModelKind::XYZ).type;
}

XYZModel* XYZModel::GetModel() {
    return static_cast<XYZModel*>(Library::Slot(ModelKind::XYZ).model.Get());
}

PlugType* XYZModel::ObjType() const {
    return ClassType();
}

const char* XYZModel::ClassName() {
    return "XYZModel";
}

int XYZModel::GetModelCode() const {
    return kXYZKindBit + Unpolarized::kPolarizationBit;
}

bool XYZModel::IsXYZ() const {
    return true;
}

int XYZModel::NWaves() const {
    return 3;
}

} // namespace Korvane
