# Writes the manual page and the completions into FOLDER, as PROGRAM prints them. A program that cannot be run
# on this machine leaves them out.
execute_process(COMMAND ${PROGRAM} --version OUTPUT_QUIET ERROR_QUIET RESULT_VARIABLE result)
if(NOT result STREQUAL 0)
  message(STATUS "No manual page and no completions: ${PROGRAM} cannot be run here")
  return()
endif()
foreach(document "man;picturehost.1" "bash;picturehost.bash" "zsh;_picturehost")
  list(GET document 0 kind)
  list(GET document 1 name)
  execute_process(COMMAND ${PROGRAM} documentation ${kind} OUTPUT_FILE ${FOLDER}/${name}
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
