#include "plugin/frame/LibraryObjects.h"

namespace Korvane::Library {
namespace {

ModelSlot gSlots[kModelKindCount];
PlugRef gModel380To780[2];

} // namespace

ModelSlot& Slot(ModelKind kind) {
    return gSlots[static_cast<int>(kind)];
}

PlugRef& Model380To780(bool polarized) {
    return gModel380To780[polarized ? 1 : 0];
}

} // namespace Korvane::Library
