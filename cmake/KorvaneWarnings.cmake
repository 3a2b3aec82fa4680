# INTERFACE targets for warnings, numerics and sanitizers; every project target links them.
add_library(korvane_warnings INTERFACE)
add_library(korvane::warnings ALIAS korvane_warnings)
target_compile_options(korvane_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Werror
  -Wshadow -Wnon-virtual-dtor -Wold-style-cast -Wcast-align -Wunused
  -Woverloaded-virtual -Wconversion
  -Wdouble-promotion -Wformat=2 -Wimplicit-fallthrough)

# Identical results across builds: no fused multiply-add contraction, fixed summation order.
add_library(korvane_numerics INTERFACE)
add_library(korvane::numerics ALIAS korvane_numerics)
target_compile_options(korvane_numerics INTERFACE -ffp-contract=off)

add_library(korvane_sanitizers INTERFACE)
add_library(korvane::sanitizers ALIAS korvane_sanitizers)
if(KORVANE_SANITIZE)
  target_compile_options(korvane_sanitizers INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(korvane_sanitizers INTERFACE -fsanitize=address,undefined)
endif()

# One call gives a target the project's flags.
function(korvane_target_defaults target)
  target_link_libraries(${target} PRIVATE korvane::warnings korvane::numerics korvane::sanitizers)
  target_include_directories(${target} PRIVATE "${PROJECT_SOURCE_DIR}")
endfunction()

# Coverage for libFuzzer in every target of a fuzz build (the fuzz targets add the fuzzer's main).
if(KORVANE_FUZZ)
  target_compile_options(korvane_sanitizers INTERFACE -fsanitize=fuzzer-no-link)
endif()
if(KORVANE_TSAN)
  target_compile_options(korvane_sanitizers INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(korvane_sanitizers INTERFACE -fsanitize=thread)
endif()
# Clang also checks the format strings that the report functions pass on to vsnprintf, and
# counts signedness changes under -Wconversion, which GCC leaves to -Wsign-conversion.
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  target_compile_options(korvane_warnings INTERFACE -Wno-format-nonliteral -Wno-sign-conversion
    -Wno-gnu-zero-variadic-macro-arguments)
endif()
