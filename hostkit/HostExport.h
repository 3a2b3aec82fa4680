// Export macro of the host kit library. Symbols are hidden by default; what a host or a
// plug-in may call is marked KOR_HOST_API, so the ELF build keeps the DLL's export discipline.
#pragma once

#if defined(_WIN32)
#if defined(KORVANE_HOST_BUILD)
#define KOR_HOST_API __declspec(dllexport)
#else
#define KOR_HOST_API __declspec(dllimport)
#endif
#else
#define KOR_HOST_API __attribute__((visibility("default")))
#endif

// printf-style argument checking of report functions where the compiler offers it.
#if defined(__GNUC__) || defined(__clang__)
#define KOR_PRINTF_FORMAT(fmt, first) __attribute__((format(printf, fmt, first)))
#else
#define KOR_PRINTF_FORMAT(fmt, first)
#endif
