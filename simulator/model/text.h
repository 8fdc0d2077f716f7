// Text that the models make and take apart.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace qvx::simulator {

// Takes the expected start off a text; false, and nothing taken, when it starts otherwise.
inline bool take(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

// "0x" and at least so many upper-case digits.
inline std::string hex(std::uint32_t value, int digits) {
  std::string text = "0x";
  for (int digit = 7; digit >= 0; --digit) {
    const std::uint32_t rest = value >> (4 * digit);
    if (rest != 0 || digit < digits) text += "0123456789ABCDEF"[rest & 15];
  }
  return text;
}

// "62 80"
inline std::string hex(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text += ' ';
    text += hex(byte, 2).substr(2);
  }
  return text;
}

}  // namespace qvx::simulator
