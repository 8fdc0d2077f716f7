// The motion of the zoom ring: magnification as a function of time.
#pragma once

#include "simulator/model/words.h"

namespace qvx::simulator {

// Moves between two magnifications and back at constant speed; with a sweep of 0 ms it rests at the
// first.
struct ZoomMotion {
  double from, to;
  std::uint32_t sweep_ms;  // one way
};

// "63" rests at x63; "1:200/10s" moves from x1 to x200 in 10 s and back, forever. Seconds may have
// decimals; "ms" is accepted. Returns nothing for any other text or a magnification below 1.
inline std::optional<ZoomMotion> zoomMotionFrom(std::string_view text) {
  constexpr double maxMagnification = 999'999;
  const bool turns = text.find(':') != std::string_view::npos;
  const auto from = decimalFrom(takePart(text, ':'), 1, maxMagnification);
  if (from && !turns) return ZoomMotion{*from, *from, 0};
  const auto to = decimalFrom(takePart(text, '/'), 1, maxMagnification);
  const auto sweep_ms = duration_msFrom(text);
  if (!from || !to || !sweep_ms) return std::nullopt;
  return ZoomMotion{*from, *to, *sweep_ms};
}

inline double magnificationAt(const ZoomMotion& motion, std::uint64_t now_ms) {
  if (motion.sweep_ms == 0) return motion.from;
  const std::uint64_t sweeps = now_ms / motion.sweep_ms;
  const double part = static_cast<double>(now_ms % motion.sweep_ms) / motion.sweep_ms;
  const bool returning = sweeps % 2 == 1;
  return motion.from + (motion.to - motion.from) * (returning ? 1 - part : part);
}

}  // namespace qvx::simulator
