#include <cstdio>

#include "cameras.h"
#include "commands.h"
#include "json.h"
#include "output.h"
#include "qvx64/api.h"

namespace qvxctl {

namespace {

constexpr struct {
  qvx_long bit;
  std::string_view name;
} knownFeatures[] = {
    {QVX_FEATURE_LENS, "focus lens"},
    {QVX_FEATURE_MAGNIFICATION, "magnification"},
    {QVX_FEATURE_QUADRANTS, "dimmable quadrants"},
    {QVX_FEATURE_AIMING_LIGHT, "register bit 0x10"},
    {QVX_FEATURE_LIGHTS_3, "lights of variant 3"},
    {QVX_FEATURE_LIGHTS_2, "lights of variant 2"},
    {QVX_FEATURE_7XXX, "7xxx family or newer"},
    {QVX_FEATURE_LIGHTING_BOARD, "register bit 0x01"},
};

std::string hexadecimal(qvx_long word) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%02lX", static_cast<unsigned long>(word));
  return text;
}

void printJson(qvx_long word) {
  std::vector<std::string> names;
  for (const auto& feature : knownFeatures) {
    if ((word & feature.bit) != 0) names.push_back(json::text(feature.name));
  }
  printLine(json::object({{"config", json::number(word)}, {"features", json::array(names)}}));
}

void printText(qvx_long word) {
  printLine("Feature word  " + hexadecimal(word));
  for (const auto& feature : knownFeatures) {
    if ((word & feature.bit) == 0) continue;
    printLine("  " + hexadecimal(feature.bit) + "  " + std::string(feature.name));
  }
}

}  // namespace

void showConfig(const Options& options) {
  const qvx_long word = GetConfig(openCamera(options));
  if (options.json) return printJson(word);
  printText(word);
}

}  // namespace qvxctl
