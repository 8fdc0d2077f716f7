// Numbers on a command line.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace qvx::wifi_camera {

// The whole text as a number within limits, nothing otherwise.
inline std::optional<std::uint32_t> numberFrom(std::string_view text, std::uint32_t least,
                                               std::uint32_t most, int base = 10) {
  std::uint32_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number, base);
  const bool valid = error == std::errc{} && stop == end && number >= least && number <= most;
  return valid ? std::optional(number) : std::nullopt;
}

}  // namespace qvx::wifi_camera
