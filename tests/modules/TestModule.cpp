// A small plug-in module for the loader tests. InitClasses registers two plug types, the second
// only after the first, so a failure of the second allocation (forced through the plug fault
// site) leaves a partially built state for TermClasses to take down. Every entry point logs one
// line, so a test reads the order of the calls from the report log after the module is gone.
//
// Built three times: as the well-behaved module; with KORVANE_TEST_MODULE_LEAKS defined as a
// module whose TermClasses forgets its second type; with KORVANE_TEST_MODULE_REFUSES_ATTACH
// defined as a module whose entry answers FALSE to process attach.
#include "hostkit/base/Module.h"
#include "hostkit/base/User.h"
#include "hostkit/plugsys/PlugType.h"
#include "plugin/PluginExport.h"

#ifndef KORVANE_TEST_MODULE_PREFIX
#define KORVANE_TEST_MODULE_PREFIX "TestModule"
#endif

namespace {

using Korvane::Plug;
using Korvane::PlugType;

PlugType* gWidgetType = nullptr;
PlugType* gGadgetType = nullptr;

class Widget final : public Plug {
public:
    PlugType* ObjType() const override { return gWidgetType; }
};

class WidgetType final : public PlugType {
public:
    WidgetType() : PlugType(KORVANE_TEST_MODULE_PREFIX "Widget", nullptr, true, nullptr) {}
    Plug* NewInstance() override { return new Widget; }
};

int MakeType(PlugType*& slot, PlugType* made) {
    slot = made;
    if (!made)
        return Korvane::User()->ErrorNoMemory(-1);
    return made->IsRegistered() ? 0 : -1;
}

} // namespace

KOR_PLUGIN_ENTRY Korvane::BOOL DllMain(Korvane::HINSTANCE module, unsigned long reason, void*) {
    // Windows also calls the entry when a thread of the process starts or ends (reasons 2 and 3):
    // those calls say nothing about loading and stay out of the log.
    if (reason != Korvane::kProcessAttach && reason != Korvane::kProcessDetach)
        return 1;
    if (reason == Korvane::kProcessAttach)
        Korvane::PluginLoading(module);
    Korvane::User()->LogMessage("%s DllMain %lu", KORVANE_TEST_MODULE_PREFIX, reason);
#if defined(KORVANE_TEST_MODULE_REFUSES_ATTACH)
    return reason == Korvane::kProcessAttach ? 0 : 1;
#else
    return 1;
#endif
}

KOR_PLUGIN_ENTRY int VersionId() {
    return 7;
}

KOR_PLUGIN_ENTRY int InitClasses() {
    Korvane::User()->LogMessage("%s InitClasses", KORVANE_TEST_MODULE_PREFIX);
    if (MakeType(gWidgetType, new WidgetType) != 0)
        return -1;
    if (MakeType(gGadgetType, new PlugType(KORVANE_TEST_MODULE_PREFIX "Gadget", gWidgetType, true,
                                           nullptr)) != 0)
        return -1;
    return 0;
}

KOR_PLUGIN_ENTRY void TermClasses() {
    Korvane::User()->LogMessage("%s TermClasses", KORVANE_TEST_MODULE_PREFIX);
#if defined(KORVANE_TEST_MODULE_LEAKS)
    gGadgetType = nullptr;
#else
    Korvane::DeleteType(gGadgetType);
#endif
    Korvane::DeleteType(gWidgetType);
}
