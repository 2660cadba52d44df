# Options for all targets of the project. Libraries are SYSTEM, so that warnings apply to the
# project's own code only. Optimisation, debugging and hardening (CMAKE_BUILD_TYPE, CXXFLAGS, LDFLAGS)
# and whether warnings are errors (CMAKE_COMPILE_WARNING_AS_ERROR) are left to the user; the presets
# set what developers and CI use.

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CXX_FLAGS)  # whose -O2 would come after a packager's own
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "" FORCE)
endif()

find_program(CCACHE ccache)
if(CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

# Keep build paths out of the files, so that builds in different folders are identical.
add_compile_options(
  "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=."
  "-ffile-prefix-map=${CMAKE_BINARY_DIR}=./build")

add_library(tavi_compiler INTERFACE)
target_compile_options(tavi_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  # Designated initializers deliberately leave the other fields at their defaults.
  -Wno-missing-field-initializers
  -ffunction-sections -fdata-sections)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # False positives of g++ 12 inside std::string and std::variant (GCC bugs 105329, 105651, 105562).
  target_compile_options(tavi_compiler INTERFACE -Wno-restrict -Wno-array-bounds -Wno-maybe-uninitialized)
endif()
target_link_options(tavi_compiler INTERFACE -Wl,--gc-sections -Wl,--build-id -Wl,--as-needed)

if(TAVI_SANITIZE)
  # fno-sanitize-recover: undefined behaviour fails the test instead of only printing a message.
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # fuzzer-no-link: instruments the rooms with coverage for the fuzz targets (tavi_fuzz).
  target_compile_options(tavi_compiler INTERFACE ${sanitizers} -fsanitize=fuzzer-no-link)
  target_link_options(tavi_compiler INTERFACE ${sanitizers})
  target_compile_definitions(tavi_compiler INTERFACE TAVI_SANITIZED)
  # Stands in for clang-tidy's check, which is slow (.clang-tidy).
  target_compile_options(tavi_compiler INTERFACE -Wreserved-identifier)
elseif(TAVI_STATIC)
  # Loading shared libraries and relocating addresses would take a large share of a command that
  # runs for a millisecond.
  target_link_options(tavi_compiler INTERFACE -static-libstdc++ -static-libgcc -no-pie)
else()
  target_compile_options(tavi_compiler INTERFACE -fPIE)
  target_link_options(tavi_compiler INTERFACE -pie)
endif()
