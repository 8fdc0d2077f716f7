# QVX64.dll: the portable part over Windows, its import libraries and its installed package.
add_library(
  qvx_windows_platform OBJECT
  platform/windows/com.cpp
  platform/windows/files.cpp
  platform/windows/hid.cpp
  platform/windows/internet.cpp
  platform/windows/libusbk.cpp
  platform/windows/module.cpp
  platform/windows/process.cpp
  platform/windows/text.cpp
  platform/windows/timers.cpp
  platform/windows/topology.cpp
  platform/windows/video_inputs.cpp
  platform/windows/video_proc_amp.cpp
  platform/windows/workers.cpp)
target_link_libraries(
  qvx_windows_platform
  PUBLIC wininet ole32 oleaut32 strmiids ksuser uuid hid setupapi user32
  PRIVATE qvx_core)

# Small: the DLL waits for cameras, not for its own code.
foreach(part qvx_core qvx_windows_platform)
  target_compile_options(${part} PRIVATE $<$<CONFIG:Release>:-Os>)
endforeach()

add_library(QVX64 SHARED api/QVX64.def api/version.rc)
target_link_libraries(QVX64 PRIVATE qvx_core qvx_windows_platform)
target_link_options(QVX64 PRIVATE $<$<CONFIG:Release>:-s>)
set_target_properties(
  QVX64
  PROPERTIES PREFIX ""
             IMPORT_PREFIX "lib"
             RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}
             ARCHIVE_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
target_include_directories(
  QVX64 INTERFACE $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:include>)

# Microsoft's linker takes a library in its own short form.
find_program(llvm_dlltool NAMES llvm-dlltool-14 llvm-dlltool REQUIRED)
add_custom_command(
  OUTPUT ${PROJECT_BINARY_DIR}/QVX64.lib
  COMMAND ${llvm_dlltool} -m i386:x86-64 -d ${CMAKE_CURRENT_SOURCE_DIR}/api/QVX64.def -l
          ${PROJECT_BINARY_DIR}/QVX64.lib
  DEPENDS api/QVX64.def
  VERBATIM)
add_custom_target(msvc_import_library ALL DEPENDS ${PROJECT_BINARY_DIR}/QVX64.lib)

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
install(TARGETS QVX64 RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(FILES ${PROJECT_BINARY_DIR}/QVX64.lib DESTINATION lib)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/qvx64 DESTINATION include)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/QVX64Config.cmake.in QVX64Config.cmake
                              INSTALL_DESTINATION lib/cmake/QVX64)
write_basic_package_version_file(QVX64ConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/QVX64Config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/QVX64ConfigVersion.cmake
        DESTINATION lib/cmake/QVX64)
