# SPDX-License-Identifier: MIT
set(target_Foundation KXFoundation)
set(target_Testing KXFoundationTesting)
set(target_UI KXFoundationUI)

# kx_sources(<Foundation|UI|Testing> file...): adds the current folder's sources to one of the libraries.
# A folder's CMakeLists.txt is a sorted list of sources and this call; headers need no mention.
function(kx_sources library)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${target_${library}} PRIVATE ${ARGN})
endfunction()

# kx_wide_sources(<Foundation|UI> file...): sources of this folder, named to kx_sources before, that are for machines with
# AVX2 and are called on those only. They go without the precompiled header, which is for every machine.
function(kx_wide_sources library)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    set_source_files_properties(${ARGN} TARGET_DIRECTORY ${target_${library}} PROPERTIES
      COMPILE_OPTIONS -mavx2 SKIP_PRECOMPILE_HEADERS ON)
  endif()
endfunction()

# kx_packages(<Foundation|UI> module...): links pkg-config modules into one of the two libraries. They are private to
# it; a static build hands them on through the installed CMake package and pkg-config file.
function(kx_packages library)
  find_package(PkgConfig REQUIRED)
  foreach(module IN LISTS ARGN)
    if(NOT TARGET PkgConfig::${module})
      pkg_check_modules(${module} REQUIRED QUIET IMPORTED_TARGET GLOBAL ${module})
    endif()
    target_link_libraries(${target_${library}} PRIVATE PkgConfig::${module})
    set_property(GLOBAL APPEND PROPERTY KX_PACKAGES_${library} ${module})
  endforeach()
endfunction()

# kx_plain_library(<Foundation|UI> name header): the same for a library that has no pkg-config file, -l<name> with that
# header of its own, both in the compiler's usual places. It is handed on by its name alone, so that an installed tree
# holds no path of the machine it was built on.
function(kx_plain_library library name header)
  find_library(KX_LIBRARY_${name} ${name} REQUIRED)
  find_path(KX_HEADER_${name} ${header} REQUIRED)
  mark_as_advanced(KX_LIBRARY_${name} KX_HEADER_${name})
  target_link_libraries(${target_${library}} PRIVATE ${name})
  set_property(GLOBAL APPEND PROPERTY KX_PLAIN_LIBRARIES_${library} ${name})
endfunction()

# kx_keep_symbol(<Foundation|UI> symbol): programs that link the library statically keep the object file that defines
# the extern "C" symbol, though nothing calls it: it holds code that runs when the program is loaded.
function(kx_keep_symbol library symbol)
  if(NOT BUILD_SHARED_LIBS)
    target_link_options(${target_${library}} INTERFACE LINKER:-u,${symbol})
    set_property(GLOBAL APPEND PROPERTY KX_KEPT_SYMBOLS_${library} ${symbol})
  endif()
endfunction()

# kx_tests(<name> <Foundation|UI> file... [LABELS label] [ENVIRONMENT variable=value]): one test program over the
# library, each test known to ctest, which runs it with that variable. The label `threads` marks tests that run several
# threads: ./dev check repeats them under ThreadSanitizer.
function(kx_tests name library)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" "LABELS;ENVIRONMENT")
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE KXFoundation::${library} kx_test_support_${library} kx_warnings)
  target_link_options(${name} PRIVATE LINKER:--as-needed)  # KXFoundation::Testing names the UI library to all
  target_precompile_headers(${name} REUSE_FROM kx_test_support_Foundation)
  set_target_properties(${name} PROPERTIES
    RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests
    POSITION_INDEPENDENT_CODE OFF)  # as the owner of the precompiled header has it
  set(properties TIMEOUT 300)
  foreach(property LABELS ENVIRONMENT)  # gtest_discover_tests loses empty values
    if(arg_${property})
      list(APPEND properties ${property} ${arg_${property}})
    endif()
  endforeach()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
endfunction()

# kx_fuzzer(<name> <Foundation|UI> file): a libFuzzer program in build/fuzz/fuzz/, one of the target `fuzzers`; its seeds
# are in fuzz/corpus/<name>/, its words in fuzz/dictionaries/<name>.dict.
# In every other build the same file replays its seeds, as a test.
function(kx_fuzzer name library file)
  add_executable(fuzz_${name} ${file})
  set(seeds ${PROJECT_SOURCE_DIR}/fuzz/corpus/${name})
  target_link_libraries(fuzz_${name} PRIVATE KXFoundation::${library} KXFoundation::Testing kx_warnings)
  set_target_properties(fuzz_${name} PROPERTIES
    OUTPUT_NAME ${name} RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/fuzz)
  if(KX_BUILD_FUZZERS)
    target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
    if(NOT TARGET fuzzers)
      add_custom_target(fuzzers)
    endif()
    add_dependencies(fuzzers fuzz_${name})
  else()
    target_sources(fuzz_${name} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/ReplaySeeds.cpp)
    add_test(NAME fuzz.${name}.seeds COMMAND fuzz_${name} ${seeds})
    set_tests_properties(fuzz.${name}.seeds PROPERTIES TIMEOUT 120)
  endif()
endfunction()

# kx_benchmarks(<name> <Foundation|UI> file... [PEERS library...]): one Google Benchmark program; PEERS are what its
# contenders link. A benchmark is named <service>/<workload>/<who>; its bound is a line of benchmarks/bounds.txt.
function(kx_benchmarks name library)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "" PEERS)
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE KXFoundation::${library} benchmark::benchmark_main kx_warnings ${arg_PEERS})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/benchmarks)
endfunction()

# kx_module(<name> <Foundation|UI> <package> file...): a module kx-<name>.so over one heavy package, opened at first use
# by that library. It lies in KX_MODULE_FOLDER beside our own libraries, in the build tree as after installation.
function(kx_module name library package)
  add_library(kx-${name} MODULE ${ARGN})
  target_include_directories(kx-${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(kx-${name} PRIVATE ${package} kx_warnings)
  set_target_properties(kx-${name} PROPERTIES
    PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/${KX_MODULE_FOLDER})
  add_dependencies(${target_${library}} kx-${name})
  install(TARGETS kx-${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/${KX_MODULE_FOLDER} COMPONENT ${library})
endfunction()
