# nlohmann-json for cross builds: the build machine's headers (Debian nlohmann-json3-dev).
include("${CMAKE_CURRENT_LIST_DIR}/KorvaneHeaderOnly.cmake")
if(NOT EXISTS /usr/include/nlohmann/json.hpp)
  set(nlohmann_json_FOUND FALSE)
  set(nlohmann_json_NOT_FOUND_MESSAGE "/usr/include/nlohmann/json.hpp not found (Debian package nlohmann-json3-dev)")
  return()
endif()
korvane_header_only_package(nlohmann_json::nlohmann_json /usr/include/nlohmann)
