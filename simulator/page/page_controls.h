// The controls of a camera on its page.
#pragma once

#include <json/json.h>

#include <functional>
#include <vector>

#include "simulator/desk/desk.h"

namespace qvx::simulator {

struct Control {
  // For the page: group (its section of the page), key, label, value, min, max, step, default; for
  // a selection also options, the names of its values from 0.
  Json::Value described;
  std::function<void(double)> set;

  // Sets the nearest allowed value.
  void turnTo(double wanted) const;
};

// The camera's controls with their current values. The caller must hold the camera while it uses
// them.
std::vector<Control> controlsOf(CameraDevice& device);

}  // namespace qvx::simulator
