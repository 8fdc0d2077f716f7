# The target `libjpeg`: Debian's library on this machine. For Windows libjpeg-turbo is built from
# Debian's source package, and statically.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(libjpeg REQUIRED IMPORTED_TARGET GLOBAL libjpeg)
  add_library(libjpeg ALIAS PkgConfig::libjpeg)
  return()
endif()

file(GLOB libjpeg_source ${PROJECT_SOURCE_DIR}/build/third_party/libjpeg-turbo-*/CMakeLists.txt)
if(NOT libjpeg_source)
  message(FATAL_ERROR "libjpeg-turbo's source is missing; scripts/setup.sh build fetches it")
endif()
cmake_path(GET libjpeg_source PARENT_PATH libjpeg_source)

# Its vector instructions need nasm and make it ten times as fast; it does without.
include(ExternalProject)
set(libjpeg_build ${PROJECT_BINARY_DIR}/libjpeg)
set(libjpeg_library ${libjpeg_build}/libjpeg.a)
file(MAKE_DIRECTORY ${libjpeg_build})
ExternalProject_Add(
  libjpeg_external
  SOURCE_DIR ${libjpeg_source}
  PREFIX ${libjpeg_build}
  BINARY_DIR ${libjpeg_build}
  CMAKE_ARGS -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
             -DCMAKE_BUILD_TYPE=Release
             -DCMAKE_C_FLAGS=${qvx_hardening_flags}
             -DCMAKE_INSTALL_PREFIX=${libjpeg_build}
             -DENABLE_SHARED=OFF
             -DWITH_TURBOJPEG=OFF
  BUILD_COMMAND ${CMAKE_COMMAND} --build . --target jpeg-static
  INSTALL_COMMAND ""
  BUILD_BYPRODUCTS ${libjpeg_library})
add_library(libjpeg STATIC IMPORTED GLOBAL)
set_target_properties(libjpeg PROPERTIES IMPORTED_LOCATION ${libjpeg_library})
# jconfig.h is made by its configuration.
target_include_directories(libjpeg INTERFACE ${libjpeg_build} ${libjpeg_source})
add_dependencies(libjpeg libjpeg_external)
