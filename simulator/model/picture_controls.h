// Brightness, contrast and the like of a camera, as its firmware describes and keeps them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qvx::simulator {

struct PictureControl {
  std::int32_t property;  // in DirectShow's numbering
  std::int32_t least, most, step, standard;
  bool hasAutomatic;
};

inline constexpr std::array<PictureControl, 10> pictureControls = {{
    {0, -64, 64, 1, 0, false},        // brightness
    {1, 0, 95, 1, 32, false},         // contrast
    {2, -40, 40, 1, 0, false},        // hue
    {3, 0, 100, 1, 64, false},        // saturation
    {4, 0, 7, 1, 2, false},           // sharpness
    {5, 72, 500, 1, 100, false},      // gamma
    {7, 2800, 6500, 10, 4600, true},  // white balance; there is no 6, colour enable
    {8, 0, 2, 1, 1, false},           // backlight compensation
    {9, 0, 100, 1, 0, false},         // gain
    {13, 0, 2, 1, 1, false},          // power-line frequency: off, 50 Hz, 60 Hz
}};

// Null for a control that the camera does not have.
inline constexpr const PictureControl* pictureControl(std::int32_t property) {
  for (const PictureControl& control : pictureControls) {
    if (control.property == property) return &control;
  }
  return nullptr;
}

// What they stand at.
class PictureControls {
 public:
  struct Value {
    std::int32_t value;
    bool automatic;
  };

  PictureControls() {
    for (std::size_t i = 0; i < values_.size(); ++i) {
      values_[i] = {pictureControls[i].standard, pictureControls[i].hasAutomatic};
    }
  }

  Value get(const PictureControl& control) const { return values_[placeOf(control)]; }

  // False for what the camera cannot be set to.
  bool set(const PictureControl& control, const Value& value) {
    const bool inRange = value.value >= control.least && value.value <= control.most &&
                         (value.value - control.least) % control.step == 0;
    if (!inRange || (value.automatic && !control.hasAutomatic)) return false;
    values_[placeOf(control)] = value;
    return true;
  }

 private:
  static std::size_t placeOf(const PictureControl& control) {
    return static_cast<std::size_t>(&control - pictureControls.data());
  }

  std::array<Value, pictureControls.size()> values_{};
};

}  // namespace qvx::simulator
