# The product: one shared object that exports REALPluginMain and nothing else. The platform's
# interfaces stay undefined; the process that loads it supplies them.
add_library(varnell MODULE
  $<TARGET_OBJECTS:plugin> $<TARGET_OBJECTS:pixels> $<TARGET_OBJECTS:scale>
  $<TARGET_OBJECTS:resample> $<TARGET_OBJECTS:effects>)
set_target_properties(varnell PROPERTIES PREFIX "" OUTPUT_NAME Varnell LINKER_LANGUAGE CXX
  LINK_DEPENDS ${PROJECT_SOURCE_DIR}/cmake/exports.map)
target_link_options(varnell PRIVATE -Wl,--version-script=${PROJECT_SOURCE_DIR}/cmake/exports.map)
install(TARGETS varnell LIBRARY DESTINATION lib/varnell)
