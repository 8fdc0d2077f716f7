// How a camera looks at the object beneath it: what the state of its parts makes of a picture.
#pragma once

#include "simulator/model/camera.h"

namespace qvx::simulator {

struct View {
  int width_px, height_px;
  double fieldWidth_um;  // of the object, across the picture
  double exposure;       // 1 is right
  double blur_px;        // how far an edge spreads to either side

  // The picture controls, as what they do.
  double brightness, contrast, gamma, saturation, hue_rad;
};

View viewOf(Camera& camera);

// Where the lens must stand, in units from its zero position, to show the object sharply.
constexpr double focusAt = 12;

}  // namespace qvx::simulator
