# The target `cli11`: headers only. Debian's stand in a folder with headers of this machine, which the
# compiler for Windows must not see: it gets a link to their folder.
find_path(cli11_include CLI/CLI.hpp)
if(NOT cli11_include)
  find_path(cli11_installed CLI/CLI.hpp PATHS /usr/include NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(cli11_include ${PROJECT_BINARY_DIR}/cli11)
  file(MAKE_DIRECTORY ${cli11_include})
  file(CREATE_LINK ${cli11_installed}/CLI ${cli11_include}/CLI COPY_ON_ERROR SYMBOLIC)
endif()
add_library(cli11 INTERFACE)
target_include_directories(cli11 SYSTEM INTERFACE ${cli11_include})
