// Forms that both of the bridge's decoders know.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace qvx::simulator {

inline bool allZero(std::span<const std::uint8_t> bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

// Two bytes, the low one first.
inline std::uint16_t registerAddress(std::span<const std::uint8_t> bytes) {
  return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
}

// A one-shot I2C request: 0, slave address, speed bit, n, n sub-address bytes, d, and for a write d
// data bytes; the rest is 0.
struct I2cRequest {
  bool wellFormed = false;
  std::uint8_t slave = 0;
  std::uint8_t count = 0;
  std::span<const std::uint8_t> subAddress, data;

  static I2cRequest parse(std::span<const std::uint8_t> bytes, bool write) {
    constexpr std::size_t head = 4;
    I2cRequest request;
    const std::size_t countAt = head + bytes[3];
    if (bytes[0] != 0 || bytes[2] > 1 || countAt >= bytes.size()) return request;
    request.slave = bytes[1];
    request.subAddress = bytes.subspan(head, bytes[3]);
    request.count = bytes[countAt];
    const auto rest = bytes.subspan(countAt + 1);
    const std::size_t dataSize = write ? request.count : 0;
    if (dataSize > rest.size()) return request;
    request.data = rest.first(dataSize);
    request.wellFormed = allZero(rest.subspan(dataSize));
    return request;
  }
};

}  // namespace qvx::simulator
