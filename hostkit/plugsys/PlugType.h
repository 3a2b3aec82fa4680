// PlugType: the type object of a plug class, with identifier, parent type and flag.
//
// Every constructed type registers itself in the process-wide registry under its identifier.
// A type whose identifier is already taken is refused: it reports an internal error, stays out
// of the registry and answers IsRegistered() false. DeleteType unregisters, deletes and nulls.
#pragma once

#include "hostkit/plugsys/Plug.h"

#include <vector>

namespace Korvane {

class KOR_HOST_API Entity : public Plug, public IOwner {
public:
    Entity() = default;
    Entity(const Entity& other) = default;
};

class KOR_HOST_API PlugType : public Entity {
public:
    // `flag` marks a type whose plugs the host may create and serialize; `extra` is reserved.
    PlugType(const char* ident, PlugType* parent, bool flag, const char* extra);
    ~PlugType() override;

    const Str& Ident() const { return ident_; }
    PlugType* Parent() const { return parent_; }
    bool Flag() const { return flag_; }
    bool IsRegistered() const { return registered_; }
    // True when this type is `type` or derives from it through the parent chain.
    bool IsKindOf(const PlugType* type) const;

    // A new plug of this type (the caller holds it through a PlugRef), or null.
    virtual Plug* NewInstance();
    // Exchanges the data of one plug of this type; returns 0 or an error code.
    virtual int SerializeInstance(Plug* plug, Serializer& s);
    // Whether plugs of this type can be written to and read from plug files.
    virtual bool SupportsSerialization() const;

    // The registered type with this identifier, or null.
    static PlugType* Find(const char* ident);
    // Every registered type, in registration order.
    static std::vector<PlugType*> Registered();

private:
    Str ident_;
    PlugType* parent_;
    bool flag_;
    bool registered_ = false;
};

// Unregisters and deletes the type, then nulls the pointer; a null pointer is accepted.
KOR_HOST_API void DeleteType(PlugType*& type);

} // namespace Korvane
