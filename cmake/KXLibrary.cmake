# kx_sources(<Foundation|UI> file...): adds the current folder's sources to one of the two libraries.
# A folder's CMakeLists.txt is a sorted list of sources and this call; headers need no mention.
function(kx_sources library)
  set(target_Foundation KXFoundation)
  set(target_UI KXFoundationUI)
  list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  target_sources(${target_${library}} PRIVATE ${ARGN})
endfunction()

# kx_tests(<name> <Foundation|UI> file...): one test program over the library, each test known to ctest.
function(kx_tests name library)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE KXFoundation::${library} kx_test_support_${library} kx_warnings)
  target_precompile_headers(${name} PRIVATE <gmock/gmock.h> <gtest/gtest.h>)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()

# kx_module(<name> <library> file...): a module kx-<name>.so over one heavy library, opened at first use. It lies in
# KXFoundation/ beside our own libraries, in the build tree as after installation.
function(kx_module name library)
  add_library(kx-${name} MODULE ${ARGN})
  target_include_directories(kx-${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(kx-${name} PRIVATE ${library} kx_warnings)
  set_target_properties(kx-${name} PROPERTIES
    PREFIX "" LIBRARY_OUTPUT_DIRECTORY ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/KXFoundation)
  install(TARGETS kx-${name} LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/KXFoundation)
endfunction()
