# cpack reads this file for each generator.
if(CPACK_GENERATOR STREQUAL "DEB")
  set(CPACK_PRE_BUILD_SCRIPTS "${CPACK_TAVI_SOURCE_DIR}/packaging/debian_files.cmake")
else()
  set(CPACK_STRIP_FILES ON)  # a Debian package's are taken apart, not dropped: see DEBUGINFO_PACKAGE
endif()
