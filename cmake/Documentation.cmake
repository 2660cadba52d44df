# What is written from the programs' declarations when they are built, and installed beside them:
# manual pages, and completion scripts where each shell looks for them. With -DTAVI_TESTS=OFF they
# are made all the same.

include(GNUInstallDirs)

set(manual "${CMAKE_BINARY_DIR}/share/man")
add_custom_command(
  OUTPUT "${manual}/man1/tavicli.1"
  COMMAND "${CMAKE_COMMAND}" -E rm -rf "${manual}"
  COMMAND "${CMAKE_COMMAND}" -E make_directory "${manual}/man1" "${manual}/man7"
  COMMAND write_manual "${manual}" "${TAVI_RELEASE_DATE}"
  DEPENDS write_manual
  COMMENT "Writing the manual pages"
  VERBATIM)
list(APPEND documents "${manual}/man1/tavicli.1")
install(DIRECTORY "${manual}/" DESTINATION "${CMAKE_INSTALL_MANDIR}")

function(tavi_completion_script program shell file)
  set(script "${CMAKE_BINARY_DIR}/share/completions/${shell}/${file}")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/share/completions/${shell}")
  add_custom_command(
    OUTPUT "${script}"
    COMMAND ${program} --generate-completion-script=${shell} > "${script}.new"
    COMMAND "${CMAKE_COMMAND}" -E rename "${script}.new" "${script}"
    DEPENDS ${program}
    COMMENT "Writing ${program}'s completion script for ${shell}"
    VERBATIM)
  set(documents ${documents} "${script}" PARENT_SCOPE)
endfunction()

foreach(program IN ITEMS tavicli tavi-import tavi-export)
  tavi_completion_script(${program} bash ${program})
  tavi_completion_script(${program} zsh _${program})
  tavi_completion_script(${program} fish ${program}.fish)
endforeach()

set(completions "${CMAKE_BINARY_DIR}/share/completions")
install(DIRECTORY "${completions}/bash/"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
install(DIRECTORY "${completions}/fish/"
  DESTINATION "${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d")
# Debian's zsh looks into one folder below /usr and into another below /usr/local, so this is decided
# when the prefix is known.
install(CODE "
  set(folder site-functions)
  if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
    set(folder vendor-completions)
  endif()
  file(INSTALL \"${completions}/zsh/\"
    DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_DATADIR}/zsh/\${folder}\")")

add_custom_target(documentation ALL DEPENDS ${documents})
