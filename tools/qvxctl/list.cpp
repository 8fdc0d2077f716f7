#include "commands.h"
#include "output.h"
#include "presentation.h"

namespace qvxctl {

namespace {

// What a listing can say of the Wi-Fi camera: nobody asks the network before it is chosen.
constexpr char wifiNote[] = "reached when chosen";

std::vector<Camera> usbCameras() {
  std::vector<Camera> cameras;
  for (int index = 0; index < firstIndexBeyondUsb; ++index) {
    Camera camera = describeCamera(index);
    if (camera.path.empty()) break;
    cameras.push_back(std::move(camera));
  }
  return cameras;
}

void printJson(const std::vector<Camera>& cameras) {
  std::vector<std::string> entries;
  for (const Camera& camera : cameras) entries.push_back(json::object(membersOf(camera)));
  const std::string wifi =
      json::object({{"index", json::number(QVX_WIFI_CAMERA)}, {"note", json::text(wifiNote)}});
  printLine(json::object({{"cameras", json::array(entries)}, {"wifi", wifi}}));
}

void printText(const std::vector<Camera>& cameras) {
  const std::string indent(4, ' ');
  if (cameras.empty()) printLine("No USB camera is plugged in.");
  for (const Camera& camera : cameras) {
    printLine(std::to_string(camera.index) + "   " + productIdText(camera) + "  " +
              nameText(camera));
    printLine(indent + camera.path);
  }
  printLine(std::to_string(QVX_WIFI_CAMERA) + "  Wi-Fi camera, " + wifiNote);
}

}  // namespace

void listCameras(const Options& options) {
  const std::vector<Camera> cameras = usbCameras();
  if (options.json) return printJson(cameras);
  printText(cameras);
}

}  // namespace qvxctl
