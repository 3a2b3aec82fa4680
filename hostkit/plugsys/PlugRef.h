// PlugRef: a counted reference to a plug. Assigning a plug adds a reference; assigning null,
// reassigning or destruction releases it, and the last release deletes the plug.
#pragma once

#include "hostkit/plugsys/Plug.h"

namespace Korvane {

class KOR_HOST_API PlugRef {
public:
    PlugRef() = default;
    PlugRef(Plug* p);
    PlugRef(const PlugRef& other);
    PlugRef& operator=(const PlugRef& other);
    PlugRef& operator=(Plug* p);
    ~PlugRef();

    Plug* Get() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }

    // Drops this reference without deleting the plug and hands out the raw pointer: the factory
    // idiom by which a new plug reaches its caller with a count of 0.
    Plug* ReturnObjNoDelete();

private:
    Plug* p_ = nullptr;
};

// A PlugRef that knows the type it holds.
template <class T>
class TPlugRef : public PlugRef {
public:
    TPlugRef() = default;
    TPlugRef(T* p) : PlugRef(p) {}
    TPlugRef& operator=(T* p) {
        PlugRef::operator=(p);
        return *this;
    }
    T* Get() const { return static_cast<T*>(PlugRef::Get()); }
    T* operator->() const { return Get(); }
    T* ReturnObjNoDelete() { return static_cast<T*>(PlugRef::ReturnObjNoDelete()); }
};

} // namespace Korvane
