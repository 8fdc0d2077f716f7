#include <algorithm>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"
#include "qvx64/api.h"
#include "text.h"

namespace qvxctl {

namespace {

// What a light is sent: the number of its quadrant, where it has some, and a value.
struct Setting {
  qvx_long quadrant, value;
};

constexpr struct Light {
  std::string_view name, text;
  std::size_t numbers;
  void (*set)(int device, const Setting& setting);
} lights[] = {
    {"switch", "Light switch", 1,
     [](int device, const Setting& setting) { SetSEGSwitch(device, setting.value); }},
    {"level", "Ring level", 1,
     [](int device, const Setting& setting) { SetSEGLevel(device, setting.value); }},
    {"quadrant", "Level of quadrant", 2,
     [](int device, const Setting& setting) { SetESEG(device, setting.quadrant, setting.value); }},
    {"axial", "Axial light level", 1,
     [](int device, const Setting& setting) { SetAXILevel(device, setting.value); }},
    {"aim", "Aiming light level", 1,
     [](int device, const Setting& setting) { SetAimpointLevel(device, setting.value); }},
};

const Light& lightIn(const Options& options) {
  const std::string name = options.arguments.empty() ? "" : options.arguments.front();
  const auto* const found = std::ranges::find(lights, name, &Light::name);
  if (found == std::end(lights)) {
    throw Failure(ExitCode::badUsage,
                  "light: " + quoted(name) + " is not switch, level, quadrant, axial or aim");
  }
  const std::size_t expected = found->numbers + 1;
  if (options.arguments.size() < expected) {
    throw Failure(ExitCode::badUsage, "light " + name + ": a number is missing");
  }
  if (options.arguments.size() > expected) {
    throw Failure(ExitCode::badUsage,
                  "light " + name + ": unexpected argument " + quoted(options.arguments[expected]));
  }
  return *found;
}

void print(const Light& light, const Setting& setting, bool asJson) {
  const bool hasQuadrant = light.numbers == 2;
  if (asJson) {
    std::vector<json::Member> members = {{"light", json::text(light.name)}};
    if (hasQuadrant) members.push_back({"quadrant", json::number(setting.quadrant)});
    members.push_back({"value", json::number(setting.value)});
    return printLine(json::object(members));
  }
  const std::string which = hasQuadrant ? ' ' + std::to_string(setting.quadrant) : "";
  // Whether the camera has such a light, the library does not tell.
  printLine(std::string(light.text) + which + " requested: " + std::to_string(setting.value));
}

constexpr struct LedState {
  std::string_view name, text;
  int state;
} ledStates[] = {
    {"off", "off", 0},
    {"on", "on", 1},
    {"other", "its other lighting", 2},
};

const LedState& ledStateIn(const Options& options) {
  const std::string name = options.arguments.empty() ? "" : options.arguments.front();
  const auto* const found = std::ranges::find(ledStates, name, &LedState::name);
  if (found == std::end(ledStates)) {
    throw Failure(ExitCode::badUsage, "led: " + quoted(name) + " is not off, on or other");
  }
  if (options.arguments.size() > 1) {
    throw Failure(ExitCode::badUsage, "led: unexpected argument " + quoted(options.arguments[1]));
  }
  return *found;
}

}  // namespace

void setLight(const Options& options) {
  const Light& light = lightIn(options);
  Setting setting{};
  if (light.numbers == 2) setting.quadrant = wholeNumber("quadrant", options.arguments[1]);
  setting.value = wholeNumber("light value", options.arguments.back());
  light.set(openCamera(options.device.value_or(automaticIndex)), setting);
  print(light, setting, options.json);
}

void setLeds(const Options& options) {
  const LedState& chosen = ledStateIn(options);
  SetLEDState(openCamera(options.device.value_or(automaticIndex)), chosen.state);
  printLine(options.json ? json::object({{"led", json::text(chosen.name)}})
                         : "Illumination requested: " + std::string(chosen.text));
}

}  // namespace qvxctl
