# SPDX-License-Identifier: MIT

# kx_script_tests(<test program>): it starts scripts of tests/support (ScriptProcess.h).
# The system's own Python is preferred: it has the modules that the packages install.
find_program(KX_TEST_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH)
find_program(KX_TEST_PYTHON python3 REQUIRED)

function(kx_script_tests program)
  target_sources(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests/support/ScriptProcess.cpp)
  set_property(SOURCE ${PROJECT_SOURCE_DIR}/tests/support/ScriptProcess.cpp PROPERTY COMPILE_DEFINITIONS
    KX_TEST_PYTHON="${KX_TEST_PYTHON}" KX_TEST_SCRIPTS="${PROJECT_SOURCE_DIR}/tests/support")
endfunction()
