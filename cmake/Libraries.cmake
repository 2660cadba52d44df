# Third-party libraries, as targets `ext::...`. TAVI_STATIC selects Debian's static or shared
# libraries for all of them.

find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)

# Defines a target from one of the library's headers and the names to link:
#
#   tavi_library(ext::icu unicode/uchar.h icui18n icuuc)
function(tavi_library target header)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  find_path(${target}_include ${header} REQUIRED)
  target_include_directories(${target} SYSTEM INTERFACE ${${target}_include})
  foreach(name IN LISTS ARGN)
    if(TAVI_STATIC)
      set(file lib${name}.a)
    else()
      set(file lib${name}.so)
    endif()
    find_library(${target}_${file} NAMES ${file} REQUIRED)
    target_link_libraries(${target} INTERFACE ${${target}_${file}})
  endforeach()
endfunction()

tavi_library(ext::sqlite sqlite3.h sqlite3)
target_link_libraries(ext::sqlite INTERFACE Threads::Threads ${CMAKE_DL_LIBS} m)
tavi_library(ext::icu unicode/uchar.h icui18n icuuc icudata)
target_link_libraries(ext::icu INTERFACE Threads::Threads ${CMAKE_DL_LIBS} m)
tavi_library(ext::nettle nettle/sha2.h nettle)
tavi_library(ext::expat expat.h expat)
tavi_library(ext::uuid uuid/uuid.h uuid)
tavi_library(ext::boost_json boost/json.hpp boost_json)
tavi_library(ext::yaml yaml.h yaml)

if(NOT TAVI_STATIC)
  tavi_library(ext::md4c md4c.h md4c)
  tavi_library(ext::fmt fmt/format.h fmt)
  return()
endif()

# Debian packages the next two as shared libraries only. The headers of fmt contain the whole
# library, which is compiled here once instead of in every translation unit.
find_path(fmt_include fmt/format-inl.h REQUIRED)
add_library(fmt_library STATIC "${CMAKE_SOURCE_DIR}/src/fmt_library.cpp")
target_include_directories(fmt_library SYSTEM PUBLIC ${fmt_include})
target_compile_options(fmt_library PRIVATE -ffunction-sections -fdata-sections)
add_library(ext::fmt ALIAS fmt_library)

# The source of md4c comes from the Debian mirror of this machine.
set(md4c_source "${CMAKE_SOURCE_DIR}/build/third-party/md4c-0.4.8/src")
if(NOT EXISTS "${md4c_source}/md4c.c")
  execute_process(COMMAND "${CMAKE_SOURCE_DIR}/scripts/fetch-md4c" RESULT_VARIABLE failure)
  if(failure)
    message(FATAL_ERROR "TAVI_STATIC=ON compiles the source of md4c, which could not be fetched. "
      "Configure with -DTAVI_STATIC=OFF to build against shared libraries instead.")
  endif()
endif()
add_library(md4c STATIC "${md4c_source}/md4c.c")
target_compile_options(md4c PRIVATE -w)
if(TAVI_SANITIZE)
  target_compile_options(md4c PRIVATE -fsanitize=address -fno-omit-frame-pointer)
endif()
target_include_directories(md4c SYSTEM INTERFACE "${md4c_source}")
add_library(ext::md4c ALIAS md4c)
