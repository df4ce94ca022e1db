# Lays out the public headers in the build tree as they are installed: <Brindle/Platform/NSArray.h>,
# <Brindle/BDStack.h> and the umbrellas <Brindle/Platform.h> and <Brindle/Brindle.h>. The headers are
# links, so that an edit shows at once and an error names the real file.

set(BRINDLE_INCLUDE_DIR ${PROJECT_BINARY_DIR}/include)

file(GLOB BRINDLE_PLATFORM_HEADERS CONFIGURE_DEPENDS
  ${PROJECT_SOURCE_DIR}/Platform/Runtime/*.h ${PROJECT_SOURCE_DIR}/Platform/Foundation/*.h)
file(GLOB BRINDLE_HEADERS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/Source/*.h)

# Makes `folder` hold links to exactly these headers.
function(brindle_link_headers folder)
  set(names "")
  file(MAKE_DIRECTORY ${folder})
  foreach(header IN LISTS ARGN)
    get_filename_component(name ${header} NAME)
    if(name IN_LIST names)
      message(FATAL_ERROR "Two public headers are named ${name}")
    endif()
    list(APPEND names ${name})
    file(CREATE_LINK ${header} ${folder}/${name} SYMBOLIC)
  endforeach()
  file(GLOB present RELATIVE ${folder} ${folder}/*.h)
  foreach(name IN LISTS present)
    if(IS_SYMLINK ${folder}/${name} AND NOT name IN_LIST names)
      file(REMOVE ${folder}/${name})
    endif()
  endforeach()
endfunction()

# Writes an umbrella that includes `first` and every header given, sorted by name.
function(brindle_umbrella file prefix comment first)
  set(names "")
  foreach(header IN LISTS ARGN)
    get_filename_component(name ${header} NAME)
    list(APPEND names ${name})
  endforeach()
  list(SORT names)
  set(text "// ${comment}\n#pragma once\n\n")
  if(first)
    string(APPEND text "#include <${first}>\n\n")
  endif()
  foreach(name IN LISTS names)
    string(APPEND text "#include <${prefix}/${name}>\n")
  endforeach()
  file(CONFIGURE OUTPUT ${file} CONTENT "${text}" @ONLY)
endfunction()

brindle_link_headers(${BRINDLE_INCLUDE_DIR}/Brindle/Platform ${BRINDLE_PLATFORM_HEADERS})
brindle_link_headers(${BRINDLE_INCLUDE_DIR}/Brindle ${BRINDLE_HEADERS})
brindle_umbrella(${BRINDLE_INCLUDE_DIR}/Brindle/Platform.h Brindle/Platform
  "Everything in libBrindlePlatform: the object model and the Foundation classes." ""
  ${BRINDLE_PLATFORM_HEADERS})
brindle_umbrella(${BRINDLE_INCLUDE_DIR}/Brindle/Brindle.h Brindle
  "Everything in libBrindle, and the platform under it." Brindle/Platform.h
  ${BRINDLE_HEADERS})

# What our own code sees: the public headers by their installed names, the private ones by their
# path from the root.
add_library(brindle_headers INTERFACE)
target_include_directories(brindle_headers INTERFACE ${BRINDLE_INCLUDE_DIR} ${PROJECT_SOURCE_DIR})
