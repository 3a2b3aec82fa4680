#include "hostkit/plugsys/PluginLoader.h"

#include "hostkit/base/User.h"
#include "hostkit/platform/ModuleImageCheck.h"
#include "hostkit/platform/Platform.h"
#include "hostkit/plugsys/PlugType.h"

#include <algorithm>

namespace Korvane {
namespace {

// Entry points are looked up as data addresses; POSIX and Windows both guarantee that such an
// address of a function may be used as a function pointer.
template <class Fn>
Fn BindExport(void* library, const char* name) {
    return reinterpret_cast<Fn>(Platform::FindSymbol(library, name));
}

// The modules that loaders hold, with the path each was loaded from. Loading runs on one thread
// at a time, like the modules' entry points, so the list needs no lock.
struct HeldModule {
    void* library;
    std::string path;
};
std::vector<HeldModule>& HeldModules() {
    static std::vector<HeldModule> held;
    return held;
}

const HeldModule* FindHeld(void* library) {
    for (const HeldModule& m : HeldModules())
        if (m.library == library)
            return &m;
    return nullptr;
}

} // namespace

PluginLoader::~PluginLoader() {
    Unload();
}

int PluginLoader::Load(const char* path) {
    const std::string requested = path ? path : "";
    if (library_)
        return Fail(LoadFailure::Busy, requested,
                    "this loader already holds the module \"" + path_ + "\"");
    path_ = requested;
    error_.clear();
    failure_ = LoadFailure::None;

    std::string why = "no path given";
    if (!requested.empty() && !Platform::CheckModuleImage(requested.c_str(), why))
        return Fail(LoadFailure::DamagedImage, requested, "damaged module file (" + why + ")");
    Platform::OpenFailure openFailure = Platform::OpenFailure::NotALibrary;
    void* library =
        requested.empty() ? nullptr : Platform::OpenLibrary(requested.c_str(), why, &openFailure);
    if (!library && openFailure == Platform::OpenFailure::EntryRefused)
        return Fail(LoadFailure::AttachRefused, requested,
                    "DllMain refused process attach (" + why + ")");
    if (!library)
        return Fail(LoadFailure::NotALibrary, requested,
                    "not a shared library that can be opened (" + why + ")");
    if (const HeldModule* held = FindHeld(library)) {
        const std::string holder = held->path;
        Platform::CloseLibrary(library); // drops the reference this Load added, nothing more
        return Fail(LoadFailure::AlreadyLoaded, requested,
                    "the module is already loaded (by a loader from \"" + holder +
                        "\"); a module is loaded once per process");
    }

    const auto dllMain = BindExport<DllMainFn>(library, "DllMain");
    const auto versionId = BindExport<VersionIdFn>(library, "VersionId");
    const auto initClasses = BindExport<InitClassesFn>(library, "InitClasses");
    const auto termClasses = BindExport<TermClassesFn>(library, "TermClasses");
    const char* missing = !dllMain       ? "DllMain"
                          : !versionId   ? "VersionId"
                          : !initClasses ? "InitClasses"
                          : !termClasses ? "TermClasses"
                                         : nullptr;
    if (missing) {
        Platform::CloseLibrary(library);
        return Fail(LoadFailure::MissingExport, requested,
                    std::string("missing export \"") + missing + "\"");
    }
    library_ = library;
    HeldModules().push_back(HeldModule{library, requested});
    dllMain_ = dllMain;
    versionId_ = versionId;
    initClasses_ = initClasses;
    termClasses_ = termClasses;

#if !defined(_WIN32)
    if (!dllMain_(Module(), kProcessAttach, nullptr)) {
        Detach();
        CloseAndForget();
        return Fail(LoadFailure::AttachRefused, requested, "DllMain refused process attach");
    }
#endif
    version_ = versionId_();

    const std::vector<PlugType*> before = PlugType::Registered();
    const int result = initClasses_();
    for (PlugType* t : PlugType::Registered())
        if (std::find(before.begin(), before.end(), t) == before.end())
            types_.push_back(RegisteredType{t, t->Ident()});
    if (result != 0) {
        termClasses_();
        RemoveTypesLeftBehind();
        Detach();
        CloseAndForget();
        return Fail(LoadFailure::InitFailed, requested,
                    "InitClasses returned " + std::to_string(result));
    }
    return 0;
}

void PluginLoader::Unload() {
    if (!library_)
        return;
    termClasses_();
    RemoveTypesLeftBehind();
    Detach();
    CloseAndForget();
}

HINSTANCE PluginLoader::Module() const {
    return static_cast<HINSTANCE>(library_);
}

std::vector<std::string> PluginLoader::RegisteredTypes() const {
    std::vector<std::string> idents;
    idents.reserve(types_.size());
    for (const RegisteredType& t : types_)
        idents.push_back(t.ident);
    return idents;
}

void* PluginLoader::FindExport(const char* name) const {
    return library_ && name ? Platform::FindSymbol(library_, name) : nullptr;
}

int PluginLoader::Fail(LoadFailure failure, const std::string& path, const std::string& cause) {
    failure_ = failure;
    error_ = "cannot load plug-in module \"" + path + "\": " + cause;
    // The message goes in as the argument of a plain "%s" format: a path may contain '%'.
    return User()->ErrorMessageEx("%s", error_.c_str());
}

void PluginLoader::Detach() {
#if !defined(_WIN32)
    dllMain_(Module(), kProcessDetach, nullptr);
#endif
}

void PluginLoader::CloseAndForget() {
    std::vector<HeldModule>& held = HeldModules();
    for (auto it = held.begin(); it != held.end(); ++it)
        if (it->library == library_) {
            held.erase(it);
            break;
        }
    Platform::CloseLibrary(library_);
    library_ = nullptr;
    dllMain_ = nullptr;
    versionId_ = nullptr;
    initClasses_ = nullptr;
    termClasses_ = nullptr;
    version_ = 0;
    types_.clear();
}

void PluginLoader::RemoveTypesLeftBehind() {
    for (RegisteredType& t : types_) {
        if (PlugType::Find(t.ident.c_str()) != t.type)
            continue;
        User()->InternalError("PluginLoader: module \"%s\" left the plug type \"%s\" registered "
                              "after TermClasses; the type is deleted before the module closes",
                              path_.c_str(), t.ident.c_str());
        DeleteType(t.type);
    }
}

} // namespace Korvane
