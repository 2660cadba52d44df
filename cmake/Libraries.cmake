# Outside libraries, each under one name `ext::...`, as archives: a process that runs for a
# millisecond pays for every shared library it loads.

find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED)

function(tavi_static_library target header)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  find_path(${target}_include ${header} REQUIRED)
  target_include_directories(${target} SYSTEM INTERFACE ${${target}_include})
  foreach(archive IN LISTS ARGN)
    find_library(${target}_${archive} NAMES lib${archive}.a REQUIRED)
    target_link_libraries(${target} INTERFACE ${${target}_${archive}})
  endforeach()
endfunction()

tavi_static_library(ext::sqlite sqlite3.h sqlite3)
target_link_libraries(ext::sqlite INTERFACE Threads::Threads ${CMAKE_DL_LIBS} m)
tavi_static_library(ext::icu unicode/uchar.h icui18n icuuc icudata)
target_link_libraries(ext::icu INTERFACE Threads::Threads ${CMAKE_DL_LIBS} m)
tavi_static_library(ext::nettle nettle/sha2.h nettle)
tavi_static_library(ext::expat expat.h expat)
tavi_static_library(ext::uuid uuid/uuid.h uuid)
tavi_static_library(ext::yaml yaml.h yaml)

# Debian ships md4c as a shared library only; scripts/setup fetches the source of that package. Where
# it could not, the shared library does, and the program is linked against shared libraries.
add_library(ext::md4c INTERFACE IMPORTED GLOBAL)
set(md4c_source "${CMAKE_SOURCE_DIR}/build/third-party/md4c-0.4.8/src")
if(EXISTS "${md4c_source}/md4c.c")
  set(TAVI_STATIC_LIBRARIES ON)
  add_library(md4c STATIC "${md4c_source}/md4c.c")
  target_compile_options(md4c PRIVATE -w)
  if(TAVI_SANITIZE)
    target_compile_options(md4c PRIVATE -fsanitize=address -fno-omit-frame-pointer)
  endif()
  target_include_directories(ext::md4c SYSTEM INTERFACE "${md4c_source}")
  target_link_libraries(ext::md4c INTERFACE md4c)
else()
  set(TAVI_STATIC_LIBRARIES OFF)
  find_path(md4c_include md4c.h REQUIRED)
  find_library(md4c_library md4c REQUIRED)
  target_include_directories(ext::md4c SYSTEM INTERFACE ${md4c_include})
  target_link_libraries(ext::md4c INTERFACE ${md4c_library})
endif()

# Compiled once, in src/json/boost_json.cpp.
add_library(ext::boost_json INTERFACE IMPORTED GLOBAL)
target_include_directories(ext::boost_json SYSTEM INTERFACE ${Boost_INCLUDE_DIRS})

# Headers and one source of ours, since Debian has no archive: with the headers alone each unit
# compiles the whole library anew, which takes three times as long.
find_path(fmt_include fmt/format-inl.h REQUIRED)
add_library(fmt_library STATIC "${CMAKE_SOURCE_DIR}/src/fmt_library.cpp")
target_include_directories(fmt_library SYSTEM PUBLIC ${fmt_include})
target_compile_options(fmt_library PRIVATE -ffunction-sections -fdata-sections)
add_library(ext::fmt ALIAS fmt_library)
