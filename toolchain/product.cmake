# The product for macOS, bin/Varnell.dylib: the plug-in's objects joined by our own linker, or by a real
# one where it is named (see macos-i386.cmake).
find_program(VARNELL_PYTHON python3 REQUIRED)

# What the compiler expects and the system's libraries should not be relied on for.
varnell_plugin_objects(macos_runtime ${PROJECT_SOURCE_DIR}/toolchain/runtime/division.cpp)

set(folder ${PROJECT_SOURCE_DIR}/toolchain)
set(output ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/Varnell.dylib)
set(name @loader_path/Varnell.dylib)
set(objects $<TARGET_OBJECTS:plugin> $<TARGET_OBJECTS:pixels> $<TARGET_OBJECTS:scale>
  $<TARGET_OBJECTS:resample> $<TARGET_OBJECTS:effects> $<TARGET_OBJECTS:processor>
  $<TARGET_OBJECTS:macos_runtime>)
file(GLOB linker CONFIGURE_DEPENDS ${folder}/macho/*.py)

if(VARNELL_MACOS_LINKER)
  # Untried.
  set(command ${VARNELL_MACOS_LINKER} -arch i386 -dylib -macosx_version_min 10.6
    -syslibroot ${VARNELL_MACOS_SDK} -install_name ${name} -exported_symbol _REALPluginMain
    -o ${output} ${objects} -lSystem.B -lgcc_s.1 -lstdc++.6 -framework ApplicationServices
    -framework CoreAudio -framework CoreFoundation -framework CoreServices)
else()
  set(command ${VARNELL_PYTHON} -B ${folder}/link --imports ${folder}/imports.txt
    --export _REALPluginMain --install-name ${name} --output ${output} ${objects})
endif()
add_custom_command(OUTPUT ${output} COMMAND ${command} COMMAND_EXPAND_LISTS VERBATIM
  DEPENDS ${objects} ${folder}/link ${linker} ${folder}/imports.txt COMMENT "Linking bin/Varnell.dylib")
file(MAKE_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
add_custom_target(varnell ALL DEPENDS ${output})
install(FILES ${output} DESTINATION lib/varnell)
