// The module's entry points. Registration makes the library-wide objects in one fixed order, a
// list of steps that stops at the first failure; termination takes them down in its own fixed
// order: the array and matrix holder types first, in creation order, then the single-colour
// holder types in reverse, then the models with their types (XYZ, xyY, spectral, the default
// grid, RGB, BW).
#include "plugin/frame/ModuleEntry.h"

#include "hostkit/base/User.h"
#include "hostkit/colormodel/ColorModelType.h"
#include "plugin/frame/LibraryObjects.h"
#include "plugin/frame/ModelTypes.h"
#include "plugin/holders/ArrayLgtColorHold.h"
#include "plugin/holders/ColorHold.h"
#include "plugin/holders/MatrixLgtColorHold.h"
#include "plugin/models/BWModel.h"
#include "plugin/models/RGBModel.h"
#include "plugin/models/SpectralModel.h"
#include "plugin/models/XYYModel.h"
#include "plugin/models/XYZModel.h"

namespace {

using namespace Korvane;

constexpr int kVersionId = 263237; // 0x00040445

// The six models that have holders of their own, in registration order, and reversed.
template <class... M>
struct ModelList {};
using HolderModels = ModelList<BWModel<Unpolarized>, BWModel<StokesPolarization>,
                               RGBModel<Unpolarized>, RGBModel<StokesPolarization>,
                               SpectralModel<Unpolarized>, SpectralModel<StokesPolarization>>;
using HolderModelsReversed =
    ModelList<SpectralModel<StokesPolarization>, SpectralModel<Unpolarized>,
              RGBModel<StokesPolarization>, RGBModel<Unpolarized>, BWModel<StokesPolarization>,
              BWModel<Unpolarized>>;

// ---- creation: each step returns 0, or non-zero when it failed ------------------------------

// A type object into its slot; the code of the no-memory report when it cannot be allocated.
// A type that the host's registry refused (its identifier is already taken, typically by the
// same module loaded twice) fails the step as well: the registry has already reported the clash,
// so nothing more is reported here and -1 is the step's result. Like everything made before a
// failure, the refused type stays in its slot; TermClasses deletes it, and deleting a type that
// was never registered leaves the registry alone.
template <class Type>
int MakeType(PlugType*& slot) {
    slot = new Type();
    if (!slot)
        return User()->ErrorNoMemory(-1);
    return slot->IsRegistered() ? 0 : -1;
}

// A model type and its singleton, which is then added to the host's registry. A model that
// cannot be allocated leaves its type in place; the registry's refusal is the step's result. A
// model type that the type registry refused stops the step before its model is made.
template <class Type, class Model, ModelKind kKind>
int MakeModel() {
    ModelSlot& slot = Library::Slot(kKind);
    if (MakeType<Type>(slot.type) != 0)
        return -1;
    slot.model = new Model();
    if (!slot.model)
        return User()->ErrorNoMemory(-1);
    return TColorModel->AddColorModel(static_cast<Model*>(slot.model.Get()));
}

// The unpolarized spectral model, on the default grid, becomes the host's implicit model.
int MakeImplicitSpectralModel() {
    if (MakeModel<SpectralModelType<Unpolarized>, SpectralModel<Unpolarized>,
                  ModelKind::USpectr>() != 0)
        return -1;
    SpectralModel<Unpolarized>::GetModel()->SetAsImplicit();
    return 0;
}

int MakeDefaultGrid() {
    return BSpectralModel::FillDefWavelengths();
}

// The holder types of one colour kind, for the six models in order; stops at the first failure.
template <template <class> class Kind, class... M>
int MakeColorHoldTypes(ModelList<M...>) {
    return ((MakeType<ColorHoldType<Kind<M>>>(ColorHoldType<Kind<M>>::Slot()) == 0) && ...) ? 0
                                                                                            : -1;
}
template <template <class> class Kind>
int MakeColorHoldTypes() {
    return MakeColorHoldTypes<Kind>(HolderModels{});
}

// The array or matrix holder types (TypeOf<M>) of the six models in order.
template <template <class> class TypeOf, class... M>
int MakeHolderTypes(ModelList<M...>) {
    return ((MakeType<TypeOf<M>>(TypeOf<M>::Slot()) == 0) && ...) ? 0 : -1;
}
template <template <class> class TypeOf>
int MakeHolderTypes() {
    return MakeHolderTypes<TypeOf>(HolderModels{});
}

using Step = int (*)();

constexpr Step kCreation[] = {
    MakeModel<BWModelType<Unpolarized>, BWModel<Unpolarized>, ModelKind::UBW>,
    MakeModel<BWModelType<StokesPolarization>, BWModel<StokesPolarization>, ModelKind::StkBW>,
    MakeModel<RGBModelType<Unpolarized>, RGBModel<Unpolarized>, ModelKind::URGB>,
    MakeModel<RGBModelType<StokesPolarization>, RGBModel<StokesPolarization>, ModelKind::StkRGB>,
    MakeDefaultGrid, // before the spectral models, which take it as their grid
    MakeImplicitSpectralModel,
    MakeModel<SpectralModelType<StokesPolarization>, SpectralModel<StokesPolarization>,
              ModelKind::StkSpectr>,
    MakeModel<XYZModelType, XYZModel, ModelKind::XYZ>,
    MakeModel<XYYModelType, XYYModel, ModelKind::XYY>,
    MakeColorHoldTypes<DualLgtColor>,
    MakeColorHoldTypes<LgtColor>,
    MakeColorHoldTypes<RayColor>,
    MakeColorHoldTypes<ScalarColor>,
    MakeColorHoldTypes<SurfColor>,
    // Their identifiers come from the model singletons, made above.
    MakeHolderTypes<ArrayLgtColorHoldType>,
    MakeHolderTypes<MatrixLgtColorHoldType>,
};

// ---- termination --------------------------------------------------------------------------

template <template <class> class Kind, class... M>
void DeleteColorHoldTypes(ModelList<M...>) {
    (DeleteType(ColorHoldType<Kind<M>>::Slot()), ...);
}

template <template <class> class TypeOf, class... M>
void DeleteHolderTypes(ModelList<M...>) {
    (DeleteType(TypeOf<M>::Slot()), ...);
}

// Releases a singleton, then deletes its type.
void ReleaseModel(ModelKind kind) {
    ModelSlot& slot = Library::Slot(kind);
    slot.model = nullptr;
    DeleteType(slot.type);
}

// The implicit spectral model's reference, the singleton and the shared 380..780 nm model of
// one polarization, then its type.
void ReleaseSpectralModel(ModelKind kind, bool polarized) {
    ModelSlot& slot = Library::Slot(kind);
    BSpectralModel::ImplicitModelRef() = nullptr;
    slot.model = nullptr;
    Library::Model380To780(polarized) = nullptr;
    DeleteType(slot.type);
}

} // namespace

