# The libraries of others, as targets: those that are installed, if they fit. Else they are built from
# Debian's source packages, which scripts/setup.sh fetches, and statically: what we build for Windows
# imports system DLLs only.
include(ExternalProject)
set(QVX_THIRD_PARTY ${PROJECT_SOURCE_DIR}/build/third_party CACHE PATH "Where the fetched sources are")
if(WIN32)
  set(CMAKE_FIND_LIBRARY_SUFFIXES .a) # no import library of a DLL
endif()

# qvx_use_installed(<target> <its name for pkg-config>)
function(qvx_use_installed target package)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(${target} REQUIRED IMPORTED_TARGET GLOBAL ${package})
  add_library(${target} ALIAS PkgConfig::${target})
endfunction()

# qvx_find_source(<variable> <source package>): the folder of its source
function(qvx_find_source variable package)
  file(GLOB folder ${QVX_THIRD_PARTY}/${package}-*)
  if(NOT folder)
    message(FATAL_ERROR "the source of ${package} is missing; scripts/setup.sh build fetches it")
  endif()
  set(${variable} ${folder} PARENT_SCOPE)
endfunction()

# qvx_build_static(<target> <source folder> <library in the build folder> CMAKE_ARGS <argument>...
#                  [TARGET <of that project>])
#
# A project of its own: within ours it would move the output folders of everything.
function(qvx_build_static target source library)
  cmake_parse_arguments(PARSE_ARGV 3 arg "" "TARGET" "CMAKE_ARGS")
  set(folder ${PROJECT_BINARY_DIR}/${target})
  if(arg_TARGET)
    list(APPEND arg_CMAKE_ARGS BUILD_COMMAND ${CMAKE_COMMAND} --build . --target ${arg_TARGET})
  endif()
  ExternalProject_Add(
    ${target}_external
    SOURCE_DIR ${source}
    PREFIX ${folder}
    BINARY_DIR ${folder}
    INSTALL_COMMAND ""
    BUILD_BYPRODUCTS ${folder}/${library}
    CMAKE_ARGS -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE} -DCMAKE_BUILD_TYPE=Release
               -DCMAKE_INSTALL_PREFIX=${folder} -DCMAKE_C_FLAGS=${qvx_hardening_flags}
               -DCMAKE_CXX_FLAGS=${qvx_hardening_flags} ${arg_CMAKE_ARGS})
  add_library(${target} STATIC IMPORTED GLOBAL)
  set_target_properties(${target} PROPERTIES IMPORTED_LOCATION ${folder}/${library})
  add_dependencies(${target} ${target}_external)
endfunction()

include(${CMAKE_CURRENT_LIST_DIR}/Cli11.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/Jsoncpp.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/Libjpeg.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/Httplib.cmake)
