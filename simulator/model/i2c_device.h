// What stands on a camera's I2C bus. The models know nothing of the transport that reaches them.
#pragma once

#include <cstdint>
#include <span>

namespace qvx::simulator {

class I2cDevice {
 public:
  // Each returns whether the device acknowledged the sub-address and every byte.
  virtual bool write(std::span<const std::uint8_t> subAddress,
                     std::span<const std::uint8_t> data) = 0;
  virtual bool read(std::span<const std::uint8_t> subAddress, std::span<std::uint8_t> data) = 0;

 protected:
  ~I2cDevice() = default;
};

}  // namespace qvx::simulator
