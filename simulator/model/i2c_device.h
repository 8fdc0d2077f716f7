// What stands on a camera's I2C bus. The models know nothing of the transport that reaches them.
#pragma once

#include <string>
#include <vector>

#include "simulator/model/bytes.h"

namespace qvx::simulator {

// What a client did that a real camera's maker would call a mistake, a line each: registers that do
// not exist, wrong lengths, pins that are inputs. The camera goes on; a test fails at its end.
using Violations = std::vector<std::string>;

// Notes one; false, as the device then answers.
inline bool violate(Violations& violations, std::string what) {
  violations.push_back(std::move(what));
  return false;
}

class I2cDevice {
 public:
  // Each returns whether the device acknowledged the sub-address and every byte.
  virtual bool write(Bytes subAddress, Bytes data) = 0;
  virtual bool read(Bytes subAddress, Room data) = 0;

 protected:
  ~I2cDevice() = default;
};

}  // namespace qvx::simulator
