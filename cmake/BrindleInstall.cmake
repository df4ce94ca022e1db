# Installs the libraries, their headers, the framework bundle and what other builds find them by:
# find_package(Brindle) and the pkg-config packages brindle and brindle-platform. The tree may be
# moved as a whole afterwards.
include(CMakePackageConfigHelpers)

set(libraries BrindlePlatform)
if(TARGET Brindle)
  list(APPEND libraries Brindle)
  install(DIRECTORY ${BRINDLE_FRAMEWORK} DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime)
endif()
install(TARGETS ${libraries} EXPORT BrindleTargets
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  COMPONENT runtime NAMELINK_COMPONENT development)

set(headers ${CMAKE_INSTALL_INCLUDEDIR}/Brindle)
install(FILES ${BRINDLE_PLATFORM_HEADERS} DESTINATION ${headers}/Platform COMPONENT development)
install(FILES ${BRINDLE_HEADERS}
  ${BRINDLE_INCLUDE_DIR}/Brindle/Brindle.h ${BRINDLE_INCLUDE_DIR}/Brindle/Platform.h
  DESTINATION ${headers} COMPONENT development)

set(package ${CMAKE_INSTALL_LIBDIR}/cmake/Brindle)
install(EXPORT BrindleTargets
  NAMESPACE Brindle:: DESTINATION ${package} FILE BrindleConfig.cmake COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/BrindleConfigVersion.cmake
  COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/BrindleConfigVersion.cmake
  DESTINATION ${package} COMPONENT development)

# From the folder of the .pc file to the prefix, so that pkg-config follows a moved tree.
file(RELATIVE_PATH BRINDLE_PC_TO_PREFIX
  ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" BRINDLE_PC_TO_PREFIX "${BRINDLE_PC_TO_PREFIX}")
foreach(name IN ITEMS brindle brindle-platform)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/${name}.pc.in ${PROJECT_BINARY_DIR}/${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()
