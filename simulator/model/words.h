// Parsing of the texts with which people describe cameras.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace qvx::simulator {

// Parses the whole text as a number from min to max; nothing if it is not one.
inline std::optional<std::uint32_t> numberFrom(std::string_view text, std::uint32_t min,
                                               std::uint32_t max, int base = 10) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  const bool valid = error == std::errc{} && stop == end && number >= min && number <= max;
  return valid ? std::optional(number) : std::nullopt;
}

// The same for a decimal number without sign or exponent.
inline std::optional<double> decimalFrom(std::string_view text, double min, double max) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, std::chars_format::fixed);
  const bool valid =
      error == std::errc{} && stop == end && text.front() != '.' && number >= min && number <= max;
  return valid ? std::optional(number) : std::nullopt;
}

// "600ms", "2.5s".
inline std::optional<std::uint32_t> duration_msFrom(std::string_view text) {
  constexpr double longest_ms = 1e9;
  if (!text.ends_with('s')) return std::nullopt;
  const bool milliseconds = text.ends_with("ms");
  const double unit_ms = milliseconds ? 1 : 1000;
  text.remove_suffix(milliseconds ? 2 : 1);
  const auto number = decimalFrom(text, 1 / unit_ms, longest_ms / unit_ms);
  return number ? std::optional(static_cast<std::uint32_t>(*number * unit_ms)) : std::nullopt;
}

// Removes the expected start from a text; returns false and changes nothing if the text starts
// differently.
inline bool take(std::string_view& text, std::string_view expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(expected.size());
  return true;
}

// Removes and returns the first part of a text whose parts are separated by that character.
inline std::string_view takePart(std::string_view& text, char separator) {
  const std::string_view part = text.substr(0, text.find(separator));
  text.remove_prefix(std::min(part.size() + 1, text.size()));
  return part;
}

// A line of help text: the syntax and its meaning.
inline std::string helpLine(std::string_view form, std::string_view meaning) {
  constexpr std::size_t width = 16;
  std::string line = "  " + std::string(form);
  line.resize(std::max(line.size() + 1, 2 + width), ' ');
  return line.append(meaning) + '\n';
}

}  // namespace qvx::simulator
