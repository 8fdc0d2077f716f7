#include "simulator/model/camera_device.h"

namespace qvx::simulator {

void CameraDevice::advanceTo(std::uint64_t now_ms) {
  // Long enough that a client polling four times a second cannot miss it.
  constexpr std::uint32_t longestPress_ms = 600;
  camera.advanceTo(now_ms);
  if (buttonPeriod_ms_ == 0) return;
  const std::uint64_t presses = now_ms / buttonPeriod_ms_;
  if (presses != presses_) touchButton(true);
  presses_ = presses;
  const std::uint32_t press_ms = std::min(longestPress_ms, buttonPeriod_ms_ / 2);
  if (now_ms % buttonPeriod_ms_ >= press_ms) touchButton(false);
}

void CameraDevice::touchButton(bool touched) {
  camera.gpio().touch(touched);
  chip.touch(touched);
}

}  // namespace qvx::simulator
