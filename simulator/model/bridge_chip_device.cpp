#include "simulator/model/bridge_chip_device.h"

#include <algorithm>

namespace qvx::simulator {

namespace {

// Everything that may stand on the camera's bus, and the length of its sub-addresses.
constexpr struct {
  std::uint8_t slave, subAddressLength;
} cameraBus[] = {
    {0x62, 1},                                   // controller
    {0x78, 2}, {0x48, 2}, {0x42, 1}, {0x34, 2},  // sensors
    {0x46, 0}, {0x18, 1},                        // lens drivers
};

// Long enough that a client polling four times a second cannot miss it.
constexpr std::uint32_t longestPress_ms = 600;

}  // namespace

BridgeDevice::BridgeDevice(std::uint16_t productId, const BridgeSetup& setup)
    : camera(productId), chip(setup, camera) {
  chip.attach(I2cBus::eeprom, Eeprom::slave, Eeprom::subAddressLength, eeprom);
  for (const auto& place : cameraBus) {
    I2cDevice* const device = camera.deviceAt(place.slave);
    if (device != nullptr)
      chip.attach(I2cBus::camera, place.slave, place.subAddressLength, *device);
  }
}

void BridgeDevice::setButtonPeriod(std::uint32_t period_ms) {
  buttonPeriod_ms_ = period_ms;
  presses_ = period_ms == 0 ? 0 : now_ms_ / period_ms;
}

void BridgeDevice::advanceTo(std::uint64_t now_ms) {
  now_ms_ = now_ms;
  camera.advanceTo(now_ms);
  if (buttonPeriod_ms_ == 0) return;
  const std::uint64_t presses = now_ms / buttonPeriod_ms_;
  if (presses != presses_) pressButton();
  presses_ = presses;
  const std::uint32_t press_ms = std::min(longestPress_ms, buttonPeriod_ms_ / 2);
  if (now_ms % buttonPeriod_ms_ >= press_ms) releaseButton();
}

void BridgeDevice::pressButton() {
  camera.gpio().pressButton();
  chip.pressButton();
}

void BridgeDevice::releaseButton() {
  camera.gpio().releaseButton();
  chip.releaseButton();
}

}  // namespace qvx::simulator
