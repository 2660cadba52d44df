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
  set(arrows ${ROOM_USES})
  list(SORT arrows)
  list(JOIN arrows ", " arrows)
  if(NOT arrows)
    set(arrows "none")
  endif()
  set_property(GLOBAL APPEND PROPERTY TAVI_ROOMS "| ${path} | ${arrows} |")
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
  cmake_parse_arguments(TESTS "" "" "SOURCES;USES;LIBRARIES;PROPERTIES" ${ARGN})
  string(REPLACE "/" "_" name "${path}")
  add_executable(test_${name} ${TESTS_SOURCES})
  string(REPLACE "/" "_" uses "${TESTS_USES}")
  list(TRANSFORM uses PREPEND tavi_)
  target_include_directories(test_${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  if(TAVI_SANITIZE)  # the rooms are what takes the time; a test compiles twice as fast
    target_compile_options(test_${name} PRIVATE -O0)
  endif()
  target_link_libraries(test_${name} PRIVATE tavi_compiler ${uses} ${TESTS_LIBRARIES}
    GTest::gmock GTest::gtest_main)
  gtest_discover_tests(test_${name} TEST_PREFIX "${path}: " DISCOVERY_MODE PRE_TEST
    PROPERTIES ${TESTS_PROPERTIES})
endfunction()

# A program that gives a room whatever libFuzzer makes up, from the files of <name>_seeds/ on, and
# checks what must hold of any bytes. The sanitizer build makes it and runs it for some seconds as a
# test of its own; scripts/fuzz runs it for as long as is wanted.
#
#   tavi_fuzz(markdown USES platform/markdown)   # markdown_fuzz.cpp
set(TAVI_FUZZ_SECONDS 5 CACHE STRING "How long each fuzz target runs as a test")
function(tavi_fuzz name)
  if(NOT TAVI_SANITIZE)
    return()
  endif()
  cmake_parse_arguments(FUZZ "" "" "USES;LIBRARIES" ${ARGN})
  add_executable(fuzz_${name} ${name}_fuzz.cpp)
  string(REPLACE "/" "_" uses "${FUZZ_USES}")
  list(TRANSFORM uses PREPEND tavi_)
  target_include_directories(fuzz_${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  target_link_libraries(fuzz_${name} PRIVATE tavi_compiler ${uses} ${FUZZ_LIBRARIES})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  # New inputs go to the first folder, and what failed is kept beside it.
  set(kept "${CMAKE_BINARY_DIR}/fuzz/${name}")
  file(MAKE_DIRECTORY "${kept}")
  add_test(NAME "fuzz: ${name}" COMMAND fuzz_${name} -max_total_time=${TAVI_FUZZ_SECONDS}
    "-artifact_prefix=${kept}-" "${kept}" "${CMAKE_CURRENT_SOURCE_DIR}/${name}_seeds")
endfunction()
