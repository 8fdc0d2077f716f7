# As mingw-w64.cmake, with clang and lld over the same headers and libraries. clang looks for these
# under a version and a folder that are not Debian's: they are linked to where it looks.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
if(CMAKE_HOST_WIN32)
  return()
endif()
set(target x86_64-w64-mingw32)
set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/clang-sysroot)
file(MAKE_DIRECTORY ${CMAKE_SYSROOT}/lib/gcc/${target})
file(CREATE_LINK /usr/lib/gcc/${target}/12-posix ${CMAKE_SYSROOT}/lib/gcc/${target}/12 SYMBOLIC)
file(CREATE_LINK /usr/${target} ${CMAKE_SYSROOT}/${target} SYMBOLIC)
foreach(language C CXX)
  set(CMAKE_${language}_COMPILER_TARGET x86_64-w64-windows-gnu)
endforeach()
set(CMAKE_C_COMPILER clang-14)
set(CMAKE_CXX_COMPILER clang++-14)
set(CMAKE_OBJDUMP ${target}-objdump) # LLVM's prints export tables otherwise
# A driver is linked without -pthread's libraries.
add_link_options(-pthread -fuse-ld=lld -Wno-unused-command-line-argument)
