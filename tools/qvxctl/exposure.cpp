#include <optional>

#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"

namespace qvxctl {

namespace {

constexpr qvx_long maxTarget = 255;  // of all models together

constexpr struct FlickerMode {
  const char *name, *text;
  qvx_long mode;
  Flicker needed;  // of the camera
} flickerModes[] = {
    {"auto", "detected by the camera", QVX_FLICKER_DETECT, Flicker::detected},
    {"60", "60 Hz", QVX_FLICKER_60_HZ, Flicker::chosen},
    {"50", "50 Hz", QVX_FLICKER_50_HZ, Flicker::chosen},
};

void expect(bool possible, const std::string& problem) {
  if (!possible) throw Failure(ExitCode::cameraFailed, problem);
}

// As it is now; for cameras that do not report it, as it was set.
qvx_long exposureAfter(const Model& model, const std::optional<qvx_long>& lines) {
  const ExposureTime time = model.exposure.time;
  expect(time != ExposureTime::none, "exposure: this camera's cannot be reached");
  expect(time != ExposureTime::writeOnly || lines, "exposure: this camera does not report it");
  expect(time != ExposureTime::fixed || !lines, "exposure: this camera's is fixed");
  if (lines) SetExposureValue(model.device, *lines);
  return time == ExposureTime::writeOnly ? *lines : GetExposureValue(model.device);
}

void expose(const Options& options, const std::optional<qvx_long>& lines) {
  const qvx_long now = exposureAfter(openModel(options), lines);
  printResult(options, object({{"exposure_lines", Json::Int(now)}}),
              "Exposure  " + std::to_string(now) + " lines");
}

void set(const Model& model, const CLI::Option& argument) {
  const auto word = argument.as<std::string>();
  if (word == "on" || word == "off") return SetAutoExposure(model.device, word == "on" ? 1 : 0);
  const auto target = argument.as<qvx_long>();
  const Range& targets = model.exposure.target;
  expect(targets.holds(target), "ae: this camera's target is " + std::to_string(targets.min) +
                                    " to " + std::to_string(targets.max));
  SetAETarget(model.device, target);
}

void adjustAutomaticExposure(const Options& options, const CLI::Option& argument) {
  const Model model = openModel(options);
  expect(model.exposure.time != ExposureTime::none, "ae: this camera's cannot be reached");
  if (!argument.empty()) set(model, argument);
  const bool on = GetAutoExposure(model.device) != 0;
  const qvx_long target = GetAETarget(model.device);
  printResult(options, object({{"automatic", on}, {"target", Json::Int(target)}}),
              std::string("Automatic exposure  ") + (on ? "on" : "off") + "\nBrightness target   " +
                  std::to_string(target));
}

void suppressFlicker(const Options& options, const FlickerMode& chosen) {
  const Model model = openModel(options);
  expect(model.exposure.flicker >= chosen.needed, "flicker: this camera has no such setting");
  {
    const LibraryOutputAside aside;
    SetFlicker(model.device, chosen.mode);
  }
  printResult(options, object({{"flicker", chosen.name}}),
              std::string("Mains frequency  ") + chosen.text);
}

}  // namespace

void defineExposure(CLI::App& command, const Options& options) {
  static std::optional<qvx_long> lines;
  addNumber(command, "LINES", lines, QVX_EXPOSURE_MIN, QVX_EXPOSURE_MAX);
  command.callback([&options] { expose(options, lines); });
}

void defineAutomaticExposure(CLI::App& command, const Options& options) {
  const CLI::Option* const argument =
      command.add_option("on|off|TARGET")
          ->transform(inDecimal)
          ->check(CLI::IsMember({"on", "off"}) | CLI::Range(qvx_long{0}, maxTarget));
  command.callback([&options, argument] { adjustAutomaticExposure(options, *argument); });
}

void defineFlicker(CLI::App& command, const Options& options) {
  static const FlickerMode* chosen;
  addChoice(command, "auto|60|50", flickerModes, chosen)->required();
  command.callback([&options] { suppressFlicker(options, *chosen); });
}

}  // namespace qvxctl
