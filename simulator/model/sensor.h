// The camera's image sensor: one-byte registers, with addresses of one or two bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/model/i2c_device.h"
#include "simulator/model/violations.h"

namespace qvx::simulator {

struct SensorRegister {
  std::uint16_t address;
  std::uint8_t atPowerUp;
};

struct SensorKind {
  std::uint8_t slave;  // in its 8-bit write form
  std::uint8_t addressBytes;
  std::span<const SensorRegister> registers;
};

// Null for a product id whose sensor is not known.
const SensorKind* sensorFor(std::uint16_t productId);

class Sensor final : public I2cDevice {
 public:
  Sensor(std::uint16_t productId, Violations& violations);

  bool answersAt(std::uint8_t slave) const { return kind_ != nullptr && kind_->slave == slave; }

  // One register address, the high byte first, and one byte.
  bool write(std::span<const std::uint8_t> subAddress, std::span<const std::uint8_t> data) override;
  bool read(std::span<const std::uint8_t> subAddress, std::span<std::uint8_t> data) override;

  // The registers as the camera itself and its tests see them. A register that the sensor does not
  // have reads 0 and takes no value.
  std::uint8_t at(std::uint16_t address) const;
  void set(std::uint16_t address, std::uint8_t value);

 private:
  static constexpr std::size_t mostRegisters = 12;

  std::size_t indexOf(std::uint16_t address) const;
  std::size_t indexForAccess(std::span<const std::uint8_t> subAddress, std::size_t dataBytes);
  std::size_t refuse(std::string_view what, std::uint32_t number, int digits);

  const SensorKind* kind_;
  std::array<std::uint8_t, mostRegisters> values_{};
  Violations& violations_;
};

}  // namespace qvx::simulator
