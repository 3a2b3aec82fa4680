// PluginLoader: opens a plug-in module (a shared library), binds its four C-linkage exports
// (DllMain, VersionId, InitClasses, TermClasses), lets it register its classes, and takes it
// down again.
//
// Load: open the library; find all four exports (a library that lacks one is not a plug-in and
// none of its code is called); outside Windows call DllMain(module, kProcessAttach) as the
// Windows loader does on LoadLibrary (a FALSE answer refuses the load, followed by
// DllMain(module, kProcessDetach), again as on Windows); record VersionId; call InitClasses.
// Unload: TermClasses, then outside Windows DllMain(module, kProcessDetach), then close.
//
// Before the library is opened its file is checked (Platform::CheckModuleImage): a file cut short
// would crash the platform loader, so it is refused with what lies past its end. A module that
// another loader already holds (the same file, or another path to it) is refused right after
// opening, before any of its entry points is called: the platform hands back the module already
// mapped, and running its InitClasses again would register its types twice and let the second
// loader's cleanup release the first one's models.
//
// On Windows the system itself calls DllMain: with process attach inside LoadLibrary, before the
// loader can look at the exports, and with process detach inside FreeLibrary. The loader does not
// call it a second time. So there a library that lacks an export has had its attach and gets its
// detach when the loader closes it, and a refused attach fails the opening itself; the loader
// tells that failure (ERROR_DLL_INIT_FAILED) apart and reports it as the refused attach it is.
//
// Failures (a damaged file, a path that is not a shared library, a module already held, a
// missing export, a refused attach, an InitClasses that does not return 0, a second Load on a
// busy loader) are reported through
// User()->ErrorMessageEx with one message naming the module path and the cause; Load returns the
// code of that report, and Error()/Failure() keep the message and the cause. After a failed
// InitClasses the loader calls TermClasses (a module's TermClasses accepts a partially built
// state), detaches and closes, so nothing of the module stays registered.
//
// Types left behind: the loader remembers which plug types InitClasses registered. A type of
// that set still registered after TermClasses would outlive the module's code in the process-wide
// registry; the loader reports it (InternalError naming the module and the identifier) and
// deletes it with DeleteType before the library is closed.
//
// One loader holds at most one module. Loading, like the module's entry points, runs on one
// thread at a time; the loader takes no locks.
#pragma once

#include "hostkit/HostExport.h"
#include "hostkit/base/Module.h"

#include <string>
#include <vector>

namespace Korvane {

class PlugType;

// Why the last Load failed.
enum class LoadFailure {
    None,          // the last Load succeeded, or none was made
    Busy,          // the loader already holds a module
    NotALibrary,   // the platform could not open the path as a shared library
    MissingExport, // one of the four entry points is not exported
    AttachRefused, // DllMain answered FALSE to process attach
    InitFailed,    // InitClasses returned non-zero
    DamagedImage,  // the module file is cut short (ModuleImageCheck.h); it was not opened
    AlreadyLoaded, // another loader holds the same module; none of its code ran again
};

class KOR_HOST_API PluginLoader {
public:
    PluginLoader() = default;
    ~PluginLoader(); // unloads a module still held
    PluginLoader(const PluginLoader&) = delete;
    PluginLoader& operator=(const PluginLoader&) = delete;

    // Loads the module at `path`; 0, or the code of the error report made.
    int Load(const char* path);
    // TermClasses, detach and close; nothing when no module is held.
    void Unload();

    bool IsLoaded() const { return library_ != nullptr; }
    // The path of the module held, else of the last Load made on a free loader.
    const std::string& Path() const { return path_; }
    // The module handle passed to DllMain (null when none is held).
    HINSTANCE Module() const;
    // What the module's VersionId returned; 0 when no module is held.
    int VersionId() const { return version_; }
    // Identifiers of the plug types that the held module's InitClasses registered.
    std::vector<std::string> RegisteredTypes() const;
    // Message and cause of the last failed Load (empty and None after a success).
    const std::string& Error() const { return error_; }
    LoadFailure Failure() const { return failure_; }
    // Any other export of the held module, or null.
    void* FindExport(const char* name) const;

private:
    using DllMainFn = BOOL (*)(HINSTANCE, unsigned long, void*);
    using VersionIdFn = int (*)();
    using InitClassesFn = int (*)();
    using TermClassesFn = void (*)();

    struct RegisteredType {
        PlugType* type;
        std::string ident;
    };

    int Fail(LoadFailure failure, const std::string& path, const std::string& cause);
    void Detach();
    void CloseAndForget();
    void RemoveTypesLeftBehind();

    std::string path_;
    void* library_ = nullptr;
    DllMainFn dllMain_ = nullptr;
    VersionIdFn versionId_ = nullptr;
    InitClassesFn initClasses_ = nullptr;
    TermClassesFn termClasses_ = nullptr;
    int version_ = 0;
    std::vector<RegisteredType> types_;
    std::string error_;
    LoadFailure failure_ = LoadFailure::None;
};

} // namespace Korvane
