// A device on a camera's I2C bus, independent of the transport.
#pragma once

#include <string>
#include <vector>

#include "simulator/model/bytes.h"

namespace qvx::simulator {

// Mistakes of a client, one line each: registers that do not exist, wrong lengths, writes to input
// pins. The camera continues; a test fails at its end.
using Violations = std::vector<std::string>;

// Records a violation and returns false, the device's answer.
inline bool violate(Violations& violations, std::string what) {
  violations.push_back(std::move(what));
  return false;
}

class I2cDevice {
 public:
  // Both return whether the device acknowledged the sub-address and every byte.
  virtual bool write(Bytes subAddress, Bytes data) = 0;
  virtual bool read(Bytes subAddress, Room data) = 0;

 protected:
  ~I2cDevice() = default;
};

}  // namespace qvx::simulator
