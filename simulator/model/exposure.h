// How the sensors are exposed, in the registers of each kind.
#pragma once

#include <cstdint>

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct SensorExposure {
  std::uint8_t slave;
  double (*lines)(const Sensor& sensor);
  void (*setLines)(Sensor& sensor, std::uint32_t lines);
  double usualLines;  // the right exposure in usual light
  double mostLines;   // that a person would want
  // Bit 0 tells whether exposure is automatic; register 0: the camera's firmware does it.
  std::uint16_t automaticRegister;
  std::uint8_t automatic, manual;
  std::uint16_t targetRegister;
  double usualTarget;  // of automatic exposure: gives the right exposure

  bool isAutomatic(const Camera& camera) const {
    if (automaticRegister == 0) return camera.firmwareExposure().automatic;
    return ((camera.sensor().at(automaticRegister) ^ automatic) & 1) == 0;
  }
  void setAutomatic(Camera& camera, bool on) const {
    if (automaticRegister == 0) camera.firmwareExposure().automatic = on;
    camera.sensor().set(automaticRegister, on ? automatic : manual);
  }
  double target(const Camera& camera) const {
    if (automaticRegister == 0) return camera.firmwareExposure().target;
    return camera.sensor().at(targetRegister);
  }
};

// Null for a product id whose sensor is not known.
const SensorExposure* exposureFor(std::uint16_t productId);

}  // namespace qvx::simulator
