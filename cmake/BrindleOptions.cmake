# What a builder may choose, and the flags that follow from it.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

get_property(multi_config GLOBAL PROPERTY GENERATOR_IS_MULTI_CONFIG)
if(NOT CMAKE_BUILD_TYPE AND NOT multi_config)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()
set(assertions_default OFF)
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  set(assertions_default ON)
endif()

option(BRINDLE_ASSERTIONS "Check every send against the method found" ${assertions_default})
option(BRINDLE_WERROR "Treat warnings as errors")
option(BRINDLE_TESTS "Build the tests" ${PROJECT_IS_TOP_LEVEL})
option(BRINDLE_EXAMPLES "Build the examples" ${PROJECT_IS_TOP_LEVEL})
option(BRINDLE_BENCHMARKS "Build the benchmarks")
option(BRINDLE_PEERS "Build the other libraries' side of the benchmarks where they are installed" ON)
option(BRINDLE_HEADER_CHECKS "Compile every public header alone")
option(BRINDLE_FUZZ "Build the fuzz targets for libFuzzer (needs clang)")
option(BRINDLE_COVERAGE "Count which lines run")
set(BRINDLE_SANITIZE "" CACHE STRING "Comma-separated sanitizers, such as address,undefined")
set(BRINDLE_CONFORMANCE_DIR "" CACHE PATH "Folder with conformance data; adds its tests")

find_program(BRINDLE_CCACHE ccache)
mark_as_advanced(BRINDLE_CCACHE)
if(BRINDLE_CCACHE AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${BRINDLE_CCACHE})
endif()

# For everything in the build, so that all its parts agree.
add_compile_definitions(BRINDLE_ASSERTIONS=$<BOOL:${BRINDLE_ASSERTIONS}>)
if(BRINDLE_SANITIZE)
  add_compile_options(
    -fsanitize=${BRINDLE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${BRINDLE_SANITIZE})
endif()
if(BRINDLE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
  add_link_options(-fsanitize=fuzzer-no-link)
endif()
if(BRINDLE_COVERAGE)
  add_compile_options(--coverage -fprofile-update=atomic)
  add_link_options(--coverage)
endif()

# The warnings that our own code is held to.
add_library(brindle_warnings INTERFACE)
target_compile_options(brindle_warnings INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wshadow
  $<$<CXX_COMPILER_ID:Clang>:-Wdangling>
  $<$<BOOL:${BRINDLE_WERROR}>:-Werror>)

function(brindle_library_properties target)
  # Calls between our own exported functions may be inlined; addresses of functions still compare
  # equal in every library of the process, which -Bsymbolic-functions would not keep.
  target_compile_options(${target} PRIVATE -fno-semantic-interposition)
  set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()

function(brindle_shared_library target)
  brindle_library_properties(${target})
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    INSTALL_RPATH "$ORIGIN")
  # Classes and the implementations they point to live as long as the process.
  target_link_options(${target} PRIVATE -Wl,-z,nodelete)
  if(NOT BRINDLE_SANITIZE)
    target_link_options(${target} PRIVATE -Wl,-z,defs)
  endif()
  target_include_directories(${target} INTERFACE
    $<BUILD_INTERFACE:${BRINDLE_INCLUDE_DIR}> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_compile_features(${target} PUBLIC cxx_std_20)
endfunction()
