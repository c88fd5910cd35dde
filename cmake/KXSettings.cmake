# SPDX-License-Identifier: MIT

# What every target of this project is compiled with.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo)
endif()

# The build tree mirrors the installed layout: programs beside lib/, modules in their folder below it.
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

find_program(CCACHE ccache)
if(CCACHE AND PROJECT_IS_TOP_LEVEL)
  # The sloppiness is what ccache asks for before it keeps anything compiled with a precompiled header.
  set(launcher env CCACHE_SLOPPINESS=pch_defines,time_macros ${CCACHE})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
  set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fpch-preprocess>)
endif()

set(KX_SANITIZE "" CACHE STRING "Sanitizers for every target, e.g. address,undefined")
if(KX_SANITIZE)
  add_compile_options(-fsanitize=${KX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KX_SANITIZE})
endif()

if(KX_BUILD_FUZZERS)
  add_compile_options(-fsanitize=fuzzer-no-link)  # so that the fuzzer sees which branches the libraries take
endif()

# Nobody replaces our functions through the dynamic linker, so they may be inlined into each other. Clang takes that for
# granted.
add_compile_options($<$<CXX_COMPILER_ID:GNU>:-fno-semantic-interposition>)

# Ten thousand relocations in a few KiB of what a program has to read when it starts. Linkers without it say so.
include(CheckLinkerFlag)
check_linker_flag(CXX LINKER:-z,pack-relative-relocs KX_PACKS_RELOCATIONS)
if(KX_PACKS_RELOCATIONS)
  add_link_options(LINKER:-z,pack-relative-relocs)
endif()

add_library(kx_warnings INTERFACE)
target_compile_options(kx_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety>)
option(KX_WERROR "Treat warnings as errors" OFF)
if(KX_WERROR)
  target_compile_options(kx_warnings INTERFACE -Werror)
endif()
