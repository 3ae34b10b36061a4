# What `cmake --install` installs: the tool, its plug-in, manual page, completions and documents.
include(GNUInstallDirs)
install(TARGETS picturehost RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
# Not ${CMAKE_INSTALL_LIBDIR}, which may be another: the tool looks there.
install(TARGETS varnell LIBRARY DESTINATION lib/varnell)

set(documents ${CMAKE_BINARY_DIR}/documents)
file(MAKE_DIRECTORY ${documents})
add_custom_command(OUTPUT ${documents}/stamp
  COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:picturehost> -DFOLDER=${documents}
    -P ${PROJECT_SOURCE_DIR}/cmake/write_documents.cmake
  COMMAND ${CMAKE_COMMAND} -E touch ${documents}/stamp
  DEPENDS picturehost ${PROJECT_SOURCE_DIR}/cmake/write_documents.cmake
  COMMENT "Writing the manual page and the completions" VERBATIM)
add_custom_target(documents ALL DEPENDS ${documents}/stamp)

# Optional, for a program of another kind of machine prints nothing on this one.
install(FILES ${documents}/picturehost.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 OPTIONAL)
install(FILES ${documents}/picturehost.bash RENAME picturehost
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions OPTIONAL)
install(FILES ${documents}/_picturehost DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions OPTIONAL)

set(CMAKE_INSTALL_DOCDIR ${CMAKE_INSTALL_DATAROOTDIR}/doc/varnell)
install(FILES README.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})
