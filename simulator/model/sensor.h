// The camera's image sensor: one-byte registers, with addresses of one or two bytes.
#pragma once

#include <map>

#include "simulator/model/i2c_device.h"

namespace qvx::simulator {

class Camera;
class Sensor;

// How a kind of sensor is exposed, in its registers.
struct SensorExposure {
  using Addresses = std::vector<std::uint16_t>;  // of several bytes, the highest first

  Addresses counted;
  int partsPerLine;  // that are counted; -1: counts the lines of the frame that are not exposed
  Addresses added;   // to that: more lines, or those of the frame
  std::uint32_t usuallyAdded;
  double defaultLines;  // the right exposure in usual light
  double maxLines;      // that a person would want
  // Bit 0 tells whether exposure is automatic; register 0: the camera's firmware does it.
  std::uint16_t automaticRegister;
  std::uint8_t automatic, manual;
  std::uint16_t targetRegister;
  double defaultTarget;  // of automatic exposure: gives the right exposure

  double lines(const Sensor& sensor) const;
  void setLines(Sensor& sensor, std::uint32_t lines) const;
  bool isAutomatic(const Camera& camera) const;
  void setAutomatic(Camera& camera, bool on) const;
  double target(const Camera& camera) const;
};

struct SensorKind : SensorExposure {
  std::uint8_t slave;  // in its 8-bit write form
  std::uint8_t addressBytes;
  // At power-up: the values of registers in a row, by the address of the first.
  std::map<std::uint16_t, std::vector<std::uint8_t>> registers;
};

// Null for a product id whose sensor is not known.
const SensorKind* sensorFor(std::uint16_t productId);

class Sensor final : public I2cDevice {
 public:
  Sensor(std::uint16_t productId, Violations& violations);

  bool answersAt(std::uint8_t slave) const { return kind_ != nullptr && kind_->slave == slave; }

  // One register address, the high byte first, and one byte.
  bool write(Bytes subAddress, Bytes data) override;
  bool read(Bytes subAddress, Room data) override;

  // The registers as the camera itself and its tests see them. A register that the sensor does not
  // have reads 0 and takes no value.
  std::uint8_t at(std::uint16_t address) const;
  void set(std::uint16_t address, std::uint8_t value);

 private:
  std::uint8_t* findForAccess(Bytes subAddress, std::size_t dataBytes);

  const SensorKind* kind_;
  std::map<std::uint16_t, std::uint8_t> values_;
  Violations& violations_;
};

}  // namespace qvx::simulator
