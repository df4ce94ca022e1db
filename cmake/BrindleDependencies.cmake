# The libraries under the platform. None of them shows in a public header.

find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(absl REQUIRED)
find_package(EXPAT REQUIRED)
pkg_check_modules(glib REQUIRED IMPORTED_TARGET glib-2.0)
pkg_check_modules(libffi REQUIRED IMPORTED_TARGET libffi)
pkg_check_modules(uuid REQUIRED IMPORTED_TARGET uuid)

add_library(brindle_dependencies INTERFACE)
target_link_libraries(brindle_dependencies INTERFACE
  ICU::i18n ICU::uc absl::time EXPAT::EXPAT PkgConfig::glib PkgConfig::libffi PkgConfig::uuid
  Threads::Threads ${CMAKE_DL_LIBS})
