#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"

namespace qvxctl {

namespace {

// What a light is sent: the number of its quadrant, where it has some, and a value.
struct Setting {
  qvx_long quadrant, value;
};

bool lights(const Model& model, const Setting& /*setting*/) {
  return model.hasLights();
}

constexpr struct Light {
  std::string_view name, text;
  bool hasQuadrant;
  qvx_long most;  // of all models together
  bool (*fits)(const Model& model, const Setting& setting);
  void (*set)(int device, const Setting& setting);
} lightTable[] = {
    {"switch", "Light switch", false, QVX_AIM_OFF, lights,
     [](int device, const Setting& setting) { SetSEGSwitch(device, setting.value); }},
    {"level", "Ring level", false, QVX_QUADRANT_LEVEL_FULL,
     [](const Model& model, const Setting& setting) {
       return model.hasLights() && setting.value <= model.brightestRing();
     },
     [](int device, const Setting& setting) { SetSEGLevel(device, setting.value); }},
    {"quadrant", "Level of quadrant", true, QVX_QUADRANT_LEVEL_FULL,
     [](const Model& model, const Setting&) { return model.has(QVX_FEATURE_QUADRANTS); },
     [](int device, const Setting& setting) { SetESEG(device, setting.quadrant, setting.value); }},
    {"axial", "Axial light level", false, QVX_LEVEL_FULL, lights,
     [](int device, const Setting& setting) { SetAXILevel(device, setting.value); }},
    {"aim", "Aiming light level", false, QVX_LEVEL_FULL,
     [](const Model& model, const Setting&) { return model.hasAim(); },
     [](int device, const Setting& setting) { SetAimpointLevel(device, setting.value); }},
};

// Up to 16 the segments of the ring, from there on one value for each light and state.
void expectSwitchValue(qvx_long value) {
  constexpr qvx_long step = 8;
  if (value <= QVX_RING_OFF || value % step == 0) return;
  throw Failure(ExitCode::badUsage,
                "light switch: " + std::to_string(value) + " is not 0 to 16, 24, 32, 40 or 48");
}

Setting settingIn(const Options& options, const Light& light, const std::string& what) {
  constexpr qvx_long lastQuadrant = 4;
  const auto& arguments = options.arguments;
  Setting setting{};
  if (light.hasQuadrant) setting.quadrant = numberWithin(what, arguments[1], 0, lastQuadrant);
  setting.value = numberWithin(what, arguments.back(), 0, light.most);
  if (light.name == "switch") expectSwitchValue(setting.value);
  return setting;
}

void print(const Light& light, const Setting& setting, bool asJson) {
  if (asJson) {
    std::vector<json::Member> members = {{"light", json::text(light.name)}};
    if (light.hasQuadrant) members.push_back({"quadrant", json::number(setting.quadrant)});
    members.push_back({"value", json::number(setting.value)});
    return printLine(json::object(members));
  }
  const std::string which = light.hasQuadrant ? ' ' + std::to_string(setting.quadrant) : "";
  printLine(std::string(light.text) + which + " requested: " + std::to_string(setting.value));
}

constexpr struct LedState {
  std::string_view name, text;
  int state;
} ledStates[] = {
    {"off", "off", QVX_LED_OFF},
    {"on", "on", QVX_LED_ON},
    {"other", "its other lighting", QVX_LED_OTHER},
};

}  // namespace

void setLight(const Options& options) {
  const std::string name = options.arguments.empty() ? "" : options.arguments.front();
  const Light& light = rowNamed("light", lightTable, name);
  const std::string what = "light " + name;
  expectArguments(options, what, light.hasQuadrant ? 3 : 2);
  const Setting setting = settingIn(options, light, what);
  const Model model = openModel(options);
  if (!light.fits(model, setting)) {
    throw Failure(ExitCode::cameraFailed,
                  what + ": this camera has no such light or level (see qvxctl led)");
  }
  light.set(model.device, setting);
  print(light, setting, options.json);
}

void setLeds(const Options& options) {
  const std::string name = onlyArgument(options).value_or("");
  const LedState& chosen = rowNamed("led", ledStates, name);
  SetLEDState(openCamera(options), chosen.state);
  printLine(options.json ? json::object({{"led", json::text(chosen.name)}})
                         : "Illumination requested: " + std::string(chosen.text));
}

}  // namespace qvxctl
