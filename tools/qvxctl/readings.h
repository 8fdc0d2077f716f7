// What several commands ask of a camera, each in the file of the command that it belongs to.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "model.h"

namespace qvxctl {

// Nothing when there is nothing to move. Asking brings the lens to its zero position.
std::optional<Range> lensRange(const Model& model);
std::optional<Range> fineLensRange(const Model& model);
std::string textOf(const std::optional<Range>& range);

struct Property {
  std::string_view name;
  int number;
};

std::span<const Property> propertyTable();

struct PropertySetting {
  const Property* property;
  qvx_long value, least, most, step, standard;
};

// Nothing when the camera does not have the property or tells nothing.
std::optional<PropertySetting> settingOf(const Property& property);

struct Size {
  qvx_long width, height;
  bool operator==(const Size&) const = default;
};

std::string textOf(const Size& size);
std::vector<Size> sizesOffered();  // by the Wi-Fi camera

}  // namespace qvxctl
