// Taking apart what a person writes about a camera.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qvx::simulator {

// The whole text as a number within limits, nothing otherwise.
inline std::optional<std::uint32_t> numberFrom(std::string_view text, std::uint32_t least,
                                               std::uint32_t most, int base = 10) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  const bool valid = error == std::errc{} && stop == end && number >= least && number <= most;
  return valid ? std::optional(number) : std::nullopt;
}

// "600ms", "2s".
inline std::optional<std::uint32_t> duration_msFrom(std::string_view text) {
  constexpr std::uint32_t longest_ms = 600'000, perSecond = 1000;
  if (!text.ends_with('s')) return std::nullopt;
  const bool milliseconds = text.ends_with("ms");
  text.remove_suffix(milliseconds ? 2 : 1);
  const auto number = numberFrom(text, 1, milliseconds ? longest_ms : longest_ms / perSecond);
  return number ? std::optional(milliseconds ? *number : *number * perSecond) : std::nullopt;
}

// Cuts the first part off a text whose parts are separated by that character.
inline std::string_view takePart(std::string_view& text, char separator) {
  const std::string_view part = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

// One of the words that an option takes.
template <class Value>
struct Word {
  std::string_view text;
  Value value;
};

template <class Value, std::size_t count>
std::optional<Value> valueOf(std::string_view text, const Word<Value> (&words)[count]) {
  for (const auto& word : words) {
    if (word.text == text) return word.value;
  }
  return std::nullopt;
}

template <class Value, std::size_t count>
std::string_view wordFor(Value value, const Word<Value> (&words)[count]) {
  for (const auto& word : words) {
    if (word.value == value) return word.text;
  }
  return {};
}

}  // namespace qvx::simulator
