#include "presentation.h"

#include <cstdio>

#include "output.h"

namespace qvxctl {

namespace {

template <class... Values>
std::string formatted(const char* pattern, Values... values) {
  char text[64];
  std::snprintf(text, sizeof text, pattern, values...);
  return text;
}

}  // namespace

Json::Value jsonOf(const Camera& camera) {
  return object({{"index", camera.index},
                 {"name", orNull(camera.name)},
                 {"path", orNull(camera.path)},
                 {"product_id", camera.productId ? *camera.productId : Json::Value()}});
}

void addTo(Json::Value& object, const Measurement& measurement) {
  const bool taken = measurement.taken();
  object["magnification"] = taken ? measurement.magnification : Json::Value();
  object["field_of_view_um"] = taken ? measurement.fieldOfView_um : Json::Value();
}

std::string hexadecimal(qvx_long word) {
  return formatted("0x%02lX", static_cast<unsigned long>(word));
}

std::string nameText(const Camera& camera) {
  return camera.name.empty() ? "(no name)" : camera.name;
}

std::string productIdText(const Camera& camera) {
  return camera.productId ? formatted("0x%X", static_cast<unsigned>(*camera.productId)) : "unknown";
}

std::string magnificationText(const Measurement& measurement) {
  return measurement.taken() ? formatted("x %.2f", measurement.magnification) : "not reported";
}

std::string fieldOfViewText(const Measurement& measurement) {
  constexpr double umPerMm = 1000;
  const double width_um = measurement.fieldOfView_um;
  if (!measurement.taken()) return "unknown";
  return width_um < umPerMm ? formatted("%.0f µm", width_um)
                            : formatted("%.2f mm", width_um / umPerMm);
}

}  // namespace qvxctl
