// The module's exported entry points, with C linkage: the library entry, the version, and the
// creation and destruction of every type object and model singleton.
#pragma once

#include "hostkit/base/Module.h"
#include "plugin/PluginExport.h"

// Library entry: on process attach (reason 1) tells the host's base library which module is
// loading. Returns 1 for every reason.
KOR_PLUGIN_ENTRY Korvane::BOOL DllMain(Korvane::HINSTANCE module, unsigned long reason,
                                       void* reserved);
// The module's version, 263237 (0x00040445).
KOR_PLUGIN_ENTRY int VersionId();
// Creates and registers every type object and model; 0, or -1 at the first failure.
KOR_PLUGIN_ENTRY int InitClasses();
// Releases the models and deletes every type object.
KOR_PLUGIN_ENTRY void TermClasses();
