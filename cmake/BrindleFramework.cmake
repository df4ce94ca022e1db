# The framework bundle beside libBrindle.so: what the library knows as its own bundle, in the build
# tree as well as after installation. Its executable is a link to the library, its resources are
# copies of the files in Resources/.

set(BRINDLE_FRAMEWORK ${CMAKE_LIBRARY_OUTPUT_DIRECTORY}/Brindle.framework)
set(resources ${BRINDLE_FRAMEWORK}/Versions/A/Resources)

file(REMOVE_RECURSE ${BRINDLE_FRAMEWORK})
file(MAKE_DIRECTORY ${resources})
file(GLOB_RECURSE files CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}/Resources
  ${PROJECT_SOURCE_DIR}/Resources/*)
list(REMOVE_ITEM files Info.plist)
configure_file(${PROJECT_SOURCE_DIR}/Resources/Info.plist ${resources}/Info.plist @ONLY)
foreach(file IN LISTS files)
  configure_file(${PROJECT_SOURCE_DIR}/Resources/${file} ${resources}/${file} COPYONLY)
endforeach()

file(CREATE_LINK A ${BRINDLE_FRAMEWORK}/Versions/Current SYMBOLIC)
file(CREATE_LINK Versions/Current/Resources ${BRINDLE_FRAMEWORK}/Resources SYMBOLIC)
file(CREATE_LINK Versions/Current/Brindle ${BRINDLE_FRAMEWORK}/Brindle SYMBOLIC)
# By its SONAME: the plain libBrindle.so belongs to development packages.
file(CREATE_LINK ../../../libBrindle.so.${PROJECT_VERSION_MAJOR}
  ${BRINDLE_FRAMEWORK}/Versions/A/Brindle SYMBOLIC)
