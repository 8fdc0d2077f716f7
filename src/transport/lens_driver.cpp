#include "transport/lens_driver.h"

#include "base/bytes.h"
#include "platform/timers.h"
#include "transport/camera_bus.h"
#include "transport/controller.h"
#include "transport/usb3.h"

namespace qvx {

namespace {

// The voice coil takes the 10 bits in a register's address and its value.
std::uint8_t upperSteps(const CoilMove& move) {
  return lowByte(move.steps / 16);
}

std::uint8_t lowerSteps(const CoilMove& move) {
  return lowByte(move.steps % 16 * 16 + 1);
}

}  // namespace

void sendCoilMoveOverUsb3(const CoilMove& move) {
  constexpr auto selector = Usb3Selector::lensDriver;
  sendUsb3(selector, {chip::controller.address, controller::lensDirection, move.direction});
  platform::pause(pauseAfterDirection_ms);
  sendUsb3(selector, {chip::voiceCoil.address, upperSteps(move), lowerSteps(move)});
}

void sendPositionOverUsb3(std::int32_t position) {
  sendUsb3(Usb3Selector::lensPosition, {chip::lensController.address, lowByte(position)});
}

void sendCoilMoveOverBridge(int deviceNumber, const CoilMove& move, std::uint32_t pause_ms) {
  writeBus(deviceNumber, chip::controller, controller::lensDirection, move.direction);
  if (pause_ms != 0) platform::pause(pause_ms);
  writeBus(deviceNumber, chip::voiceCoil, upperSteps(move), lowerSteps(move));
}

void sendPositionOverBridge(int deviceNumber, std::int32_t position) {
  writeBus(deviceNumber, chip::lensController, 0, static_cast<std::uint32_t>(position));
}

void sendPositionOverWifi(std::uint8_t reg, std::int32_t position) {
  writeWifiBus(chip::lensController, reg, static_cast<std::uint32_t>(position));
}

}  // namespace qvx
