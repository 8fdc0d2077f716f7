# Cameras behind a USB video bridge chip. No heap and no exceptions here either.
set(bridge_device_sources
    ${CMAKE_CURRENT_LIST_DIR}/model/bridge_chip.cpp
    ${CMAKE_CURRENT_LIST_DIR}/model/bridge_chip_commands.cpp
    ${CMAKE_CURRENT_LIST_DIR}/model/bridge_chip_device.cpp
    ${CMAKE_CURRENT_LIST_DIR}/model/bridge_chip_extension_unit.cpp
    ${CMAKE_CURRENT_LIST_DIR}/model/bridge_chip_hid.cpp)
add_library(
  qvx_simulator_bridge STATIC
  ${bridge_device_sources}
  ${CMAKE_CURRENT_LIST_DIR}/model/bridge_chip_spec.cpp)
target_compile_options(qvx_simulator_bridge PRIVATE -fno-exceptions)
target_link_libraries(
  qvx_simulator_bridge
  PUBLIC qvx_simulator_camera
  PRIVATE qvx_options)
