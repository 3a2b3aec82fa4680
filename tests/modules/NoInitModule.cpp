// A module that exports the library entry, VersionId and TermClasses but not InitClasses: a
// shared library that the loader must refuse as a plug-in without running any of its code.
#include "hostkit/base/Module.h"
#include "hostkit/base/User.h"
#include "plugin/PluginExport.h"

KOR_PLUGIN_ENTRY Korvane::BOOL DllMain(Korvane::HINSTANCE, unsigned long reason, void*) {
    if (reason != Korvane::kProcessAttach && reason != Korvane::kProcessDetach)
        return 1; // a thread starting or ending (Windows)
    Korvane::User()->LogMessage("NoInitModule DllMain %lu", reason);
    return 1;
}

KOR_PLUGIN_ENTRY int VersionId() {
    return 1;
}

KOR_PLUGIN_ENTRY void TermClasses() {}
