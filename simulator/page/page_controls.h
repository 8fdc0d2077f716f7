// What a person may turn on a camera.
#pragma once

#include <json/json.h>

#include <functional>
#include <vector>

#include "simulator/program/desk.h"

namespace qvx::simulator {

struct Control {
  // For the page: group (its part of the page), key, label, value, min, max, step, default; and
  // options, the names of its values from 0.
  Json::Value described;
  std::function<void(double)> set;

  // To the nearest that it takes.
  void turnTo(double wanted) const;
};

// Those that the camera has, as they stand; to be turned before anybody else is at the camera.
std::vector<Control> controlsOf(CameraDevice& device);

}  // namespace qvx::simulator
