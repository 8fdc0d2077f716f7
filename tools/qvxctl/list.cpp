#include <vector>

#include "commands.h"
#include "output.h"
#include "presentation.h"

namespace qvxctl {

namespace {

// All that a list can say about the Wi-Fi camera: the network is not searched before it is chosen.
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

Json::Value jsonOf(const std::vector<Camera>& cameras) {
  Json::Value list(Json::arrayValue);
  for (const Camera& camera : cameras) list.append(jsonOf(camera));
  return object(
      {{"cameras", list}, {"wifi", object({{"index", QVX_WIFI_CAMERA}, {"note", wifiNote}})}});
}

std::string textOf(const std::vector<Camera>& cameras) {
  std::string text = cameras.empty() ? "No USB camera is plugged in.\n" : "";
  for (const Camera& camera : cameras) {
    text += std::to_string(camera.index) + "   " + productIdText(camera) + "  " + nameText(camera) +
            "\n    " + camera.path + '\n';
  }
  return text + std::to_string(QVX_WIFI_CAMERA) + "  Wi-Fi camera, " + wifiNote;
}

}  // namespace

void listCameras(const Options& options) {
  const std::vector<Camera> cameras = usbCameras();
  printResult(options, jsonOf(cameras), textOf(cameras));
}

}  // namespace qvxctl
