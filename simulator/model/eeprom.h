// The serial EEPROM on the bridge chip's first I2C bus, with two-byte big-endian addresses.
#pragma once

#include <array>
#include <cstddef>

#include "simulator/model/i2c_device.h"

namespace qvx::simulator {

class Eeprom final : public I2cDevice {
 public:
  static constexpr std::uint8_t slave = 0xA0;
  static constexpr std::uint8_t subAddressLength = 2;

  Eeprom() { bytes_.fill(0xFF); }

  bool write(Bytes subAddress, Bytes data) override {
    const Room place = placeOf(subAddress, data.size());
    std::copy_n(data.begin(), place.size(), place.begin());
    return place.size() == data.size();
  }
  bool read(Bytes subAddress, Room data) override {
    const Room place = placeOf(subAddress, data.size());
    std::copy(place.begin(), place.end(), data.begin());
    return place.size() == data.size();
  }

 private:
  // Empty if it would go beyond the end.
  Room placeOf(Bytes subAddress, std::size_t count) {
    const std::size_t start = numberIn(subAddress);
    return start + count <= bytes_.size() ? Room(bytes_).subspan(start, count) : Room();
  }

  std::array<std::uint8_t, 1024> bytes_;
};

}  // namespace qvx::simulator
