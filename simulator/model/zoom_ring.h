// The hand on the zoom ring: a magnification as a function of time.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qvx::simulator {

// Between two magnifications and back, evenly; a sweep of 0 ms stands at the first.
struct ZoomMotion {
  double from, to;
  std::uint32_t sweep_ms;  // one way
};

// "63" stands at x63; "1:200/10s" goes from x1 to x200 in 10 s, and back, for ever. Seconds may
// have decimals; "ms" is understood. Nothing for anything else, and for magnifications below 1.
std::optional<ZoomMotion> zoomMotionFrom(std::string_view text);

double magnificationAt(const ZoomMotion& motion, std::uint64_t now_ms);

}  // namespace qvx::simulator
