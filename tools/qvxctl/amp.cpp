#include <algorithm>
#include <optional>

#include "cameras.h"
#include "commands.h"
#include "failure.h"
#include "json.h"
#include "numbers.h"
#include "output.h"
#include "readings.h"
#include "text.h"

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

std::string jsonOf(const PropertySetting& setting) {
  return json::object({{"name", json::text(setting.property->name)},
                       {"value", json::number(setting.value)},
                       {"least", json::number(setting.least)},
                       {"most", json::number(setting.most)},
                       {"step", json::number(setting.step)},
                       {"standard", json::number(setting.standard)}});
}

std::string textOf(const PropertySetting& setting) {
  constexpr std::size_t nameWidth = 15, valueWidth = 6;
  std::string name(setting.property->name), value = std::to_string(setting.value);
  name.resize(std::max(name.size(), nameWidth), ' ');
  value.insert(0, valueWidth - std::min(valueWidth, value.size()), ' ');
  return name + value + "   from " + std::to_string(setting.least) + " to " +
         std::to_string(setting.most) + " in steps of " + std::to_string(setting.step) +
         ", usually " + std::to_string(setting.standard);
}

void printAll(bool asJson) {
  std::vector<std::string> entries;
  for (const Property& property : properties) {
    const auto setting = settingOf(property);
    if (setting) entries.push_back(asJson ? jsonOf(*setting) : textOf(*setting));
  }
  if (asJson) return printLine(json::object({{"properties", json::array(entries)}}));
  if (entries.empty()) printLine("This camera tells of no picture properties.");
  for (const std::string& entry : entries) printLine(entry);
}

// Nothing is set that the camera would cut or refuse.
PropertySetting settingAfter(const Property& property, const std::optional<qvx_long>& value) {
  const std::string what = "amp: this camera's " + std::string(property.name);
  auto setting = settingOf(property);
  if (!setting) throw Failure(ExitCode::cameraFailed, what + " is not there");
  if (!value) return *setting;
  if (!Range{setting->least, setting->most}.holds(*value)) {
    throw Failure(ExitCode::cameraFailed, what + " is " + std::to_string(setting->least) + " to " +
                                              std::to_string(setting->most));
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
  GetVideoProcAmpValueRange(&number, &setting.least, &setting.most, &setting.step,
                            &setting.standard);
  // The library's way to say that there is nothing; the variables were preset to the same.
  if (setting.least == -1 && setting.most == -1 && setting.step == -1) return std::nullopt;
  setting.value = GetVideoProcAmp(property.number);
  return setting;
}

void adjustPicture(const Options& options) {
  const auto& arguments = options.arguments;
  if (arguments.size() > 1) expectArguments(options, "amp", 2);
  const Property* const property =
      arguments.empty() ? nullptr : &rowNamed("amp", properties, arguments[0]);
  std::optional<qvx_long> value;
  if (arguments.size() > 1) value = wholeNumber("amp value", arguments[1]);
  openCamera(options);
  if (property == nullptr) return printAll(options.json);
  const PropertySetting setting = settingAfter(*property, value);
  printLine(options.json ? jsonOf(setting) : textOf(setting));
}

}  // namespace qvxctl
