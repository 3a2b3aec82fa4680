// What the holder-creating slots of a model do (NewLgtColorHold, NewArrayLgtColorHold, ...):
// make a holder of that model's colours and hand it to the caller without a reference
// (PlugRef::ReturnObjNoDelete), so that the caller's first reference owns it. When the holder
// cannot be allocated the slot reports ErrorNoMemory(-1) and returns null.
//
// M is the model whose colours are held: XYZ and xyY models pass RGBModel<Unpolarized>, whose
// three-value holders keep their colours.
#pragma once

#include "hostkit/base/User.h"
#include "hostkit/plugsys/PlugRef.h"
#include "plugin/holders/ArrayLgtColorHold.h"
#include "plugin/holders/ArrayRayColorHold.h"
#include "plugin/holders/ColorHold.h"
#include "plugin/holders/MatrixLgtColorHold.h"

namespace Korvane::HolderFactory {

// A new default holder of class H handed out without a reference, or null after the report.
template <class H>
H* New() {
    TPlugRef<H> holder = new H();
    if (!holder.Get()) {
        User()->ErrorNoMemory(-1);
        return nullptr;
    }
    return holder.ReturnObjNoDelete();
}

template <class M>
Holder<ILgtColor>* NewLgtColorHold() {
    return New<ColorHold<LgtColor<M>>>();
}
template <class M>
Holder<IRayColor>* NewRayColorHold() {
    return New<ColorHold<RayColor<M>>>();
}
template <class M>
Holder<ISurfColor>* NewSurfColorHold() {
    return New<ColorHold<SurfColor<M>>>();
}
template <class M>
Holder<IScalarColor>* NewScalarColorHold() {
    return New<ColorHold<ScalarColor<M>>>();
}
template <class M>
Holder<IDualLgtColor>* NewDualLgtColorHold() {
    return New<ColorHold<DualLgtColor<M>>>();
}
template <class M>
MatrixLgtColorHolder* NewMatrixLgtColorHold() {
    return New<MatrixLgtColorHold<M>>();
}
template <class M>
ArrayRayColorHolder* NewArrayRayColorHold() {
    return New<ArrayRayColorHold<M>>();
}

// A light array sized to n colours. When the array cannot be sized the result is null without a
// report of its own (the array's Alloc reports a negative n). The new holder is then released
// here, deliberately: the caller gets no pointer to it, so keeping it would only leak it, and no
// host can rely on a leak.
template <class M>
ArrayLgtColorHolder* NewArrayLgtColorHold(int n) {
    TPlugRef<ArrayLgtColorHold<M>> holder = New<ArrayLgtColorHold<M>>();
    if (!holder.Get() || holder->Colours().Alloc(n) != 0)
        return nullptr;
    return holder.ReturnObjNoDelete();
}

} // namespace Korvane::HolderFactory
