# Warnings for the project's own targets; errors in development presets.
function(varnell_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow ${ARGN})
  if(VARNELL_DEVELOPER)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# The sources of one folder of the plug-in, as objects that both the product and the unit tests link.
function(varnell_plugin_objects target)
  add_library(${target} OBJECT ${ARGN})
  target_compile_features(${target} PRIVATE cxx_std_17)
  target_include_directories(${target} PUBLIC ${PROJECT_SOURCE_DIR})
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_STANDARD 17)
  # Results are fixed bit for bit: no fused operations, every float operation rounded as written.
  # Unique symbols would keep the library in memory for ever; elided allocations could not be failed.
  target_compile_options(${target} PRIVATE -ffp-contract=off -fvisibility=hidden
    -fvisibility-inlines-hidden -fno-builtin-calloc -fno-strict-aliasing
    $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)
  # The host's routines are called by words of the right size, whatever their types are at the host.
  target_compile_options(${target} PRIVATE $<$<CXX_COMPILER_ID:Clang>:-fno-sanitize=function>)
  if(VARNELL_FUZZ)
    # Counted, so that a fuzzer learns which of its inputs lead to something new.
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
  endif()
  varnell_warnings(${target} -Wconversion)
endfunction()
