// What several commands read from a camera; each is defined with the command that it belongs to.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "model.h"

namespace qvxctl {

// Nothing when there is nothing to move. Reading it moves the lens to its zero position.
std::optional<Range> lensRange(const Model& model);
std::optional<Range> fineLensRange(const Model& model);
std::string textOf(const std::optional<Range>& range);

struct Property {
  const char* name;
  int number;
};

std::span<const Property> propertyTable();

struct PropertySetting {
  const Property* property;
  qvx_long value, min, max, step, defaultValue;
};

// Nothing when the camera does not have the property or does not report it.
std::optional<PropertySetting> settingOf(const Property& property);

struct Size {
  qvx_long width, height;
  bool operator==(const Size&) const = default;
};

std::string textOf(const Size& size);
std::vector<Size> sizesOffered();  // by the Wi-Fi camera

}  // namespace qvxctl
