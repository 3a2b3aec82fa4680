// Export macro of the colour-model plug-in: what the host may call is marked KOR_PLUGIN_API.
#pragma once

#if defined(_WIN32)
#if defined(KORVANE_PLUGIN_BUILD)
#define KOR_PLUGIN_API __declspec(dllexport)
#else
#define KOR_PLUGIN_API __declspec(dllimport)
#endif
#else
#define KOR_PLUGIN_API __attribute__((visibility("default")))
#endif

// A class with nothing to import (all inline, or its functions marked KOR_PLUGIN_API one by one)
// that templates of the plug-in are instantiated on: on ELF an instantiation is only as visible
// as its arguments; on Windows the class is not marked, so its inline constants are not imported.
#if defined(_WIN32)
#define KOR_PLUGIN_VISIBLE
#else
#define KOR_PLUGIN_VISIBLE __attribute__((visibility("default")))
#endif

// C-linkage entry points of the module.
#if defined(__cplusplus)
#define KOR_PLUGIN_ENTRY extern "C" KOR_PLUGIN_API
#else
#define KOR_PLUGIN_ENTRY KOR_PLUGIN_API
#endif
