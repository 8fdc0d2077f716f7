#include <algorithm>
#include <optional>

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

int open(const Options& options) {
  return openCamera(options.device.value_or(automaticIndex));
}

// What a command sets, ready before a camera is touched.
struct Change {
  void (*set)(int device, qvx_long value);
  qvx_long value;
};

Change automaticExposureChange(const std::string& argument) {
  if (argument == "on") return {SetAutoExposure, 1};
  if (argument == "off") return {SetAutoExposure, 0};
  return {SetAETarget, wholeNumber("ae", argument)};
}

constexpr struct FlickerMode {
  std::string_view argument, text;
  qvx_long mode;
} flickerModes[] = {
    {"auto", "detected by the camera", 0},
    {"60", "60 Hz", 1},
    {"50", "50 Hz", 2},
};

const FlickerMode& flickerModeNamed(const std::string& argument) {
  const auto* const found = std::ranges::find(flickerModes, argument, &FlickerMode::argument);
  if (found == std::end(flickerModes)) {
    throw Failure(ExitCode::badUsage, "flicker: " + quoted(argument) + " is not auto, 60 or 50");
  }
  return *found;
}

}  // namespace

void exposeCamera(const Options& options) {
  const auto argument = onlyArgument(options);
  const auto lines = argument ? std::optional(wholeNumber("exposure", *argument)) : std::nullopt;
  const int device = open(options);
  if (lines) SetExposureValue(device, *lines);
  const qvx_long now = GetExposureValue(device);
  printLine(options.json ? json::object({{"exposure_lines", json::number(now)}})
                         : "Exposure  " + std::to_string(now) + " lines");
}

void adjustAutomaticExposure(const Options& options) {
  const auto argument = onlyArgument(options);
  const auto change = argument ? std::optional(automaticExposureChange(*argument)) : std::nullopt;
  const int device = open(options);
  if (change) change->set(device, change->value);
  const bool on = GetAutoExposure(device) != 0;
  const qvx_long target = GetAETarget(device);
  if (options.json) {
    return printLine(
        json::object({{"automatic", on ? "true" : "false"}, {"target", json::number(target)}}));
  }
  printLine(std::string("Automatic exposure  ") + (on ? "on" : "off"));
  printLine("Brightness target   " + std::to_string(target));
}

void suppressFlicker(const Options& options) {
  const auto argument = onlyArgument(options);
  if (!argument) throw Failure(ExitCode::badUsage, "flicker: auto, 60 or 50 is missing");
  const FlickerMode& chosen = flickerModeNamed(*argument);
  const int device = open(options);
  {
    const LibraryOutputAside aside;
    SetFlicker(device, chosen.mode);
  }
  printLine(options.json ? json::object({{"flicker", json::text(chosen.argument)}})
                         : "Mains frequency  " + std::string(chosen.text));
}

}  // namespace qvxctl
