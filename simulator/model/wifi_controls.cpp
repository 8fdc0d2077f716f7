#include "simulator/model/wifi_controls.h"

#include <cstdio>

namespace qvx::simulator {

namespace {

// In the order of the document, with the numbers that Linux gives to video controls.
constexpr WifiControl wifiControls[] = {
    {0x980900, "Brightness", pictureControl(0)}, {0x980901, "Contrast", pictureControl(1)},
    {0x980902, "Saturation", pictureControl(3)}, {0x980903, "Hue", pictureControl(2)},
    {0x980910, "Gamma", pictureControl(5)},      {0x98091B, "Sharpness", pictureControl(4)},
};

std::string entry(const WifiControl& described, const PictureControls& controls) {
  const PictureControl& control = *described.control;
  char text[256];
  std::snprintf(text, sizeof text,
                R"({"name": "%s", "id": "%d", "type": "1", "min": "%d", "max": "%d", )"
                R"("step": "%d", "default": "%d", "value": "%d", "dest": "0", "flags": "0", )"
                R"("group": "1"})",
                described.name, described.id, control.least, control.most, control.step,
                control.standard, controls.get(control).value);
  return text;
}

}  // namespace

std::string controlDocument(const PictureControls& controls) {
  std::string entries;
  for (const WifiControl& control : wifiControls) {
    entries += (entries.empty() ? "\n" : ",\n") + entry(control, controls);
  }
  return "{\"controls\": [" + entries + "\n]}\n";
}

const WifiControl* wifiControl(std::int32_t id) {
  for (const WifiControl& control : wifiControls) {
    if (control.id == id) return &control;
  }
  return nullptr;
}

}  // namespace qvx::simulator
