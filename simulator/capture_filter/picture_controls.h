// The picture controls of a virtual camera, for all its filter objects.
#pragma once

#include <mutex>

#include "simulator/model/picture_controls.h"

namespace qvx::simulator {

// Any thread may call.
class PictureControlValues {
 public:
  using Value = PictureControls::Value;

  Value get(const PictureControl& control) {
    const std::lock_guard<std::mutex> lock(guard_);
    return controls_.get(control);
  }
  bool set(const PictureControl& control, const Value& value) {
    const std::lock_guard<std::mutex> lock(guard_);
    return controls_.set(control, value);
  }

 private:
  std::mutex guard_;
  PictureControls controls_;
};

}  // namespace qvx::simulator
