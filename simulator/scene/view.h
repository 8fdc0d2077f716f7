// How a camera looks at the object beneath it: what the state of its parts makes of a picture.
#pragma once

#include <array>
#include <cstdint>

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct View {
  double fieldWidth_um;             // of the object, across the picture
  double blur;                      // how far an edge spreads, in parts of the picture's width
  std::array<double, 4> quadrants;  // the light of each, from 0 to about 1
  double axial, aim;
  double exposure;  // 1 is right in the light of the whole ring
  double gain;      // 1 is the least; noise grows with it

  // The picture controls, as what they do.
  double brightness, contrast, gamma, saturation, hue_rad, sharpening, warmth;
};

// What there is without any lamp.
constexpr double roomLight = 0.12;

View viewOf(const Camera& camera);

// Where the lens must stand, in units from its zero position, to show the object sharply.
constexpr double focusAt = 12;

}  // namespace qvx::simulator
