// How a camera looks at the object beneath it: what the state of its parts makes of a picture.
#pragma once

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct View {
  double fieldWidth_um;  // of the object, across the picture
  double exposure;       // 1 is right
  double blur;           // how far an edge spreads to either side, in parts of the picture's width

  // The picture controls, as what they do.
  double brightness, contrast, gamma, saturation, hue_rad;
};

View viewOf(const Camera& camera);

// Where the lens must stand, in units from its zero position, to show the object sharply.
constexpr double focusAt = 12;

}  // namespace qvx::simulator
