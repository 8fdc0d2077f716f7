#include "simulator/model/zoom_ring.h"

#include "simulator/model/text.h"

namespace qvx::simulator {

namespace {

// A decimal number at the start of the text, which loses it. At most six digits: every number of
// this size is exact enough, and none overflows.
std::optional<double> takeNumber(std::string_view& text) {
  constexpr int mostDigits = 6;
  double number = 0, weight = 1;
  int digits = 0;
  bool pointSeen = false;
  for (; !text.empty(); text.remove_prefix(1)) {
    const char character = text.front();
    if (character == '.' && !pointSeen && digits > 0) {
      pointSeen = true;
    } else if (character >= '0' && character <= '9' && digits++ < mostDigits) {
      if (pointSeen) weight /= 10;
      number = pointSeen ? number + (character - '0') * weight : number * 10 + (character - '0');
    } else {
      break;
    }
  }
  if (digits == 0 || digits > mostDigits) return std::nullopt;
  return number;
}

std::optional<double> takeMagnification(std::string_view& text) {
  const std::optional<double> number = takeNumber(text);
  return number && *number >= 1 ? number : std::nullopt;
}

std::optional<double> takeDuration_ms(std::string_view& text) {
  const std::optional<double> number = takeNumber(text);
  if (!number) return std::nullopt;
  if (take(text, "ms")) return number;
  if (take(text, "s")) return *number * 1000;
  return std::nullopt;
}

}  // namespace

std::optional<ZoomMotion> zoomMotionFrom(std::string_view text) {
  const std::optional<double> from = takeMagnification(text);
  if (!from) return std::nullopt;
  if (text.empty()) return ZoomMotion{*from, *from, 0};
  if (!take(text, ":")) return std::nullopt;
  const std::optional<double> to = takeMagnification(text);
  if (!to || !take(text, "/")) return std::nullopt;
  const std::optional<double> sweep_ms = takeDuration_ms(text);
  if (!sweep_ms || *sweep_ms < 1 || !text.empty()) return std::nullopt;
  return ZoomMotion{*from, *to, static_cast<std::uint32_t>(*sweep_ms)};
}

double magnificationAt(const ZoomMotion& motion, std::uint64_t now_ms) {
  if (motion.sweep_ms == 0) return motion.from;
  const std::uint64_t sweeps = now_ms / motion.sweep_ms;
  const double part = static_cast<double>(now_ms % motion.sweep_ms) / motion.sweep_ms;
  const bool returning = sweeps % 2 == 1;
  return motion.from + (motion.to - motion.from) * (returning ? 1 - part : part);
}

}  // namespace qvx::simulator
