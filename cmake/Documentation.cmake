# What is written from the program's declarations when it is built, and installed beside it: manual
# pages, and the completion scripts in the folders where Debian's shells look for them. With
# -DTAVI_TESTS=OFF they are made all the same.

include(GNUInstallDirs)

set(manual "${CMAKE_BINARY_DIR}/share/man/man1")
add_custom_command(
  OUTPUT "${manual}/tavicli.1"
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${manual}"
  COMMAND "${CMAKE_COMMAND}" -E make_directory "${manual}"
  COMMAND write_manual "${manual}"
  DEPENDS write_manual
  COMMENT "Writing the manual pages"
  VERBATIM)
list(APPEND documents "${manual}/tavicli.1")
install(DIRECTORY "${manual}" DESTINATION "${CMAKE_INSTALL_MANDIR}")

function(tavi_completion_script shell folder file)
  set(script "${CMAKE_BINARY_DIR}/share/${folder}/${file}")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/share/${folder}")
  add_custom_command(
    OUTPUT "${script}"
    COMMAND tavicli --generate-completion-script=${shell} > "${script}.new"
    COMMAND "${CMAKE_COMMAND}" -E rename "${script}.new" "${script}"
    DEPENDS tavicli
    COMMENT "Writing the completion script for ${shell}"
    VERBATIM)
  install(FILES "${script}" DESTINATION "${CMAKE_INSTALL_DATADIR}/${folder}")
  set(documents ${documents} "${script}" PARENT_SCOPE)
endfunction()
tavi_completion_script(bash bash-completion/completions tavicli)
tavi_completion_script(zsh zsh/vendor-completions _tavicli)
# Below /usr/local, zsh looks into another folder.
install(FILES "${CMAKE_BINARY_DIR}/share/zsh/vendor-completions/_tavicli"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/zsh/site-functions")
tavi_completion_script(fish fish/vendor_completions.d tavicli.fish)

add_custom_target(documentation ALL DEPENDS ${documents})
