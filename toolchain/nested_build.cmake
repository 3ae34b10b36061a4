# Target macos_product: builds the product for macOS inside this build's folder, as
# ${VARNELL_DYLIB}, so that tests can look at it.
set(VARNELL_DYLIB ${CMAKE_BINARY_DIR}/macos-i386/bin/Varnell.dylib)
add_custom_target(macos_product ALL
  COMMAND ${CMAKE_COMMAND} --preset macos-i386 -B ${CMAKE_BINARY_DIR}/macos-i386 --log-level=WARNING
  COMMAND ${CMAKE_COMMAND} --build ${CMAKE_BINARY_DIR}/macos-i386
  WORKING_DIRECTORY ${PROJECT_SOURCE_DIR} BYPRODUCTS ${VARNELL_DYLIB}
  COMMENT "Building the product for macOS" VERBATIM)
