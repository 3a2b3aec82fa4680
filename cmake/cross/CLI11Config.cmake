# CLI11 for cross builds: the build machine's headers (Debian libcli11-dev).
include("${CMAKE_CURRENT_LIST_DIR}/KorvaneHeaderOnly.cmake")
if(NOT EXISTS /usr/include/CLI/CLI.hpp)
  set(CLI11_FOUND FALSE)
  set(CLI11_NOT_FOUND_MESSAGE "/usr/include/CLI/CLI.hpp not found (Debian package libcli11-dev)")
  return()
endif()
korvane_header_only_package(CLI11::CLI11 /usr/include/CLI)