Korvane::BOOL DllMain(Korvane::HINSTANCE module, unsigned long reason, void* /*reserved*/) {
    if (reason == Korvane::kProcessAttach)
        Korvane::PluginLoading(module);
    return 1;
}

int VersionId() {
    return kVersionId;
}

int InitClasses() {
    for (Step step : kCreation)
        if (step() != 0)
            return -1;
    return 0;
}

void TermClasses() {
    DeleteHolderTypes<ArrayLgtColorHoldType>(HolderModels{});
    DeleteHolderTypes<MatrixLgtColorHoldType>(HolderModels{});
    DeleteColorHoldTypes<SurfColor>(HolderModelsReversed{});
    DeleteColorHoldTypes<ScalarColor>(HolderModelsReversed{});
    DeleteColorHoldTypes<RayColor>(HolderModelsReversed{});
    DeleteColorHoldTypes<LgtColor>(HolderModelsReversed{});
    DeleteColorHoldTypes<DualLgtColor>(HolderModelsReversed{});
    ReleaseModel(ModelKind::XYZ);
    ReleaseModel(ModelKind::XYY);
    ReleaseSpectralModel(ModelKind::StkSpectr, true);
    ReleaseSpectralModel(ModelKind::USpectr, false);
    BSpectralModel::DefWavelengths().Realloc(0);
    ReleaseModel(ModelKind::StkRGB);
    ReleaseModel(ModelKind::URGB);
    ReleaseModel(ModelKind::StkBW);
    ReleaseModel(ModelKind::UBW);
}
