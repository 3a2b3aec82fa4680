# Install rules and the package a host builds on: the host kit library (Korvane::host), the
# plug-in module (Korvane::colour), the command-line tool, the headers under include/korvane/
# with their source-tree paths, a CMake package (KorvaneConfig.cmake, version file, targets) and
# a pkg-config file.
#
# The plug-in goes into the same folder as the host kit library (the library folder; bin/ for
# DLLs), as in the build tree, so a host finds it with Korvane::DefaultPluginPath() wherever the
# prefix is moved. Binaries find their libraries through relative run paths.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(KORVANE_INSTALL_CMAKEDIR "${CMAKE_INSTALL_LIBDIR}/cmake/Korvane"
    CACHE STRING "Where the CMake package files go, relative to the prefix")
set(KORVANE_INSTALL_INCLUDEDIR "${CMAKE_INSTALL_INCLUDEDIR}/korvane")

# The soname follows the major version: a change that breaks the host kit's binary interface
# takes the next major version (0.x included).
set_target_properties(korvane_host PROPERTIES
  VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR} EXPORT_NAME host)
set_target_properties(korvane_colour PROPERTIES EXPORT_NAME colour)
target_compile_features(korvane_host PUBLIC cxx_std_17)
# A host writes <korvane/hostkit/...>; the headers themselves include "hostkit/...".
target_include_directories(korvane_host PUBLIC
  "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>"
  "$<INSTALL_INTERFACE:${KORVANE_INSTALL_INCLUDEDIR}>")

if(APPLE)
  set(korvane_origin "@loader_path")
else()
  set(korvane_origin "$ORIGIN")
endif()
file(RELATIVE_PATH korvane_bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
set_target_properties(korvane_colour PROPERTIES INSTALL_RPATH "${korvane_origin}")
if(TARGET korvane)
  set_target_properties(korvane PROPERTIES INSTALL_RPATH "${korvane_origin}/${korvane_bin_to_lib}")
endif()

install(TARGETS korvane_host korvane_colour EXPORT KorvaneTargets
  LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development
  ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development
  RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
if(TARGET korvane)
  install(TARGETS korvane RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT runtime)
endif()

# Headers: every header of the host kit and of the plug-in, keeping their paths.
foreach(korvane_dir hostkit plugin)
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/${korvane_dir}/"
    DESTINATION "${KORVANE_INSTALL_INCLUDEDIR}/${korvane_dir}" COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "*.inl")
endforeach()

install(EXPORT KorvaneTargets NAMESPACE Korvane:: DESTINATION "${KORVANE_INSTALL_CMAKEDIR}"
  COMPONENT development)

# Where the installed plug-in lies, for the package's users.
if(WIN32)
  set(KORVANE_PLUGIN_INSTALL_DIR "${CMAKE_INSTALL_BINDIR}")
else()
  set(KORVANE_PLUGIN_INSTALL_DIR "${CMAKE_INSTALL_LIBDIR}")
endif()
set(KORVANE_PLUGIN_FILE_NAME
    "${CMAKE_SHARED_LIBRARY_PREFIX}korvane_colour${CMAKE_SHARED_LIBRARY_SUFFIX}")
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/package/KorvaneConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/package/KorvaneConfig.cmake"
  INSTALL_DESTINATION "${KORVANE_INSTALL_CMAKEDIR}"
  PATH_VARS KORVANE_PLUGIN_INSTALL_DIR)
# 0.x: a minor version may break the interface, so only the same minor version is compatible.
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/KorvaneConfigVersion.cmake"
  VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/package/KorvaneConfig.cmake"
              "${PROJECT_BINARY_DIR}/package/KorvaneConfigVersion.cmake"
  DESTINATION "${KORVANE_INSTALL_CMAKEDIR}" COMPONENT development)

# The pkg-config file finds the prefix from its own place, so `cmake --install --prefix` and a
# moved prefix both work.
file(RELATIVE_PATH KORVANE_PC_TO_PREFIX "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig"
     "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" KORVANE_PC_TO_PREFIX "${KORVANE_PC_TO_PREFIX}")
configure_file("${PROJECT_SOURCE_DIR}/cmake/package/korvane.pc.in"
  "${PROJECT_BINARY_DIR}/package/korvane.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/package/korvane.pc"
  DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)

install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" "${PROJECT_SOURCE_DIR}/README.md"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/korvane" COMPONENT runtime)
