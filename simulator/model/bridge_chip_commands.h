// Custom commands of the camera's firmware: segment lighting, the latched touch button, and the
// parameters of automatic exposure. Every command is 32 bytes that the firmware answers with 32.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "simulator/model/violations.h"

namespace qvx::simulator {

constexpr std::size_t bridgeCommandSize = 32;
using BridgeCommandData = std::array<std::uint8_t, bridgeCommandSize>;

class BridgeCommands {
 public:
  explicit BridgeCommands(Violations& violations) : violations_(violations) {}

  // First data byte of the functions that a camera's body offers; parameters start with 0.
  enum Function : std::uint8_t {
    parameters = 0x00,    // bytes 0 to 2: parameter, 3: count (always 1), 4: value
    segmentRing = 0xF2,   // byte 1: 1 switches on; reply byte 2: 1 when on
    segmentPower = 0xF3,  // likewise
    touchButton = 0xF5,   // byte 2: 1 acknowledges; reply byte 2: 1 when pressed since
  };

  // What the camera answers; changes nothing.
  BridgeCommandData read(const BridgeCommandData& request);

  // Does what the flags of the command say. Cleared flags leave everything as it is.
  void write(const BridgeCommandData& request);

  void latchButton() { buttonLatched_ = true; }

  // For tests.
  bool segmentMode() const { return ringOn_ && powerOn_; }
  bool buttonLatched() const { return buttonLatched_; }
  std::span<const std::uint8_t> exposureParameters() const { return parameters_; }

 private:
  bool* flagOf(std::uint8_t function);
  std::uint8_t* parameterOf(const BridgeCommandData& request);

  Violations& violations_;
  bool ringOn_ = false, powerOn_ = false, buttonLatched_ = false;
  // Brightness target, lower and upper bound of automatic exposure.
  std::array<std::uint8_t, 3> parameters_{0x40, 0x30, 0x50};
};

}  // namespace qvx::simulator
