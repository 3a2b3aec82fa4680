#include "hostkit/plugsys/PlugType.h"

#include "hostkit/base/CallLog.h"
#include "hostkit/base/User.h"

#include <algorithm>
#include <cstring>
#include <mutex>

namespace Korvane {
namespace {

struct Registry {
    std::mutex mutex;
    std::vector<PlugType*> types;
};

Registry& TheRegistry() {
    static Registry r;
    return r;
}

} // namespace

PlugType::PlugType(const char* ident, PlugType* parent, bool flag, const char* /*extra*/)
    : ident_(ident ? ident : ""), parent_(parent), flag_(flag) {
    bool taken = false;
    {
        Registry& r = TheRegistry();
        std::lock_guard<std::mutex> lock(r.mutex);
        taken = std::any_of(r.types.begin(), r.types.end(),
                            [&](const PlugType* t) { return t->ident_ == ident_; });
        if (!taken) {
            r.types.push_back(this);
            registered_ = true;
        }
    }
    if (taken)
        User()->InternalError("PlugType: identifier \"%s\" is already registered; the new type "
                              "is not registered",
                              ident_.c_str());
}

PlugType::~PlugType() {
    if (!registered_)
        return;
    Registry& r = TheRegistry();
    std::lock_guard<std::mutex> lock(r.mutex);
    r.types.erase(std::remove(r.types.begin(), r.types.end(), this), r.types.end());
}

bool PlugType::IsKindOf(const PlugType* type) const {
    for (const PlugType* t = this; t; t = t->parent_)
        if (t == type)
            return true;
    return false;
}

Plug* PlugType::NewInstance() {
    return nullptr;
}
int PlugType::SerializeInstance(Plug*, Serializer&) {
    return 0;
}
bool PlugType::SupportsSerialization() const {
    return flag_;
}

PlugType* PlugType::Find(const char* ident) {
    if (!ident)
        return nullptr;
    Registry& r = TheRegistry();
    std::lock_guard<std::mutex> lock(r.mutex);
    for (PlugType* t : r.types)
        if (t->ident_ == ident)
            return t;
    return nullptr;
}

std::vector<PlugType*> PlugType::Registered() {
    Registry& r = TheRegistry();
    std::lock_guard<std::mutex> lock(r.mutex);
    return r.types;
}

void DeleteType(PlugType*& type) {
    CallLog::Record("DeleteType", type ? std::string(type->Ident()) : std::string("null"));
    delete type; // the destructor unregisters
    type = nullptr;
}

} // namespace Korvane
