# Changes that Debian requires to the installed files before cpack packs them: a changelog in Debian's
# format, compressed manual pages and changelogs, and no "#!" in scripts that are only sourced.
file(GLOB roots "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share"
  "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/*/usr/share")
foreach(share IN LISTS roots)
  set(documents "${share}/doc/${CPACK_PACKAGE_NAME}")
  execute_process(
    COMMAND "${CPACK_TAVI_SOURCE_DIR}/packaging/debian-changelog" "${CPACK_PACKAGE_NAME}"
      "${CPACK_DEBIAN_PACKAGE_RELEASE}" "${CPACK_PACKAGE_CONTACT}"
    INPUT_FILE "${documents}/CHANGELOG.md"
    OUTPUT_FILE "${documents}/changelog.Debian"
    COMMAND_ERROR_IS_FATAL ANY)
  file(RENAME "${documents}/CHANGELOG.md" "${documents}/changelog")
  file(GLOB sourced "${share}/bash-completion/completions/*")
  execute_process(
    COMMAND sed -s -i "1{/^#!/d}" ${sourced}
    COMMAND_ERROR_IS_FATAL ANY)
  file(GLOB pages "${share}/man/man*/*")
  execute_process(
    COMMAND gzip -9nf ${pages} "${documents}/changelog" "${documents}/changelog.Debian"
    COMMAND_ERROR_IS_FATAL ANY)
endforeach()
