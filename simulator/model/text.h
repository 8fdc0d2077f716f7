// Text in a fixed place, for what runs without a heap. What does not fit is cut.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qvx::simulator {

template <std::size_t Capacity>
class FixedText {
 public:
  void append(std::string_view text) {
    for (const char character : text) {
      if (length_ < Capacity) characters_[length_++] = character;
    }
  }

  std::string_view view() const { return {characters_.data(), length_}; }
  operator std::string_view() const { return view(); }

 private:
  std::array<char, Capacity> characters_{};
  std::size_t length_ = 0;
};

// Takes the expected start off a text; false, and nothing taken, when it starts otherwise.
inline bool take(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

// "0x" and at least so many upper-case digits.
inline FixedText<10> hex(std::uint32_t value, int digits) {
  FixedText<10> text;
  text.append("0x");
  for (int digit = 7; digit >= 0; --digit) {
    const std::uint32_t rest = value >> (4 * digit);
    if (rest != 0 || digit < digits) text.append({&"0123456789ABCDEF"[rest & 15], 1});
  }
  return text;
}

}  // namespace qvx::simulator
