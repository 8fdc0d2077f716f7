// The bytes of numbers, as cameras take them.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace qvx {

template <class Integer>
constexpr std::uint8_t lowByte(Integer number) {
  return static_cast<std::uint8_t>(number);
}

// Bits 8 to 15.
template <class Integer>
constexpr std::uint8_t highByte(Integer number) {
  return static_cast<std::uint8_t>(number >> 8);
}

// A sensor's register address, as it goes over the bus.
constexpr std::array<std::uint8_t, 2> highByteFirst(std::uint32_t number) {
  return {highByte(number), lowByte(number)};
}

// Lowest byte first.
constexpr std::array<std::uint8_t, 4> bytesOf(std::uint32_t value) {
  return {lowByte(value), highByte(value), lowByte(value >> 16), highByte(value >> 16)};
}
constexpr std::uint32_t valueOf(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | bytes[i];
  return value;
}

}  // namespace qvx
