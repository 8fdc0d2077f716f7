#include "commands.h"
#include "output.h"
#include "presentation.h"

namespace qvxctl {

namespace {

void printJson(const Camera& camera, const Measurement& measurement) {
  std::vector<json::Member> members = membersOf(camera);
  for (json::Member& member : membersOf(measurement)) members.push_back(std::move(member));
  printLine(json::object(members));
}

void printText(const Camera& camera, const Measurement& measurement) {
  printLine("Index          " + std::to_string(camera.index));
  printLine("Name           " + nameText(camera));
  printLine("Path           " + (camera.path.empty() ? "none" : camera.path));
  printLine("Product id     " + productIdText(camera));
  printLine("Magnification  " + magnificationText(measurement));
  printLine("Field of view  " + fieldOfViewText(measurement));
}

}  // namespace

void showInfo(const Options& options) {
  const int index = openCamera(options);
  const Camera camera = describeCamera(index);
  const Measurement measurement = measure(index);
  if (options.json) return printJson(camera, measurement);
  printText(camera, measurement);
}

}  // namespace qvxctl
