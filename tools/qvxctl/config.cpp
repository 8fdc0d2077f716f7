#include <string>

#include "cameras.h"
#include "commands.h"
#include "output.h"
#include "presentation.h"
#include "qvx64/api.h"

namespace qvxctl {

namespace {

constexpr struct {
  qvx_long bit;
  const char* name;
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

}  // namespace

void showConfig(const Options& options) {
  const qvx_long word = GetConfig(openCamera(options));
  Json::Value names(Json::arrayValue);
  std::string text = "Feature word  " + hexadecimal(word);
  for (const auto& feature : knownFeatures) {
    if ((word & feature.bit) == 0) continue;
    names.append(feature.name);
    text += "\n  " + hexadecimal(feature.bit) + "  " + feature.name;
  }
  printResult(options, object({{"config", Json::Int(word)}, {"features", names}}), text);
}

}  // namespace qvxctl
