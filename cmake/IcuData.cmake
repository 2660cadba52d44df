# Debian's static library of ICU's data is a single object of 30 MB. This function links a static
# program with only the data that it uses:
#
#   tavi_icu_data(tavicli)                # normalisation, properties, collation in all languages
#   tavi_icu_data(tavi-import CONVERTERS) # also character encodings, another 5 MB
#
# It leaves out translations, calendars, currencies, units, transliteration and the dictionaries for
# line breaking.
function(tavi_icu_data program)
  cmake_parse_arguments(DATA "CONVERTERS" "" "" ${ARGN})
  set(keep "^coll/|\\.nrm$|\\.icu$")
  string(APPEND keep
    "|^(root|res_index|pool|keyTypeData|likelySubtags|supplementalData|icustd|metadata)\\.res$")
  set(data "${CMAKE_BINARY_DIR}/icu/sorting")
  if(DATA_CONVERTERS)
    string(APPEND keep "|\\.cnv$")
    set(data "${CMAKE_BINARY_DIR}/icu/sorting_and_converters")
  endif()
  target_sources(${program} PRIVATE "${data}.S")
  get_property(made DIRECTORY PROPERTY TAVI_ICU_DATA)
  if(data IN_LIST made)
    return()
  endif()
  set_property(DIRECTORY APPEND PROPERTY TAVI_ICU_DATA "${data}")
  file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/icu")
  set(icu ext::icu)
  add_custom_command(
    OUTPUT "${data}.S"
    COMMAND "${CMAKE_SOURCE_DIR}/cmake/icu-data" "${${icu}_libicudata.a}" "${keep}" "${data}"
    DEPENDS "${CMAKE_SOURCE_DIR}/cmake/icu-data"
    COMMENT "Cutting ICU's data"
    VERBATIM)
endfunction()
