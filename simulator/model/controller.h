// The camera's microcontroller: one-byte registers with one-byte addresses.
#pragma once

#include <optional>

#include "simulator/model/i2c_device.h"
#include "simulator/model/illumination.h"
#include "simulator/model/product.h"

namespace qvx::simulator {

enum : std::uint8_t {
  controllerAddress = 0x62,  // in its 8-bit write form
};

namespace controller_register {
enum : std::uint8_t {
  modelByte = 0x00,
  encoderPosition = 0x01,  // whole units
  encoderFraction = 0x02,  // 0x00, 0x40, 0x80 or 0xC0: quarters of a unit
  lightLevel = 0x03,
  lightSwitch = 0x04,
  lensDirection = 0x08,  // 1 = forward, 2 = backward
  quadrant1Level = 0x12,
  quadrant4Level = 0x15,
  threePoints = 0x40,   // calibration, 12 registers; the layout depends on the kind
  lensZeroAt40 = 0x40,  // on cameras with a focus lens but no encoder
  threePointsEnd = 0x4B,
  lensZeroAt50 = 0x50,
  fineOffsetBackward = 0x5E,
  fineOffsetForward = 0x5F,
  fourPointsY = 0x60,  // calibration, magnifications: two bytes each, low byte first
  fourPointsX = 0x68,  // calibration, positions
  fourPointsEnd = 0x6F,
  features = 0x80,
  reserved81 = 0x81,
  lightingKind = 0x83,
  lightingBoard = 0x84,
  opticsKind = 0xC0,
  reservedC1 = 0xC1,
  wideLensRange = 0xC2,
  calibrationKind = 0xC3,
  reservedC4 = 0xC4,
  calibrationDegree = 0xC5,
  lensDriverKind = 0xCA,
};
}  // namespace controller_register

// Describes a register, and its value if that has a name: "calibration: line through two points".
// Empty for a register that does not exist.
std::string meaningOf(std::uint8_t reg, std::uint8_t value);

class Controller final : public I2cDevice {
 public:
  // The state at power-up. An unknown product id gets a controller of the oldest kind with nothing
  // programmed.
  Controller(std::uint16_t productId, Violations& violations);

  // One register address and one byte.
  bool write(Bytes subAddress, Bytes data) override;

  // One register address; several bytes are read from consecutive registers.
  bool read(Bytes subAddress, Room data) override;

  // Direct access to the registers, for the camera itself and tests, without the rules of the bus.
  std::uint8_t at(std::uint8_t reg) const { return values_[reg]; }
  void set(std::uint8_t reg, std::uint8_t value) { values_[reg] = value; }

  // The lens's zero position, from whichever register holds it.
  std::uint8_t lensZero() const { return lensZero_; }

  // The lights as the registers have set them.
  const Illumination& lights() const { return lights_; }

 private:
  void program(std::uint16_t productId);
  bool isWellFormed(Bytes subAddress, std::size_t dataBytes);
  std::uint8_t take(std::uint8_t source);
  bool refuse(const char* what, std::size_t number);

  const Product& product_;
  Registers values_;
  std::uint8_t lensZero_ = erased;
  Illumination lights_;
  Violations& violations_;
  // Latched with the position that was read last: the ring may move between the two reads.
  std::optional<std::uint8_t> heldFraction_;
};

}  // namespace qvx::simulator
