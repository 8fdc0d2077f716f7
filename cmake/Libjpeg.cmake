# The target `libjpeg`: libjpeg-turbo. Its vector instructions need nasm and make it ten times as
# fast; it does without.
if(NOT CMAKE_CROSSCOMPILING)
  qvx_use_installed(libjpeg libjpeg)
  return()
endif()

qvx_find_source(libjpeg_source libjpeg-turbo)
# What is slow in it is not C.
qvx_build_static(libjpeg ${libjpeg_source} libjpeg.a TARGET jpeg-static CMAKE_ARGS
                 "-DCMAKE_C_FLAGS_RELEASE=-O1 -DNDEBUG -D_FORTIFY_SOURCE=2"
                 -DENABLE_SHARED=OFF -DWITH_TURBOJPEG=OFF)
# jconfig.h is made by its configuration.
set(libjpeg_build ${PROJECT_BINARY_DIR}/libjpeg)
file(MAKE_DIRECTORY ${libjpeg_build})
target_include_directories(libjpeg INTERFACE ${libjpeg_build} ${libjpeg_source})
