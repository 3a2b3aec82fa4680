# Header-only packages of the build machine used by a cross build. Their headers do not depend on
# the target, but the folder they live in (/usr/include) must not be searched: it would shadow the
# target's own C library headers. Each package is seen through a folder of the build that links
# to its headers alone.
function(korvane_header_only_package target header_dir)
  if(TARGET ${target})
    return()
  endif()
  get_filename_component(name "${header_dir}" NAME)
  set(dir "${CMAKE_BINARY_DIR}/cross-include/${name}")
  file(MAKE_DIRECTORY "${dir}")
  if(NOT EXISTS "${dir}/${name}")
    file(CREATE_LINK "${header_dir}" "${dir}/${name}" SYMBOLIC)
  endif()
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${dir}")
endfunction()
