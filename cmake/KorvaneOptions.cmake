# Build options, language level and symbol visibility shared by every target.
option(KORVANE_BUILD_TESTS "Build the test suite" ON)
option(KORVANE_BUILD_BENCHMARKS "Build the benchmarks" ON)
option(KORVANE_BUILD_CLI "Build the command-line tool" ON)
option(KORVANE_SANITIZE "Build with address and undefined-behaviour sanitizers" OFF)

set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# Hidden by default: both libraries export their surface explicitly, as a DLL would.
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

# Put every binary and shared library in one folder so the tools find the plug-in beside them.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")

# The Python module (python/): AUTO builds it when pybind11, NumPy and the interpreter's
# development files are found, ON requires them, OFF leaves it out.
set(KORVANE_BUILD_PYTHON AUTO CACHE STRING "Build the Python module: AUTO, ON or OFF")
set_property(CACHE KORVANE_BUILD_PYTHON PROPERTY STRINGS AUTO ON OFF)
# Fuzzing (clang's libFuzzer, fuzz/) and ThreadSanitizer builds; see the "fuzz" and "tsan" presets.
option(KORVANE_FUZZ "Build the libFuzzer targets in fuzz/ (clang)" OFF)
option(KORVANE_TSAN "Build with ThreadSanitizer (clang)" OFF)
# Windows DLLs carry their plain names (korvane_colour.dll), as a Windows host expects them.
if(WIN32)
  set(CMAKE_SHARED_LIBRARY_PREFIX "")
  set(CMAKE_IMPORT_LIBRARY_PREFIX "")
endif()
