# Simulated cameras as devices of a Windows machine: for mingw-w64.
add_library(
  qvx_virtual_camera_registry STATIC
  capture_filter/camera_registry.cpp
  capture_filter/child_program.cpp
  capture_filter/registry_key.cpp
  capture_filter/tool.cpp)
target_link_libraries(
  qvx_virtual_camera_registry
  PUBLIC qvx_simulator_bridge qvx_options
  PRIVATE ole32)

add_library(
  qvx_capture_filter SHARED
  capture_filter/camera_moniker.cpp
  capture_filter/capture_filter.cpp
  capture_filter/capture_filter.def
  capture_filter/capture_pin.cpp
  capture_filter/device_enumerator.cpp
  capture_filter/module.cpp
  capture_filter/topology.cpp
  capture_filter/virtual_camera.cpp)
target_link_libraries(qvx_capture_filter PRIVATE qvx_virtual_camera_registry ole32 oleaut32 strmiids
                                                 uuid)
target_link_options(qvx_capture_filter PRIVATE -s)
set_target_properties(
  qvx_capture_filter
  PROPERTIES PREFIX "" OUTPUT_NAME qvx-capture-filter RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})

add_executable(qvx_virtual_cameras capture_filter/virtual_cameras.cpp)
target_link_libraries(qvx_virtual_cameras PRIVATE qvx_virtual_camera_registry)
target_link_options(qvx_virtual_cameras PRIVATE -s -municode)
set_target_properties(
  qvx_virtual_cameras PROPERTIES OUTPUT_NAME qvx-virtual-cameras RUNTIME_OUTPUT_DIRECTORY
                                                                 ${PROJECT_BINARY_DIR})
add_dependencies(qvx_virtual_cameras qvx_capture_filter)

# The minidriver has no C and no C++ runtime beneath it: the camera is compiled into it anew.
add_library(
  qvx_hid_bridge MODULE
  hid_bridge/driver.cpp
  hid_bridge/virtual_device.cpp
  ${bridge_device_sources}
  $<TARGET_PROPERTY:qvx_simulator_camera,SOURCES>)
target_include_directories(qvx_hid_bridge PRIVATE ${PROJECT_SOURCE_DIR})
find_path(ddk_headers ntddk.h PATH_SUFFIXES ddk REQUIRED)
target_include_directories(qvx_hid_bridge SYSTEM PRIVATE ${ddk_headers})
target_compile_options(
  qvx_hid_bridge PRIVATE -fno-exceptions -fno-rtti -fno-threadsafe-statics -fno-stack-protector
                         -U_FORTIFY_SOURCE -ffunction-sections)
target_link_options(
  qvx_hid_bridge
  PRIVATE
  -nostdlib
  -Wl,--subsystem,native
  -Wl,--entry,DriverEntry
  -Wl,--gc-sections
  -Wl,--exclude-all-symbols
  -s)
target_link_libraries(qvx_hid_bridge PRIVATE qvx_options hidclass ntoskrnl gcc)
set_target_properties(
  qvx_hid_bridge
  PROPERTIES PREFIX ""
             SUFFIX .sys
             OUTPUT_NAME qvx-hid-bridge
             LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})

add_library(qvx_virtual_hid_devices STATIC hid_bridge/virtual_hid_devices.cpp)
target_link_libraries(
  qvx_virtual_hid_devices
  PUBLIC qvx_virtual_camera_registry
  PRIVATE hid setupapi)
add_executable(qvx_virtual_hid hid_bridge/virtual_hid.cpp)
target_link_libraries(qvx_virtual_hid PRIVATE qvx_virtual_hid_devices)
target_link_options(qvx_virtual_hid PRIVATE -s -municode)
set_target_properties(qvx_virtual_hid PROPERTIES OUTPUT_NAME qvx-virtual-hid
                                                 RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
add_dependencies(qvx_virtual_hid qvx_hid_bridge)
