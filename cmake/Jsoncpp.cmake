# The target `jsoncpp`.
include(${CMAKE_CURRENT_LIST_DIR}/ThirdParty.cmake)
if(NOT WIN32)
  qvx_use_installed(jsoncpp jsoncpp)
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
