#include "hostkit/plugsys/PlugRef.h"

namespace Korvane {

PlugRef::PlugRef(Plug* p) : p_(p) {
    if (p_)
        p_->AddRef();
}

PlugRef::PlugRef(const PlugRef& other) : PlugRef(other.p_) {}

PlugRef& PlugRef::operator=(const PlugRef& other) {
    return *this = other.p_;
}

PlugRef& PlugRef::operator=(Plug* p) {
    if (p)
        p->AddRef(); // first, so that assigning the plug already held is safe
    Plug* old = p_;
    p_ = p;
    if (old)
        old->Release();
    return *this;
}

PlugRef::~PlugRef() {
    if (p_)
        p_->Release();
}

Plug* PlugRef::ReturnObjNoDelete() {
    Plug* p = p_;
    p_ = nullptr;
    if (p)
        p->ReleaseNoDelete();
    return p;
}

} // namespace Korvane
