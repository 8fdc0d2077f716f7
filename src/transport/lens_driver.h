// The two drivers of the focus lens: the lens controller, which takes an 8-bit position, and the
// voice coil, which takes a direction and a number of steps.
#pragma once

#include <cstdint>

namespace qvx {

enum CoilDirection : std::uint8_t { forward = 1, backward = 2 };

struct CoilMove {
  CoilDirection direction;
  std::int32_t steps;
};

// USB 3. There is a pause for the direction switch before the steps follow.
void sendCoilMoveOverUsb3(const CoilMove& move);
void sendPositionOverUsb3(std::int32_t position);

// Behind a bridge the steps follow after a pause of the caller's choice, and on whichever bus was
// selected last.
constexpr std::uint32_t pauseAfterDirection_ms = 50;
void sendCoilMoveOverBridge(int deviceNumber, const CoilMove& move, std::uint32_t pause_ms);
void sendPositionOverBridge(int deviceNumber, std::int32_t position);

// The command names a register, but of no length: the lens controller has only one, and gets the
// position alone.
void sendPositionOverWifi(std::uint8_t reg, std::int32_t position);

}  // namespace qvx
