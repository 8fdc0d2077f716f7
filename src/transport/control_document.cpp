#include "transport/control_document.h"

#include <json/reader.h>
#include <json/value.h>

#include <string>
#include <utility>

#include "transport/wifi.h"

namespace qvx {

namespace {

// Numbers and booleans are converted. Empty for a member of anything but an object.
std::string textOf(const Json::Value& object, const char* member) {
  if (!object.isObject()) return {};
  const Json::Value& value = object[member];
  return value.isConvertibleTo(Json::stringValue) ? value.asString() : std::string();
}

std::int32_t numberOf(const Json::Value& object, const char* member) {
  return decimalAt(textOf(object, member).c_str());
}

// jsoncpp throws when a document is nested too deeply.
bool parse(std::string_view document, Json::Value& root) {
  try {
    return Json::Reader().parse(document.data(), document.data() + document.size(), root);
  } catch (const Json::Exception&) {
    return false;
  }
}

}  // namespace

std::optional<PictureControl> controlIn(std::string_view document, std::string_view name) {
  Json::Value root;
  if (!parse(document, root) || !root.isObject()) return std::nullopt;
  const Json::Value& controls = std::as_const(root)["controls"];
  if (!controls.isArray()) return std::nullopt;
  for (const Json::Value& control : controls) {
    if (textOf(control, "name") != name) continue;
    return PictureControl{numberOf(control, "value"),
                          {numberOf(control, "min"), numberOf(control, "max"),
                           numberOf(control, "step"), numberOf(control, "default")}};
  }
  return std::nullopt;
}

}  // namespace qvx
