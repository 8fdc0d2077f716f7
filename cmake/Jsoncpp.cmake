# The target `jsoncpp`. Windows programs carry it inside: there only a static library will do.
find_package(jsoncpp QUIET)
if(TARGET jsoncpp_static OR (TARGET jsoncpp_lib AND NOT WIN32))
  add_library(jsoncpp ALIAS JsonCpp::JsonCpp)
  return()
endif()

qvx_find_source(jsoncpp_source libjsoncpp)
qvx_build_static(
  jsoncpp
  ${jsoncpp_source}
  lib/libjsoncpp.a
  CMAKE_ARGS
  "-DCMAKE_CXX_FLAGS_RELEASE=-Os -DNDEBUG -D_FORTIFY_SOURCE=2"
  -DBUILD_SHARED_LIBS=OFF
  -DBUILD_OBJECT_LIBS=OFF
  -DJSONCPP_WITH_TESTS=OFF
  -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF
  -DJSONCPP_WITH_PKGCONFIG_SUPPORT=OFF
  -DJSONCPP_WITH_CMAKE_PACKAGE=OFF)
target_include_directories(jsoncpp INTERFACE ${jsoncpp_source}/include)
