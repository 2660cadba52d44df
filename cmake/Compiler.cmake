# Compiler and linker options of all our targets. Libraries are included as SYSTEM, so that warnings
# concern our own code only.

find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE}")
endif()

# -O3 makes the program larger and no command faster.
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")
# For the sanitizers: fast enough, with line numbers, in half the build time of -O2 -g.
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O1 -g1")

add_library(tavi_compiler INTERFACE)
target_compile_options(tavi_compiler INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror
  # A designated initializer that names some fields leaves the others at their defaults on purpose.
  -Wno-missing-field-initializers
  -ffunction-sections -fdata-sections)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # False alarms of g++ 12 inside std::string and std::variant (GCC bugs 105329, 105651, 105562).
  target_compile_options(tavi_compiler INTERFACE -Wno-restrict -Wno-array-bounds -Wno-maybe-uninitialized)
endif()
target_link_options(tavi_compiler INTERFACE -Wl,--gc-sections -Wl,--build-id)

if(TAVI_SANITIZE)
  # fno-sanitize-recover: a finding of the undefined-behaviour sanitizer fails the test.
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  # fuzzer-no-link: rooms are instrumented with coverage for the fuzz targets (tavi_fuzz).
  target_compile_options(tavi_compiler INTERFACE ${sanitizers} -fsanitize=fuzzer-no-link)
  target_link_options(tavi_compiler INTERFACE ${sanitizers})
else()
  # Loading shared libraries and relocating addresses would take a large share of a command that
  # runs for a millisecond.
  target_link_options(tavi_compiler INTERFACE
    -static-libstdc++ -static-libgcc -no-pie -Wl,--as-needed)
endif()
