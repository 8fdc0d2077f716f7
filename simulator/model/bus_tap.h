// A tap on a camera's bus: says in words what passes, and can lose the writes.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>

#include "simulator/model/i2c_device.h"

namespace qvx::simulator {

struct BusTap {
  std::function<void(std::string)> tell;
  bool losesWrites = false;  // they are acknowledged all the same
};

// "read  controller 0x80 -> 0x56  feature register"
std::string inWords(bool isWrite, std::uint8_t address, std::span<const std::uint8_t> subAddress,
                    std::span<const std::uint8_t> data, bool acknowledged);

// A device as it is seen through the tap.
class TappedDevice final : public I2cDevice {
 public:
  TappedDevice(std::uint8_t address, I2cDevice& device, const BusTap& tap)
      : address_(address), device_(device), tap_(tap) {}

  std::uint8_t address() const { return address_; }

  bool write(std::span<const std::uint8_t> subAddress,
             std::span<const std::uint8_t> data) override {
    const bool done = tap_.losesWrites || device_.write(subAddress, data);
    if (tap_.tell) tap_.tell(inWords(true, address_, subAddress, data, done));
    return done;
  }
  bool read(std::span<const std::uint8_t> subAddress, std::span<std::uint8_t> data) override {
    const bool done = device_.read(subAddress, data);
    if (tap_.tell) tap_.tell(inWords(false, address_, subAddress, data, done));
    return done;
  }

 private:
  std::uint8_t address_;
  I2cDevice& device_;
  const BusTap& tap_;
};

}  // namespace qvx::simulator
