# Cross-building for 64-bit Windows with Debian's mingw-w64 (posix threads), and running what was
# built under Wine. The Wine prefix is a throw-away one inside the build folder, so a test run
# needs no set-up and touches nothing of the user's own Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KORVANE_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KORVANE_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KORVANE_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${KORVANE_MINGW_TRIPLE}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${KORVANE_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The GCC runtime (libgcc, libstdc++, winpthread) linked in, so every executable and DLL runs
# under Wine or on a Windows machine without the cross compiler's runtime DLLs beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++ -Wl,-Bstatic,--whole-archive -lwinpthread -Wl,--no-whole-archive,-Bdynamic")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${CMAKE_EXE_LINKER_FLAGS_INIT}")

# Tests and the tool run through Wine: 64-bit, quiet, no display, in a prefix of the build's own.
find_program(KORVANE_WINE NAMES wine64 wine PATHS /usr/lib/wine)
if(KORVANE_WINE)
  set(CMAKE_CROSSCOMPILING_EMULATOR
      "${CMAKE_COMMAND};-E;env;WINEPREFIX=${CMAKE_BINARY_DIR}/wineprefix;WINEDEBUG=-all;WINEDLLOVERRIDES=mscoree,mshtml=;DISPLAY=;${KORVANE_WINE}")
endif()

# Header-only packages come from the build machine (see cmake/cross/).
set(CLI11_DIR "${CMAKE_CURRENT_LIST_DIR}/../cross")
set(nlohmann_json_DIR "${CMAKE_CURRENT_LIST_DIR}/../cross")
