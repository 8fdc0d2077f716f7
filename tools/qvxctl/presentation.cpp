#include "presentation.h"

#include <cstdio>

namespace qvxctl {

namespace {

template <class... Values>
std::string formatted(const char* pattern, Values... values) {
  char text[64];
  std::snprintf(text, sizeof text, pattern, values...);
  return text;
}

}  // namespace

std::vector<json::Member> membersOf(const Camera& camera) {
  return {{"index", json::number(camera.index)},
          {"name", json::textOrNull(camera.name)},
          {"path", json::textOrNull(camera.path)},
          {"product_id", camera.productId ? json::number(*camera.productId) : json::null}};
}

std::vector<json::Member> membersOf(const Measurement& measurement) {
  if (!measurement.taken())
    return {{"magnification", json::null}, {"field_of_view_um", json::null}};
  return {{"magnification", json::number(measurement.magnification)},
          {"field_of_view_um", json::number(measurement.fieldOfView_um)}};
}

std::string nameText(const Camera& camera) {
  return camera.name.empty() ? "(no name)" : camera.name;
}

std::string productIdText(const Camera& camera) {
  return camera.productId ? formatted("0x%X", static_cast<unsigned>(*camera.productId))
                          : "not told";
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
