# The target `httplib`. For Windows its own script parts the one header into declarations and a source
# file.
if(NOT CMAKE_CROSSCOMPILING)
  qvx_use_installed(httplib cpp-httplib)
  return()
endif()

qvx_find_source(httplib_source cpp-httplib)
set(httplib_parts ${PROJECT_BINARY_DIR}/httplib)
find_package(Python3 REQUIRED COMPONENTS Interpreter)
add_custom_command(
  OUTPUT ${httplib_parts}/httplib.cc ${httplib_parts}/httplib.h
  COMMAND ${Python3_EXECUTABLE} ${httplib_source}/split.py -e cc -o ${httplib_parts}
  WORKING_DIRECTORY ${httplib_source}
  DEPENDS ${httplib_source}/split.py ${httplib_source}/httplib.h)
add_library(httplib STATIC ${httplib_parts}/httplib.cc)
# The optimiser would take longer than for all that is ours.
target_compile_options(httplib PRIVATE -O1)
target_include_directories(httplib SYSTEM PUBLIC ${httplib_parts})
target_link_libraries(httplib PUBLIC ws2_32)
