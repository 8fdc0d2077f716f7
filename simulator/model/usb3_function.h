// The vendor controls of a USB 3 camera: class requests to entity 3 of interface 0 that reach the
// devices on its I2C bus.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct UsbSetup {
  std::uint8_t requestType, request;
  std::uint16_t value, index, length;
};

class Usb3Function {
 public:
  explicit Usb3Function(Camera& camera) : camera_(camera) {}

  // One control transfer; the buffer is what is sent or where the answer goes. Returns the bytes
  // moved, nothing when the camera stalls the request.
  std::optional<std::size_t> transfer(const UsbSetup& setup, std::span<std::uint8_t> buffer);

 private:
  bool set(std::uint16_t selector, std::span<const std::uint8_t> data);
  bool get(std::uint16_t selector, std::span<std::uint8_t> data);
  std::optional<std::size_t> describe(std::span<std::uint8_t> buffer) const;
  bool writeOnBus(std::span<const std::uint8_t> data);
  bool writeToLens(std::span<const std::uint8_t> data);
  bool moveLens(std::span<const std::uint8_t> data);
  bool chooseSensorRegister(std::span<const std::uint8_t> data);
  bool readSensor(std::span<std::uint8_t> data);
  bool armButton(std::span<const std::uint8_t> data);
  bool sampleButton(std::span<std::uint8_t> data);

  Camera& camera_;
  // Asked for, and not yet fetched.
  std::optional<std::uint8_t> controllerRegister_;
  std::optional<std::array<std::uint8_t, 2>> sensorRegister_;
  std::uint8_t sensorAddress_ = 0;
  bool buttonArmed_ = false;
};

}  // namespace qvx::simulator
