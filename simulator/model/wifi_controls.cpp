#include "simulator/model/wifi_controls.h"

namespace qvx::simulator {

namespace {

// In the order of the document, with the numbers that Linux gives to video controls.
constexpr WifiControl wifiControls[] = {
    {0x980900, "Brightness", pictureControl(0)}, {0x980901, "Contrast", pictureControl(1)},
    {0x980902, "Saturation", pictureControl(3)}, {0x980903, "Hue", pictureControl(2)},
    {0x980910, "Gamma", pictureControl(5)},      {0x98091B, "Sharpness", pictureControl(4)},
};

std::string member(const char* name, const std::string& value) {
  return std::string("\"") + name + "\": \"" + value + "\"";
}

std::string entry(const WifiControl& described, const PictureControls& controls) {
  const PictureControl& control = *described.control;
  return "{" + member("name", described.name) + ", " + member("id", std::to_string(described.id)) +
         ", " + member("type", "1") + ", " + member("min", std::to_string(control.least)) + ", " +
         member("max", std::to_string(control.most)) + ", " +
         member("step", std::to_string(control.step)) + ", " +
         member("default", std::to_string(control.standard)) + ", " +
         member("value", std::to_string(controls.get(control).value)) + ", " + member("dest", "0") +
         ", " + member("flags", "0") + ", " + member("group", "1") + "}";
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
