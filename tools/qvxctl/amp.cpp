#include <algorithm>
#include <limits>
#include <optional>

#include "cameras.h"
#include "command_line.h"
#include "commands.h"
#include "failure.h"
#include "output.h"
#include "readings.h"

namespace qvxctl {

namespace {

constexpr Property properties[] = {
    {"brightness", QVX_BRIGHTNESS},
    {"contrast", QVX_CONTRAST},
    {"hue", QVX_HUE},
    {"saturation", QVX_SATURATION},
    {"sharpness", QVX_SHARPNESS},
    {"gamma", QVX_GAMMA},
    {"color-enable", QVX_COLOR_ENABLE},
    {"white-balance", QVX_WHITE_BALANCE},
    {"backlight", QVX_BACKLIGHT_COMPENSATION},
    {"gain", QVX_GAIN},
    {"power-line", QVX_POWER_LINE_FREQUENCY},
};

Json::Value jsonOf(const PropertySetting& setting) {
  return object({{"name", setting.property->name},
                 {"value", Json::Int(setting.value)},
                 {"min", Json::Int(setting.min)},
                 {"max", Json::Int(setting.max)},
                 {"step", Json::Int(setting.step)},
                 {"default", Json::Int(setting.defaultValue)}});
}

std::string textOf(const PropertySetting& setting) {
  constexpr std::size_t nameWidth = 15, valueWidth = 6;
  std::string name(setting.property->name), value = std::to_string(setting.value);
  name.resize(std::max(name.size(), nameWidth), ' ');
  value.insert(0, valueWidth - std::min(valueWidth, value.size()), ' ');
  return name + value + "   from " + std::to_string(setting.min) + " to " +
         std::to_string(setting.max) + " in steps of " + std::to_string(setting.step) +
         ", default " + std::to_string(setting.defaultValue);
}

void printAll(const Options& options) {
  Json::Value list(Json::arrayValue);
  std::string text;
  for (const Property& property : properties) {
    const auto setting = settingOf(property);
    if (!setting) continue;
    list.append(jsonOf(*setting));
    text += (text.empty() ? "" : "\n") + textOf(*setting);
  }
  printResult(options, object({{"properties", list}}),
              text.empty() ? "This camera reports no picture properties." : text);
}

// Values that the camera would clip or refuse are not sent.
PropertySetting settingAfter(const Property& property, const std::optional<qvx_long>& value) {
  const std::string what = "amp: this camera's " + std::string(property.name);
  auto setting = settingOf(property);
  if (!setting) throw Failure(ExitCode::cameraFailed, what + " is not there");
  if (!value) return *setting;
  if (!Range{setting->min, setting->max}.holds(*value)) {
    throw Failure(ExitCode::cameraFailed, what + " is " + std::to_string(setting->min) + " to " +
                                              std::to_string(setting->max));
  }
  const LibraryOutputAside aside;
  SetVideoProcAmp(property.number, *value);
  setting->value = GetVideoProcAmp(property.number);
  return *setting;
}

}  // namespace

std::span<const Property> propertyTable() {
  return properties;
}

std::optional<PropertySetting> settingOf(const Property& property) {
  const LibraryOutputAside aside;
  qvx_long number = property.number;
  PropertySetting setting{&property, -1, -1, -1, -1, -1};
  GetVideoProcAmpValueRange(&number, &setting.min, &setting.max, &setting.step,
                            &setting.defaultValue);
  // How the library reports a missing property; the variables have the same values beforehand.
  if (setting.min == -1 && setting.max == -1 && setting.step == -1) return std::nullopt;
  setting.value = GetVideoProcAmp(property.number);
  return setting;
}

void definePicture(CLI::App& command, const Options& options) {
  static const Property* property;
  static std::optional<qvx_long> value;
  addChoice(command, "PROPERTY", properties, property);
  addNumber(command, "VALUE", value, std::numeric_limits<qvx_long>::min(),
            std::numeric_limits<qvx_long>::max());
  command.callback([&options] {
    openCamera(options);
    if (property == nullptr) return printAll(options);
    const PropertySetting setting = settingAfter(*property, value);
    printResult(options, jsonOf(setting), textOf(setting));
  });
}

}  // namespace qvxctl
