// Identifiers of the holder types, built from the identifier of their model's type: a
// single-colour holder type takes it from the model class's type (M::ClassType()), an array or
// matrix holder type from the type of the model singleton (M::GetModel()), so those are made
// after the models. Registration makes the model types first; should one be missing, the
// identifier is the suffix alone.
#pragma once

#include "hostkit/plugsys/PlugType.h"

#include <string>

namespace Korvane::HolderIdents {

template <class M>
std::string FromClassType(const std::string& suffix) {
    const PlugType* type = M::ClassType();
    return (type ? std::string(type->Ident()) : std::string()) + suffix;
}

template <class M>
std::string FromModel(const std::string& suffix) {
    const M* model = M::GetModel();
    const PlugType* type = model ? model->ObjType() : nullptr;
    return (type ? std::string(type->Ident()) : std::string()) + suffix;
}

} // namespace Korvane::HolderIdents
