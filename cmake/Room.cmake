# A room is a folder under src/ and a static library. It is entered by its path from src/, as in
#
#   #include "domain/note_records.h"
#
# and only by rooms that name it under USES: each room exports a folder of its own in the build
# tree that holds nothing but a link to its sources, so an include that the plan does not allow
# finds no file.
#
#   tavi_room(domain SOURCES content_hash.cpp ... USES platform/text ... LIBRARIES ext::fmt)
#
# The target's name is tavi_ and the path, with "/" as "_".

function(tavi_room path)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  string(REPLACE "/" "_" name "${path}")
  set(exported "${CMAKE_BINARY_DIR}/rooms/${name}")
  get_filename_component(parent "${exported}/${path}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  file(CREATE_LINK "${CMAKE_SOURCE_DIR}/src/${path}" "${exported}/${path}" SYMBOLIC)

  string(REPLACE "/" "_" uses "${ROOM_USES}")
  list(TRANSFORM uses PREPEND tavi_)
  if(NOT ROOM_SOURCES)  # headers only
    add_library(tavi_${name} INTERFACE)
    target_include_directories(tavi_${name} INTERFACE "${exported}")
    return()
  endif()
  list(TRANSFORM ROOM_SOURCES PREPEND "${CMAKE_SOURCE_DIR}/src/${path}/")
  add_library(tavi_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(tavi_${name} PUBLIC "${exported}")
  # PRIVATE: what a room uses is not handed on. Whoever includes a header that names another
  # room's types says so under its own USES.
  target_link_libraries(tavi_${name} PRIVATE tavi_compiler ${uses} ${ROOM_LIBRARIES})
endfunction()

# The tests of one room: one program, one CTest entry per test.
#
#   tavi_tests(domain SOURCES content_hash_test.cpp ... USES domain)
function(tavi_tests path)
  cmake_parse_arguments(TESTS "" "" "SOURCES;USES;LIBRARIES" ${ARGN})
  string(REPLACE "/" "_" name "${path}")
  add_executable(test_${name} ${TESTS_SOURCES})
  string(REPLACE "/" "_" uses "${TESTS_USES}")
  list(TRANSFORM uses PREPEND tavi_)
  target_include_directories(test_${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(test_${name} PRIVATE tavi_compiler ${uses} ${TESTS_LIBRARIES}
    GTest::gmock GTest::gtest_main)
  gtest_discover_tests(test_${name} TEST_PREFIX "${path}: " DISCOVERY_MODE PRE_TEST)
endfunction()
