# The target `httplib`: Debian's library on this machine. For Windows it is built from Debian's source
# package, whose script parts the one header into declarations and a source file.
if(NOT WIN32)
  find_package(PkgConfig REQUIRED)
  pkg_check_modules(cpp_httplib REQUIRED IMPORTED_TARGET GLOBAL cpp-httplib)
  add_library(httplib ALIAS PkgConfig::cpp_httplib)
  return()
endif()

file(GLOB httplib_script ${PROJECT_SOURCE_DIR}/build/third_party/cpp-httplib-*/split.py)
if(NOT httplib_script)
  message(FATAL_ERROR "cpp-httplib's source is missing; scripts/setup.sh build fetches it")
endif()
cmake_path(GET httplib_script PARENT_PATH httplib_source)
set(httplib_parts ${PROJECT_BINARY_DIR}/httplib)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_custom_command(
  OUTPUT ${httplib_parts}/httplib.cc ${httplib_parts}/httplib.h
  COMMAND ${Python3_EXECUTABLE} ${httplib_script} -e cc -o ${httplib_parts}
  WORKING_DIRECTORY ${httplib_source}
  DEPENDS ${httplib_script} ${httplib_source}/httplib.h)
add_library(httplib STATIC ${httplib_parts}/httplib.cc)
target_compile_options(httplib PRIVATE -O1) # the optimiser would take longer than for all of ours
target_include_directories(httplib SYSTEM PUBLIC ${httplib_parts})
target_link_libraries(httplib PUBLIC ws2_32)
