// The bytes of numbers, as cameras take them.
#pragma once

#include <array>
#include <cstdint>

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

}  // namespace qvx
