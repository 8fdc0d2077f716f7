// From reflected light to the numbers of a picture: exposure and the picture controls.
#pragma once

#include <array>
#include <cstdint>

#include "simulator/scene/object.h"
#include "simulator/scene/view.h"

namespace qvx::simulator {

using Pixel = std::array<std::uint8_t, 3>;  // red, green, blue

class Tone {
 public:
  explicit Tone(const View& view);

  Pixel of(const Colour& reflected) const;

 private:
  static constexpr int levels = 1024;

  std::uint8_t level(double light) const;

  double exposure_;
  std::array<std::array<double, 3>, 3> colours_;  // saturation and hue, as a matrix
  std::array<std::uint8_t, levels> levels_;       // brightness, contrast and gamma
};

}  // namespace qvx::simulator
