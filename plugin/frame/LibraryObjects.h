// The library-wide objects that live from InitClasses to TermClasses: one type pointer and one
// model reference per model type, and the two lazily made 380..780 nm spectral models.
//
// All of them are static objects, constructed empty when the module loads. Registration fills a
// slot type first, then model; termination releases the model reference and deletes the type
// (DeleteType accepts the null pointer of a slot that was never filled). The model classes read
// them through their ClassType() and GetModel() accessors, which answer null while a slot is empty.
#pragma once

#include "hostkit/plugsys/PlugRef.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/PluginExport.h"

namespace Korvane {

// The eight model types, in the order registration creates them.
enum class ModelKind : int { UBW, StkBW, URGB, StkRGB, USpectr, StkSpectr, XYZ, XYY };
inline constexpr int kModelKindCount = 8;

// The type object of one model type and the singleton model it hands out.
struct ModelSlot {
    PlugType* type = nullptr;
    PlugRef model;
};

namespace Library {

KOR_PLUGIN_API ModelSlot& Slot(ModelKind kind);
// The shared 380..780 nm spectral model of one polarization; empty until first asked for.
KOR_PLUGIN_API PlugRef& Model380To780(bool polarized);

} // namespace Library
} // namespace Korvane
