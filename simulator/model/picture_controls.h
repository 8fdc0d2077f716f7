// Brightness, contrast and the like of a camera, as its firmware describes and keeps them.
#pragma once

#include <cstdint>
#include <map>
#include <span>

namespace qvx::simulator {

struct PictureControl {
  std::int32_t property;  // in DirectShow's numbering
  std::int32_t min, max, step, defaultValue;
  bool hasAutomatic;
};

struct PictureRow {
  PictureControl control;
  const char* name;
  std::int32_t wifiId = 0;  // the number that Linux gives to it
};

inline constexpr PictureRow pictureRows[] = {
    {{0, -64, 64, 1, 0, false}, "Brightness", 0x980900},
    {{1, 0, 95, 1, 32, false}, "Contrast", 0x980901},
    {{3, 0, 100, 1, 64, false}, "Saturation", 0x980902},
    {{2, -40, 40, 1, 0, false}, "Hue", 0x980903},
    {{5, 72, 500, 1, 100, false}, "Gamma", 0x980910},
    {{4, 0, 7, 1, 2, false}, "Sharpness", 0x98091B},
    {{7, 2800, 6500, 10, 4600, true}, "White balance"},  // there is no 6, colour enable
    {{8, 0, 2, 1, 1, false}, "Backlight"},
    {{9, 0, 100, 1, 0, false}, "Gain"},
    {{13, 0, 2, 1, 1, false}, "Mains"},  // off, 50 Hz, 60 Hz
};

// Those that can be reached over Wi-Fi, too, in the order in which its document has them.
inline constexpr auto wifiPictureRows = std::span(pictureRows).first(6);

// Null for a control that the camera does not have.
inline constexpr const PictureControl* pictureControl(std::int32_t property) {
  for (const PictureRow& row : pictureRows) {
    if (row.control.property == property) return &row.control;
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
    for (const auto& [control, name, wifiId] : pictureRows) {
      values_[control.property] = {control.defaultValue, control.hasAutomatic};
    }
  }

  Value get(const PictureControl& control) const { return values_.at(control.property); }

  // False for what the camera cannot be set to.
  bool set(const PictureControl& control, const Value& value) {
    const bool inRange = value.value >= control.min && value.value <= control.max &&
                         (value.value - control.min) % control.step == 0;
    if (!inRange || (value.automatic && !control.hasAutomatic)) return false;
    values_.at(control.property) = value;
    return true;
  }

 private:
  std::map<std::int32_t, Value> values_;  // by property
};

}  // namespace qvx::simulator
