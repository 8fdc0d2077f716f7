# Simulated cameras as devices of a Windows machine: for mingw-w64.
add_library(
  qvx_virtual_camera_registry STATIC
  capture_filter/camera_registry.cpp
  capture_filter/child_program.cpp
  capture_filter/class_key.cpp)
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
