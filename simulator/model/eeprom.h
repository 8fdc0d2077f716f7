// The serial EEPROM on the bridge chip's first I2C bus: two address bytes, the high one first.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "simulator/model/i2c_device.h"

namespace qvx::simulator {

class Eeprom final : public I2cDevice {
 public:
  static constexpr std::uint8_t slave = 0xA0;
  static constexpr std::uint8_t subAddressLength = 2;
  static constexpr std::size_t size = 1024;

  Eeprom() { bytes_.fill(0xFF); }

  bool write(std::span<const std::uint8_t> subAddress,
             std::span<const std::uint8_t> data) override {
    const std::size_t start = startOf(subAddress);
    if (start + data.size() > size) return false;
    std::copy(data.begin(), data.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(start));
    return true;
  }
  bool read(std::span<const std::uint8_t> subAddress, std::span<std::uint8_t> data) override {
    const std::size_t start = startOf(subAddress);
    if (start + data.size() > size) return false;
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(start), data.size(), data.begin());
    return true;
  }

 private:
  static std::size_t startOf(std::span<const std::uint8_t> subAddress) {
    if (subAddress.size() != subAddressLength) return size + 1;
    return static_cast<std::size_t>(subAddress[0] << 8 | subAddress[1]);
  }

  std::array<std::uint8_t, size> bytes_;
};

}  // namespace qvx::simulator
