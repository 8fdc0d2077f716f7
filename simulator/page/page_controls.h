// What a person may turn on a camera.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <vector>

#include "simulator/program/desk.h"

namespace qvx::simulator {

struct Control {
  const char* group;  // the part of the page that it belongs to
  std::string key, label;
  double value, least, most, step, standard;
  std::function<void(double)> set;
  std::span<const char* const> options = {};  // the names of its values, from 0

  // To the nearest that it takes.
  void turnTo(double wanted) const;
};

// Those that the camera has, as they stand; to be turned before anybody else is at the camera.
std::vector<Control> controlsOf(CameraDevice& device);

}  // namespace qvx::simulator
