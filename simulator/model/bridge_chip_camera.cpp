#include "simulator/model/bridge_chip_camera.h"

namespace qvx::simulator {

namespace {

// Everything that may stand on the camera's bus, and the length of its sub-addresses.
constexpr struct {
  std::uint8_t slave, subAddressLength;
} cameraBus[] = {
    {0x62, 1},                                              // controller
    {0x78, 2},                                              // sensors
    {0x48, 2}, {0x42, 1}, {0x34, 2}, {0x46, 0}, {0x18, 1},  // lens drivers
};

}  // namespace

BridgeCamera::BridgeCamera(std::uint16_t productId, const BridgeSetup& setup)
    : camera(productId), chip(setup, camera.violations()) {
  chip.attach(I2cBus::eeprom, Eeprom::slave, Eeprom::subAddressLength, eeprom);
  for (const auto& place : cameraBus) {
    I2cDevice* const device = camera.deviceAt(place.slave);
    if (device != nullptr)
      chip.attach(I2cBus::camera, place.slave, place.subAddressLength, *device);
  }
}

}  // namespace qvx::simulator
