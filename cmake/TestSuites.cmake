# GoogleTest, and one way to add a suite. For other systems than this one it is compiled: Debian has
# its source.
if(CMAKE_CROSSCOMPILING)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  # Its own faults are not looked for, and a linker takes long for what the optimiser would remove.
  target_compile_options(gtest PRIVATE -O1 -g0 -fno-function-sections -fno-data-sections)
else()
  find_package(GTest REQUIRED)
  add_library(gtest ALIAS GTest::gtest)
  add_library(gtest_main ALIAS GTest::gtest_main)
endif()
include(GoogleTest)

# qvx_add_test_suite(<name> SOURCES <file>... [LIBS <target>...] [LABELS <label>])
#
# Each test runs in a process of its own. ThreadSanitizer builds have only the suites with LABELS
# threads.
function(qvx_add_test_suite name)
  cmake_parse_arguments(PARSE_ARGV 1 suite "" "LABELS" "SOURCES;LIBS")
  if(suite_UNPARSED_ARGUMENTS OR NOT suite_SOURCES)
    message(FATAL_ERROR "qvx_add_test_suite(${name}): wrong arguments ${suite_UNPARSED_ARGUMENTS}")
  endif()
  if(QVX_SANITIZE STREQUAL "thread" AND NOT suite_LABELS STREQUAL "threads")
    return()
  endif()

  add_executable(${name} ${suite_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE ${suite_LIBS} qvx_options gtest_main)
  set_target_properties(${name} PROPERTIES UNITY_BUILD OFF) # each file has its own names
  # Long tables of cases cost the optimiser more than their tests take, and what is undefined is looked
  # for in the library alone.
  target_compile_options(${name} PRIVATE -O0 -fno-sanitize=undefined)
  list(LENGTH suite_SOURCES count)
  if(count GREATER 2)
    target_precompile_headers(${name} PRIVATE <gtest/gtest.h>)
  endif()

  set(properties TIMEOUT 240)
  if(suite_LABELS)
    list(APPEND properties LABELS ${suite_LABELS})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120 PROPERTIES
                       ${properties})
endfunction()
