# Functions for programs and tests.

# Where every test runs: off UTC, off en_US, and with sanitizers that tell what they found. A test
# that reads a file of the tree finds it from BRINDLE_SOURCE_DIR (the compiler's __FILE__ may be
# relative).
set(BRINDLE_TEST_ENVIRONMENT
  BRINDLE_SOURCE_DIR=${PROJECT_SOURCE_DIR}
  TZ=America/New_York
  LC_ALL=de_DE.UTF-8
  LANG=de_DE.UTF-8
  UBSAN_OPTIONS=print_stacktrace=1
  ASAN_OPTIONS=detect_stack_use_after_return=1:strict_string_checks=1
  TSAN_OPTIONS=second_deadlock_stack=1)

# A program over the public headers. It links libBrindle when it includes one of its headers, and
# only the platform otherwise.
#   brindle_program(<target> <source>...)
function(brindle_program target)
  add_executable(${target} ${ARGN})
  set(library BrindlePlatform)
  foreach(source IN LISTS ARGN)
    file(STRINGS ${source} includes REGEX "^#include <Brindle/")
    list(FILTER includes EXCLUDE REGEX "<Brindle/(Platform/|Platform\\.h)")
    if(includes)
      set(library Brindle)
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  endforeach()
  target_link_libraries(${target} PRIVATE ${library} brindle_warnings)
endfunction()

# A test that runs a command, in the test environment when it runs our own code.
#   brindle_test(<name> LABEL <label> [TIMEOUT <seconds>] [SCRIPT] COMMAND <command>...)
function(brindle_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SCRIPT" "LABEL;TIMEOUT" "COMMAND")
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  add_test(NAME ${name} COMMAND ${arg_COMMAND})
  set_tests_properties(${name} PROPERTIES LABELS ${arg_LABEL} TIMEOUT ${arg_TIMEOUT})
  if(NOT arg_SCRIPT)
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "${BRINDLE_TEST_ENVIRONMENT}")
  endif()
endfunction()

# Takes the test sources out of a list in which no threads meet: ThreadSanitizer has nothing to say
# about them. What tests share stays.
function(brindle_keep_threaded list)
  set(kept "")
  foreach(source IN LISTS ${list})
    file(STRINGS ${source} threads LIMIT_COUNT 1 REGEX "std::thread|std::async|NSOperationQueue")
    file(STRINGS ${source} tests LIMIT_COUNT 1 REGEX "^TEST(_[FP])?\\(")
    if(threads OR NOT tests)
      list(APPEND kept ${source})
    endif()
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  endforeach()
  set(${list} ${kept} PARENT_SCOPE)
endfunction()

# A GoogleTest program. ctest asks it for its suites when the tests start and runs each suite in a
# process of its own, so that they run side by side and no suite leans on another.
#   brindle_gtest(<target> LIBRARY <library> SOURCES <source>...)
function(brindle_gtest target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "LIBRARY" "SOURCES")
  if(NOT arg_SOURCES)
    return()
  endif()
  if(BRINDLE_SANITIZE STREQUAL "thread")
    brindle_keep_threaded(arg_SOURCES)
  endif()
  if(NOT arg_SOURCES)
    return()
  endif()
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE
    ${arg_LIBRARY} brindle_headers brindle_warnings GTest::gtest_main)
  # It is the library that is optimised: its tests only have to be compiled soon.
  if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
    target_compile_options(${target} PRIVATE -O0 -g0)
  elseif(BRINDLE_SANITIZE)
    target_compile_options(${target} PRIVATE -O0)
  endif()
  add_dependencies(unit-tests ${target})
  set(file ${CMAKE_CURRENT_BINARY_DIR}/${target}_suites)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/TestSuites.cmake.in ${file}.in @ONLY)
  file(GENERATE OUTPUT ${file}.cmake INPUT ${file}.in)
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${file}.cmake)
endfunction()
