// Brightness, contrast and other picture controls, as the firmware describes and stores them.
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
  std::int32_t wifiId = 0;  // the control's number in Linux (V4L2)
};

inline constexpr PictureRow pictureRows[] = {
    {{0, -64, 64, 1, 0, false}, "Brightness", 0x980900},
    {{1, 0, 95, 1, 32, false}, "Contrast", 0x980901},
    {{3, 0, 100, 1, 64, false}, "Saturation", 0x980902},
    {{2, -40, 40, 1, 0, false}, "Hue", 0x980903},
    {{5, 72, 500, 1, 100, false}, "Gamma", 0x980910},
    {{4, 0, 7, 1, 2, false}, "Sharpness", 0x98091B},
    {{7, 2800, 6500, 10, 4600, true}, "White balance"},  // 6, colour enable, is missing
    {{8, 0, 2, 1, 1, false}, "Backlight"},
    {{9, 0, 100, 1, 0, false}, "Gain"},
    {{13, 0, 2, 1, 1, false}, "Mains"},  // off, 50 Hz, 60 Hz
};

// The controls that are also available over Wi-Fi, in the order of its document.
inline constexpr auto wifiPictureRows = std::span(pictureRows).first(6);

// Null for a control that the camera lacks.
inline constexpr const PictureControl* pictureControl(std::int32_t property) {
  for (const PictureRow& row : pictureRows) {
    if (row.control.property == property) return &row.control;
  }
  return nullptr;
}

// The current values.
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

  // Returns false for a value that the camera does not accept.
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
