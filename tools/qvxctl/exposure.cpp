#include <optional>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"

namespace qvxctl {

namespace {

constexpr qvx_long brightest = 255;

constexpr struct FlickerMode {
  std::string_view name, text;
  qvx_long mode;
  Flicker least;
} flickerModes[] = {
    {"auto", "detected by the camera", QVX_FLICKER_DETECT, Flicker::detected},
    {"60", "60 Hz", QVX_FLICKER_60_HZ, Flicker::chosen},
    {"50", "50 Hz", QVX_FLICKER_50_HZ, Flicker::chosen},
};

void expect(bool possible, const std::string& problem) {
  if (!possible) throw Failure(ExitCode::cameraFailed, problem);
}

// As it now is; of cameras that do not tell, as it was set.
qvx_long exposureAfter(const Model& model, const std::optional<qvx_long>& lines) {
  const ExposureTime time = model.exposure.time;
  expect(time != ExposureTime::none, "exposure: this camera's cannot be reached");
  expect(time != ExposureTime::untold || lines, "exposure: this camera does not tell its own");
  expect(time != ExposureTime::fixed || !lines, "exposure: this camera's is fixed");
  if (lines) SetExposureValue(model.device, *lines);
  return time == ExposureTime::untold ? *lines : GetExposureValue(model.device);
}

void change(const Model& model, const std::string& argument, qvx_long target) {
  if (argument == "on" || argument == "off") {
    return SetAutoExposure(model.device, argument == "on" ? 1 : 0);
  }
  const Range& targets = model.exposure.target;
  expect(targets.holds(target), "ae: of this camera the target is " +
                                    std::to_string(targets.lower) + " to " +
                                    std::to_string(targets.upper));
  SetAETarget(model.device, target);
}

}  // namespace

void exposeCamera(const Options& options) {
  const auto argument = onlyArgument(options);
  std::optional<qvx_long> lines;
  if (argument) lines = numberWithin("exposure", *argument, QVX_EXPOSURE_MIN, QVX_EXPOSURE_MAX);
  const qvx_long now = exposureAfter(openModel(options), lines);
  printLine(options.json ? json::object({{"exposure_lines", json::number(now)}})
                         : "Exposure  " + std::to_string(now) + " lines");
}

void adjustAutomaticExposure(const Options& options) {
  const auto argument = onlyArgument(options);
  const bool isTarget = argument && *argument != "on" && *argument != "off";
  const qvx_long wanted = isTarget ? numberWithin("ae", *argument, 0, brightest) : 0;
  const Model model = openModel(options);
  expect(model.exposure.time != ExposureTime::none, "ae: this camera's cannot be reached");
  if (argument) change(model, *argument, wanted);
  const bool on = GetAutoExposure(model.device) != 0;
  const qvx_long target = GetAETarget(model.device);
  if (options.json) {
    return printLine(
        json::object({{"automatic", on ? "true" : "false"}, {"target", json::number(target)}}));
  }
  printLine(std::string("Automatic exposure  ") + (on ? "on" : "off"));
  printLine("Brightness target   " + std::to_string(target));
}

void suppressFlicker(const Options& options) {
  const FlickerMode& chosen = rowNamed("flicker", flickerModes, onlyArgument(options).value_or(""));
  const Model model = openModel(options);
  expect(model.exposure.flicker >= chosen.least, "flicker: this camera has no such setting");
  {
    const LibraryOutputAside aside;
    SetFlicker(model.device, chosen.mode);
  }
  printLine(options.json ? json::object({{"flicker", json::text(chosen.name)}})
                         : "Mains frequency  " + std::string(chosen.text));
}

}  // namespace qvxctl
