// What the model tests need of the library-wide objects before registration exists to fill
// them: the eight model types made into their slots (as registration makes them, without the
// models), the default grid, and a spectral model whose grid a test may set directly.
// Everything is released on destruction, so the test main's balance checks hold.
#pragma once

#include "hostkit/base/FaultInjection.h"
#include "hostkit/plugsys/PlugRef.h"
#include "plugin/frame/LibraryObjects.h"
#include "plugin/frame/ModelTypes.h"
#include "plugin/models/SpectralModel.h"

#include <initializer_list>

namespace Korvane::Testing {

// The eight model types in their slots for the lifetime of the object. On destruction every
// model reference the test filled (singletons, the shared 380..780 nm models, the implicit
// spectral model) is released and the types are deleted.
class ScopedModelTypes {
public:
    ScopedModelTypes() {
        Library::Slot(ModelKind::UBW).type = new BWModelType<Unpolarized>();
        Library::Slot(ModelKind::StkBW).type = new BWModelType<StokesPolarization>();
        Library::Slot(ModelKind::URGB).type = new RGBModelType<Unpolarized>();
        Library::Slot(ModelKind::StkRGB).type = new RGBModelType<StokesPolarization>();
        Library::Slot(ModelKind::USpectr).type = new SpectralModelType<Unpolarized>();
        Library::Slot(ModelKind::StkSpectr).type = new SpectralModelType<StokesPolarization>();
        Library::Slot(ModelKind::XYZ).type = new XYZModelType();
        Library::Slot(ModelKind::XYY).type = new XYYModelType();
    }
    ~ScopedModelTypes() {
        BSpectralModel::ImplicitModelRef() = nullptr;
        Library::Model380To780(false) = nullptr;
        Library::Model380To780(true) = nullptr;
        for (int k = 0; k < kModelKindCount; ++k) {
            ModelSlot& slot = Library::Slot(static_cast<ModelKind>(k));
            slot.model = nullptr;
            DeleteType(slot.type);
        }
    }
    ScopedModelTypes(const ScopedModelTypes&) = delete;
    ScopedModelTypes& operator=(const ScopedModelTypes&) = delete;

    static PlugType* Type(ModelKind kind) { return Library::Slot(kind).type; }
};

// The default grid (33 wavelengths, 390..710 nm) filled for the lifetime of the object.
class ScopedDefaultGrid {
public:
    ScopedDefaultGrid() { BSpectralModel::FillDefWavelengths(); }
    ~ScopedDefaultGrid() { BSpectralModel::DefWavelengths().Realloc(0); }
    ScopedDefaultGrid(const ScopedDefaultGrid&) = delete;
    ScopedDefaultGrid& operator=(const ScopedDefaultGrid&) = delete;
};

// A spectral model whose grid slot a test can call directly.
template <class Pol>
class GridModel : public SpectralModel<Pol> {
public:
    using SpectralModel<Pol>::SpectralModel;
    using SpectralModel<Pol>::SetWaveLengths;
    using SpectralModel<Pol>::OnLoad;
};

inline MArray<double> Grid(std::initializer_list<double> values) {
    MArray<double> grid(10);
    grid.Alloc(static_cast<int>(values.size()));
    int i = 0;
    for (double v : values)
        grid[i++] = v;
    return grid;
}

// n wavelengths first, first + step, ... (each first + step * i).
inline MArray<double> EvenGrid(double first, double step, int n) {
    MArray<double> grid(10);
    grid.Alloc(n);
    for (int i = 0; i < n; ++i)
        grid[i] = first + step * i;
    return grid;
}

} // namespace Korvane::Testing
