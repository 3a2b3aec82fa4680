// Plug: the host's reference-counted object. The count is intrusive and starts at 0; PlugRef
// adds and releases references and the last release deletes the plug.
//
// Plug::operator new never throws: it returns null when memory runs out or when the plug
// allocation fault site says so, and a new-expression then yields null without constructing.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/base/Str.h"

#include <atomic>
#include <cstddef>

namespace Korvane {

class PlugType;
class Serializer;

// Interfaces of objects that own others; no behaviour of their own.
class KOR_HOST_API IOwner {
public:
    virtual ~IOwner();
};

class KOR_HOST_API Plug {
public:
    Plug();
    Plug(const Plug& other); // copies the name, not the count
    Plug& operator=(const Plug&) = delete;

    virtual PlugType* ObjType() const;
    virtual ~Plug();
    virtual void SetName(const char* name);
    virtual Str GetText() const;                    // the display name
    virtual Plug* Clone() const;                    // null: the plug cannot be copied
    virtual void OnLoad(int version);               // after SerializeInstance has read the plug
    virtual int SaveToFile(const char* path) const; // plug file of this plug; 0 or an error code
    virtual bool CanProvide(const PlugType* type) const;
    virtual Plug* Provide(const PlugType* type);
    virtual void OnChange(int what);
    virtual int OnAsk(int what);

    const Str& Name() const { return name_; }
    int RefCount() const { return refs_.load(std::memory_order_relaxed); }
    void AddRef() const { refs_.fetch_add(1, std::memory_order_relaxed); }
    // Drops one reference; deletes the plug when it was the last. Returns the new count.
    int Release() const;
    // Drops one reference without ever deleting.
    int ReleaseNoDelete() const;

    static void* operator new(std::size_t bytes) noexcept;
    static void operator delete(void* p) noexcept;

private:
    mutable std::atomic<int> refs_{0};
    Str name_;
};

// Number of plugs alive (constructed and not yet destroyed), for leak checks.
namespace PlugStats {
KOR_HOST_API long long Alive();
} // namespace PlugStats

} // namespace Korvane
