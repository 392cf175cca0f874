# The manual page and the completion scripts, which the command prints. A command that is built for
# another system does not run here; Windows has no use for them.
if(NOT PROJECT_IS_TOP_LEVEL OR CMAKE_CROSSCOMPILING OR WIN32)
  return()
endif()

set(shell_files "${CMAKE_CURRENT_BINARY_DIR}/shell_files")
set(print "${PROJECT_SOURCE_DIR}/cmake/print_shell_files.cmake")
set(page "${shell_files}/trvfiles.1")
set(bash "${shell_files}/bash/trvfiles")
set(zsh "${shell_files}/zsh/_trvfiles")
set(fish "${shell_files}/fish/trvfiles.fish")
add_custom_command(OUTPUT "${page}" "${bash}" "${zsh}" "${fish}"
  COMMAND ${CMAKE_COMMAND} -DCOMMAND=$<TARGET_FILE:trvfiles_command> "-DOUTPUT=${shell_files}"
    -P "${print}"
  DEPENDS trvfiles_command "${print}"
  COMMENT "Printing the manual page and the completion scripts"
  VERBATIM)
add_custom_target(trvfiles_shell_files ALL DEPENDS "${page}")

# A component, so that a test can install these files alone.
set(component COMPONENT shell_files)
install(FILES "${page}" DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 ${component})
install(FILES "${bash}"
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions ${component})
install(FILES "${zsh}" DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions ${component})
install(FILES "${fish}"
  DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d ${component})
