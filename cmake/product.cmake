# One shared object that exports REALPluginMain and nothing else. The platform's interfaces stay
# undefined; the process that loads it supplies them. `processor` is the objects that say which vector
# instructions there are.
function(varnell_module target output processor)
  add_library(${target} MODULE
    $<TARGET_OBJECTS:plugin> $<TARGET_OBJECTS:pixels> $<TARGET_OBJECTS:scale>
    $<TARGET_OBJECTS:resample> $<TARGET_OBJECTS:effects> $<TARGET_OBJECTS:${processor}>)
  set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${output} LINKER_LANGUAGE CXX
    LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
  target_link_options(${target} PRIVATE
    -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
endfunction()

varnell_module(varnell Varnell processor)
