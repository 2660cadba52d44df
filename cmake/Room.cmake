# A room is a folder under src/ and a static library. Its headers are included by their path from
# src/, as in
#
#   #include "domain/note_records.h"
#
# and only by rooms that name it under USES: each room has its own include folder in the build tree,
# which contains only a link to its sources, so any other include finds no file.
#
#   tavi_room(domain SOURCES content_hash.cpp ... USES platform/text ... LIBRARIES ext::fmt)
#
# The target is named "tavi_" and the path, with "_" for "/".

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
  # PRIVATE: a room's uses are not passed on. A room that includes a header which includes another
  # room's headers lists that room under its own USES.
  target_link_libraries(tavi_${name} PRIVATE tavi_compiler ${uses} ${ROOM_LIBRARIES})
endfunction()

# The test program of a room. It is a single CTest entry, since starting a program takes longer than
# most tests; with EACH every test is an entry, so that slow tests run in parallel.
#
#   tavi_tests(domain SOURCES content_hash_test.cpp ... USES domain)
function(tavi_tests path)
  cmake_parse_arguments(TESTS "EACH" "" "SOURCES;USES;LIBRARIES;PROPERTIES" ${ARGN})
  string(REPLACE "/" "_" name "${path}")
  add_executable(test_${name} ${TESTS_SOURCES})
  string(REPLACE "/" "_" uses "${TESTS_USES}")
  list(TRANSFORM uses PREPEND tavi_)
  target_include_directories(test_${name} PRIVATE "${CMAKE_SOURCE_DIR}/tests")
  # Tests are not optimised, which halves their compile time.
  target_compile_options(test_${name} PRIVATE -O0)
  # GoogleTest's headers take most of a test's compile time.
  set_target_properties(test_${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 6)
  target_link_libraries(test_${name} PRIVATE tavi_compiler ${uses} ${TESTS_LIBRARIES}
    GTest::gmock GTest::gtest_main)
  if(TESTS_EACH)
    gtest_discover_tests(test_${name} TEST_PREFIX "${path}: " DISCOVERY_MODE PRE_TEST
      PROPERTIES ${TESTS_PROPERTIES})
    return()
  endif()
  add_test(NAME "${path}" COMMAND test_${name})
  if(TESTS_PROPERTIES)
    set_tests_properties("${path}" PROPERTIES ${TESTS_PROPERTIES})
  endif()
endfunction()

# A libFuzzer target, with seeds in <name>_seeds/. The sanitizer build runs it for a few seconds as a
# test; scripts/fuzz runs it longer.
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
  # libFuzzer adds new inputs to the first folder; failing inputs are written next to it.
  set(kept "${CMAKE_BINARY_DIR}/fuzz/${name}")
  file(MAKE_DIRECTORY "${kept}")
  add_test(NAME "fuzz: ${name}" COMMAND fuzz_${name} -max_total_time=${TAVI_FUZZ_SECONDS}
    "-artifact_prefix=${kept}-" "${kept}" "${CMAKE_CURRENT_SOURCE_DIR}/${name}_seeds")
endfunction()
