// The Wi-Fi camera's command grammar: a literal query with three decimal numbers, and the bits that
// two of them carry.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "simulator/model/violations.h"

namespace qvx::simulator {

enum class WifiGroup : std::int32_t {
  picture = 1,
  videoMode = 2,
  gpio = 4,
  i2c = 5,
};

struct WifiCommand {
  std::int32_t id, group, value;
};

// The query from its "?" to its end. Nothing when any character differs.
std::optional<WifiCommand> wifiCommandFrom(std::string_view query);

struct I2cAccess {
  bool isWrite;
  std::uint8_t address;  // in its 8-bit write form
  std::array<std::uint8_t, 2> bytes;
  std::uint8_t length;  // of the sub-address
  std::uint8_t data;    // to write

  std::span<const std::uint8_t> subAddress() const { return {bytes.data(), length}; }
};

struct GpioAccess {
  bool isWrite;
  std::uint8_t port;
  std::uint8_t mask, levels;  // to write
};

// Nothing, and a violation, for what the firmware does not understand.
std::optional<I2cAccess> i2cAccessFrom(const WifiCommand& command, Violations& violations);
std::optional<GpioAccess> gpioAccessFrom(const WifiCommand& command, Violations& violations);

}  // namespace qvx::simulator
