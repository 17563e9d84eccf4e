# Functions that build test programs and register their tests with CTest.
include(GoogleTest)

# Most tests run for milliseconds, so compiling takes most of the time. Therefore tests are compiled
# without optimisation, and the largest headers are compiled once for all test programs. Sanitizers'
# reports need no more of the debug information than line numbers.
set(test_options -O0)
if(FRAMESINK_SANITIZE)
  list(APPEND test_options -g1)
endif()
file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/test_prelude.cpp CONTENT "int main() {}\n")
add_executable(test_prelude EXCLUDE_FROM_ALL ${CMAKE_BINARY_DIR}/test_prelude.cpp)
target_link_libraries(test_prelude PRIVATE GTest::gtest framesink_warnings)
target_compile_options(test_prelude PRIVATE ${test_options})
target_precompile_headers(test_prelude PRIVATE
  <gtest/gtest.h>
  <algorithm> <array> <atomic> <chrono> <condition_variable> <cstdint> <functional> <iostream> <map>
  <memory> <mutex> <optional> <random> <set> <span> <string> <thread> <vector>)

# Sets `limit` to `seconds`, or to more under an emulator.
function(limit_to seconds)
  math(EXPR patience "${seconds} * ${FRAMESINK_TEST_PATIENCE}")
  set(limit ${patience} PARENT_SCOPE)
endfunction()

# discover_tests(PROGRAM LABEL label SECONDS limit of a test [FILTER filter])
# The limit grows under an emulator.
function(discover_tests program)
  cmake_parse_arguments(arg "" "LABEL;SECONDS;FILTER" "" ${ARGN})
  limit_to(${arg_SECONDS})
  if(arg_FILTER)
    set(filter TEST_FILTER "${arg_FILTER}")
  endif()
  gtest_discover_tests(${program}
    ${filter}
    NO_PRETTY_VALUES
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 300
    PROPERTIES LABELS ${arg_LABEL} TIMEOUT ${limit})
endfunction()

# add_test_program(NAME SOURCES... [LIBRARIES...] [DEFINITIONS...] [OPTIMISED sources...]
#   [LABEL label SECONDS limit])
# OPTIMISED sources are compiled for speed, because their tests compute much or are about code in
# headers. With a LABEL, CTest runs all tests of the program.
function(add_test_program name)
  cmake_parse_arguments(arg "" "LABEL;SECONDS" "SOURCES;LIBRARIES;DEFINITIONS;OPTIMISED" ${ARGN})
  add_executable(${name} ${arg_SOURCES} ${arg_OPTIMISED})
  target_include_directories(${name} PRIVATE
    ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/include)
  target_compile_definitions(${name} PRIVATE ${arg_DEFINITIONS})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} framesink_warnings GTest::gtest_main)
  if(arg_SOURCES)
    target_compile_options(${name} PRIVATE ${test_options})
    set_source_files_properties(${arg_OPTIMISED} PROPERTIES
      COMPILE_OPTIONS -O2 SKIP_PRECOMPILE_HEADERS ON)
    target_precompile_headers(${name} REUSE_FROM test_prelude)
  endif()
  if(arg_LABEL)
    discover_tests(${name} LABEL ${arg_LABEL} SECONDS ${arg_SECONDS})
  endif()
endfunction()

# Adds each NAME_test.py as the test LABEL_NAME, which runs in its own process.
function(add_python_tests label seconds files environment)
  foreach(file IN LISTS files)
    add_test(NAME ${label}_${file}
      COMMAND ${FRAMESINK_PYTHON_PROGRAM} -m pytest -q -p no:cacheprovider ${file}_test.py
      WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR})
    set_tests_properties(${label}_${file} PROPERTIES
      LABELS ${label} TIMEOUT ${seconds} ENVIRONMENT "PYTHONDONTWRITEBYTECODE=1;${environment}")
  endforeach()
endfunction()
