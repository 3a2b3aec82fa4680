# Testing a cross build: GoogleTest built from source with the cross compiler, and, when the
# binaries run under Wine, a Wine prefix made once before anything runs in it.

# Debian ships GoogleTest's source (package googletest) but no library for the cross target.
set(KORVANE_GTEST_SOURCE_DIR "/usr/src/googletest" CACHE PATH "GoogleTest source tree for cross builds")
if(NOT EXISTS "${KORVANE_GTEST_SOURCE_DIR}/googletest/CMakeLists.txt")
  message(FATAL_ERROR "GoogleTest source not found in ${KORVANE_GTEST_SOURCE_DIR} "
                      "(install Debian's googletest package, or set KORVANE_GTEST_SOURCE_DIR)")
endif()
set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
add_subdirectory("${KORVANE_GTEST_SOURCE_DIR}" "${PROJECT_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL)

# Wine makes its prefix on first start; several test binaries starting at once in a missing
# prefix would race to make it. The prefix is made here, once, as part of building the tests.
if(CMAKE_SYSTEM_NAME STREQUAL "Windows" AND CMAKE_CROSSCOMPILING_EMULATOR)
  set(stamp "${PROJECT_BINARY_DIR}/wineprefix/korvane-prefix-ready")
  add_custom_command(OUTPUT "${stamp}"
    COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} wineboot --init
    COMMAND ${CMAKE_CROSSCOMPILING_EMULATOR} cmd /c exit
    COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
    COMMENT "Making the Wine prefix for the test run"
    VERBATIM)
  add_custom_target(korvane_wineprefix DEPENDS "${stamp}")
endif()
