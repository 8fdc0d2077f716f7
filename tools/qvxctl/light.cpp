#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"

namespace qvxctl {

namespace {

// What is sent for a light: a value, and the number of a quadrant where there are quadrants.
struct Setting {
  qvx_long quadrant, value;
};

// Up to 16 the value selects segments of the ring; above, there is one value for each light and
// state.
std::string notASwitchValue(const std::string& text) {
  constexpr long step = 8;
  const long value = std::stol(text);
  return value <= QVX_RING_OFF || value % step == 0 ? ""
                                                    : text + " is not 0 to 16, 24, 32, 40 or 48";
}

std::string anyValue(const std::string&) {
  return "";
}

bool hasLights(const Model& model, const Setting& /*setting*/) {
  return model.hasLights();
}

constexpr struct Light {
  const char *name, *text, *summary;
  bool hasQuadrant;
  qvx_long max;                                        // of all models together
  std::string (*wrongValue)(const std::string& text);  // from 0 to max
  bool (*fits)(const Model& model, const Setting& setting);
  void (*set)(int device, const Setting& setting);
} lightTable[] = {
    {"switch", "Light switch", "choose the lit segments: 0 to 16, 24, 32, 40 or 48", false,
     QVX_AIM_OFF, notASwitchValue, hasLights,
     [](int device, const Setting& setting) { SetSEGSwitch(device, setting.value); }},
    {"level", "Ring level", "dim the ring", false, QVX_QUADRANT_LEVEL_FULL, anyValue,
     [](const Model& model, const Setting& setting) {
       return model.hasLights() && setting.value <= model.maxRingLevel();
     },
     [](int device, const Setting& setting) { SetSEGLevel(device, setting.value); }},
    {"quadrant", "Level of quadrant", "dim a quadrant of the ring, 0 for all", true,
     QVX_QUADRANT_LEVEL_FULL, anyValue,
     [](const Model& model, const Setting&) { return model.has(QVX_FEATURE_QUADRANTS); },
     [](int device, const Setting& setting) { SetESEG(device, setting.quadrant, setting.value); }},
    {"axial", "Axial light level", "dim the axial light", false, QVX_LEVEL_FULL, anyValue,
     hasLights, [](int device, const Setting& setting) { SetAXILevel(device, setting.value); }},
    {"aim", "Aiming light level", "dim the aiming light", false, QVX_LEVEL_FULL, anyValue,
     [](const Model& model, const Setting&) { return model.hasAim(); },
     [](int device, const Setting& setting) { SetAimpointLevel(device, setting.value); }},
};

void print(const Options& options, const Light& light, const Setting& setting) {
  Json::Value json = object({{"light", light.name}, {"value", Json::Int(setting.value)}});
  if (light.hasQuadrant) json["quadrant"] = Json::Int(setting.quadrant);
  const std::string which = light.hasQuadrant ? ' ' + std::to_string(setting.quadrant) : "";
  printResult(options, json, light.text + which + " requested: " + std::to_string(setting.value));
}

void run(const Options& options, const Light& light, const Setting& setting) {
  const Model model = openModel(options);
  if (!light.fits(model, setting)) {
    throw Failure(ExitCode::cameraFailed,
                  std::string("light ") + light.name +
                      ": this camera has no such light or level (see qvxctl led)");
  }
  light.set(model.device, setting);
  print(options, light, setting);
}

constexpr struct LedState {
  const char *name, *text;
  int state;
} ledStates[] = {
    {"off", "off", QVX_LED_OFF},
    {"on", "on", QVX_LED_ON},
    {"other", "its other lighting", QVX_LED_OTHER},
};

}  // namespace

void defineLight(CLI::App& command, const Options& options) {
  constexpr qvx_long lastQuadrant = 4;
  static Setting setting;
  command.require_subcommand(1);
  for (const Light& light : lightTable) {
    CLI::App* const part = command.add_subcommand(light.name, light.summary);
    if (light.hasQuadrant) addNumber(*part, "Q", setting.quadrant, 0, lastQuadrant)->required();
    addNumber(*part, "N", setting.value, 0, light.max)->required()->check(light.wrongValue);
    part->callback([&] { run(options, light, setting); });
  }
}

void defineLeds(CLI::App& command, const Options& options) {
  static const LedState* chosen;
  addChoice(command, "off|on|other", ledStates, chosen)->required();
  command.callback([&options] {
    SetLEDState(openCamera(options), chosen->state);
    printResult(options, object({{"led", chosen->name}}),
                std::string("Illumination requested: ") + chosen->text);
  });
}

}  // namespace qvxctl
