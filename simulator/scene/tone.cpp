#include "simulator/scene/tone.h"

#include <algorithm>
#include <cmath>

namespace qvx::simulator {

namespace {

using Matrix = std::array<std::array<double, 3>, 3>;

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) result[i][j] += a[i][k] * b[k][j];
    }
  }
  return result;
}

// Towards grey below 1, away from it above.
Matrix saturating(double saturation) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      result[i][j] = (1 - saturation) / 3 + (i == j ? saturation : 0);
    }
  }
  return result;
}

// A turn around the axis of greys.
Matrix turning(double angle_rad) {
  const double same = (1 + 2 * std::cos(angle_rad)) / 3;
  const double even = (1 - std::cos(angle_rad)) / 3, odd = std::sin(angle_rad) / std::sqrt(3);
  return {{{same, even - odd, even + odd},
           {even + odd, same, even - odd},
           {even - odd, even + odd, same}}};
}

}  // namespace

Tone::Tone(const View& view)
    : exposure_(view.exposure),
      colours_(product(turning(view.hue_rad), saturating(view.saturation))) {
  constexpr double screenGamma = 2.2;
  for (std::size_t i = 0; i < levels; ++i) {
    const double light = static_cast<double>(i) / (levels - 1);
    const double shown = std::pow(light, 1 / (screenGamma * view.gamma));
    const double adjusted = (shown - 0.5) * view.contrast + 0.5 + view.brightness;
    levels_[i] = static_cast<std::uint8_t>(std::lround(255 * std::clamp(adjusted, 0.0, 1.0)));
  }
}

Pixel Tone::of(const Colour& reflected) const {
  const double light[] = {reflected.red, reflected.green, reflected.blue};
  Pixel pixel{};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& row = colours_[i];
    pixel[i] = level(exposure_ * (row[0] * light[0] + row[1] * light[1] + row[2] * light[2]));
  }
  return pixel;
}

std::uint8_t Tone::level(double light) const {
  return levels_[static_cast<std::size_t>(std::clamp(light, 0.0, 1.0) * (levels - 1))];
}

}  // namespace qvx::simulator
