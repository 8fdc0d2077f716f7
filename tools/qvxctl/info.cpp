#include "commands.h"
#include "output.h"
#include "presentation.h"

namespace qvxctl {

namespace {

std::string textOf(const Camera& camera, const Measurement& measurement) {
  return "Index          " + std::to_string(camera.index) + "\nName           " + nameText(camera) +
         "\nPath           " + (camera.path.empty() ? "none" : camera.path) + "\nProduct id     " +
         productIdText(camera) + "\nMagnification  " + magnificationText(measurement) +
         "\nField of view  " + fieldOfViewText(measurement);
}

}  // namespace

void showInfo(const Options& options) {
  const int index = openCamera(options);
  const Camera camera = describeCamera(index);
  const Measurement measurement = measure(index);
  Json::Value json = jsonOf(camera);
  addTo(json, measurement);
  printResult(options, json, textOf(camera, measurement));
}

}  // namespace qvxctl
