# The target `jsoncpp`: Debian's library on this machine. For Windows it is built from Debian's
# source package, and statically: what we build imports system DLLs only.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(jsoncpp REQUIRED IMPORTED_TARGET GLOBAL jsoncpp)
  add_library(jsoncpp ALIAS PkgConfig::jsoncpp)
  return()
endif()

file(GLOB jsoncpp_source ${PROJECT_SOURCE_DIR}/build/third_party/libjsoncpp-*/CMakeLists.txt)
if(NOT jsoncpp_source)
  message(FATAL_ERROR "jsoncpp's source is missing; scripts/setup.sh build fetches it")
endif()
cmake_path(GET jsoncpp_source PARENT_PATH jsoncpp_source)

# A project of its own: within ours it would move the output folders of everything.
include(ExternalProject)
set(jsoncpp_build ${PROJECT_BINARY_DIR}/jsoncpp)
set(jsoncpp_library ${jsoncpp_build}/lib/libjsoncpp.a)
ExternalProject_Add(
  jsoncpp_external
  SOURCE_DIR ${jsoncpp_source}
  PREFIX ${jsoncpp_build}
  BINARY_DIR ${jsoncpp_build}
  CMAKE_ARGS -DCMAKE_TOOLCHAIN_FILE=${CMAKE_TOOLCHAIN_FILE}
             -DCMAKE_BUILD_TYPE=${CMAKE_BUILD_TYPE}
             -DCMAKE_CXX_FLAGS=${qvx_hardening_flags}
             "-DCMAKE_CXX_FLAGS_RELEASE=-Os -DNDEBUG -D_FORTIFY_SOURCE=2"
             -DBUILD_SHARED_LIBS=OFF
             -DBUILD_OBJECT_LIBS=OFF
             -DJSONCPP_WITH_TESTS=OFF
             -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF
             -DJSONCPP_WITH_PKGCONFIG_SUPPORT=OFF
             -DJSONCPP_WITH_CMAKE_PACKAGE=OFF
  INSTALL_COMMAND ""
  BUILD_BYPRODUCTS ${jsoncpp_library})
add_library(jsoncpp STATIC IMPORTED GLOBAL)
set_target_properties(jsoncpp PROPERTIES IMPORTED_LOCATION ${jsoncpp_library}
                                         INTERFACE_INCLUDE_DIRECTORIES ${jsoncpp_source}/include)
add_dependencies(jsoncpp jsoncpp_external)
