// How the sensors are exposed, in the registers of each kind.
#pragma once

#include <cstdint>

#include "simulator/model/sensor.h"

namespace qvx::simulator {

struct SensorExposure {
  std::uint8_t slave;
  double (*lines)(const Sensor& sensor);
  void (*setLines)(Sensor& sensor, std::uint32_t lines);
  double usualLines;  // the right exposure in usual light
  double mostLines;   // that a person would want
  // Bit 0 tells whether exposure is automatic; register 0: it is not the sensor's matter.
  std::uint16_t automaticRegister;
  std::uint8_t automatic, manual;
  std::uint16_t targetRegister;
  double usualTarget;  // of automatic exposure: gives the right exposure

  bool isAutomatic(const Sensor& sensor) const {
    return automaticRegister != 0 && ((sensor.at(automaticRegister) ^ automatic) & 1) == 0;
  }
  void setAutomatic(Sensor& sensor, bool on) const {
    sensor.set(automaticRegister, on ? automatic : manual);
  }
};

// Null for a product id whose sensor is not known.
const SensorExposure* exposureFor(std::uint16_t productId);

}  // namespace qvx::simulator
