// Bytes sent and received by cameras, and their hexadecimal form for people.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

namespace qvx::simulator {

using Bytes = std::span<const std::uint8_t>;
using Room = std::span<std::uint8_t>;  // receives an answer

inline bool allZero(Bytes bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

// Big-endian.
inline std::uint32_t numberIn(Bytes bytes) {
  std::uint32_t number = 0;
  for (const std::uint8_t byte : bytes) number = number << 8 | byte;
  return number;
}

// "0x" and at least that many upper-case digits.
inline std::string hex(std::uint64_t value, int digits) {
  std::string text = "0x";
  for (int digit = 15; digit >= 0; --digit) {
    const std::uint64_t rest = value >> (4 * digit);
    if (rest != 0 || digit < digits) text += "0123456789ABCDEF"[rest & 15];
  }
  return text;
}

// "62 80"
inline std::string hex(Bytes bytes) {
  constexpr char digits[] = "0123456789ABCDEF";
  std::string text(3 * bytes.size(), ' ');
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    text[3 * i] = digits[bytes[i] >> 4];
    text[3 * i + 1] = digits[bytes[i] & 15];
  }
  if (!text.empty()) text.pop_back();
  return text;
}

}  // namespace qvx::simulator
