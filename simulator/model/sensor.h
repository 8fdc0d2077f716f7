// The camera's image sensor: one-byte registers, with addresses of one or two bytes.
#pragma once

#include <map>

#include "simulator/model/i2c_device.h"

namespace qvx::simulator {

class Camera;
class Sensor;

// The exposure registers of a kind of sensor.
struct SensorExposure {
  using Addresses = std::vector<std::uint16_t>;  // of a value of several bytes, the highest first

  Addresses counted;
  int partsPerLine;  // units per line in the register; -1: the register counts the lines that are
                     // not exposed
  Addresses added;   // further lines to add, or the lines of the frame
  std::uint32_t usuallyAdded;
  double defaultLines;  // the right exposure in normal light
  double maxLines;      // the largest useful value
  // Bit 0 of this register selects automatic exposure; 0: the camera's firmware exposes.
  std::uint16_t automaticRegister;
  std::uint8_t automatic, manual;
  std::uint16_t targetRegister;
  double defaultTarget;  // brightness target that gives the right exposure

  double lines(const Sensor& sensor) const;
  void setLines(Sensor& sensor, std::uint32_t lines) const;
  bool isAutomatic(const Camera& camera) const;
  void setAutomatic(Camera& camera, bool on) const;
  double target(const Camera& camera) const;
};

struct SensorKind : SensorExposure {
  std::uint8_t slave;  // in its 8-bit write form
  std::uint8_t addressBytes;
  // Power-up values of consecutive registers, by the address of the first.
  std::map<std::uint16_t, std::vector<std::uint8_t>> registers;
};

// Null for a product id without a known sensor.
const SensorKind* sensorFor(std::uint16_t productId);

class Sensor final : public I2cDevice {
 public:
  Sensor(std::uint16_t productId, Violations& violations);

  bool answersAt(std::uint8_t slave) const { return kind_ != nullptr && kind_->slave == slave; }

  // One register address (big-endian) and one byte.
  bool write(Bytes subAddress, Bytes data) override;
  bool read(Bytes subAddress, Room data) override;

  // Direct access to the registers, for the camera itself and tests. A register that does not exist
  // reads as 0 and ignores writes.
  std::uint8_t at(std::uint16_t address) const;
  void set(std::uint16_t address, std::uint8_t value);

 private:
  std::uint8_t* findForAccess(Bytes subAddress, std::size_t dataBytes);

  const SensorKind* kind_;
  std::map<std::uint16_t, std::uint8_t> values_;
  Violations& violations_;
};

}  // namespace qvx::simulator
