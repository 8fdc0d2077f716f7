#include "cameras.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <string_view>

#include "address.h"
#include "failure.h"
#include "output.h"
#include "text.h"

namespace qvxctl {

namespace {

// The library allocates the string and offers no way to free it: it lives as long as the process.
std::string taken(const wchar_t* text) {
  return text == nullptr ? std::string() : utf8(text);
}

std::optional<int> productIdIn(const std::string& path) {
  constexpr std::string_view marker = "pid_";
  constexpr std::size_t digitCount = 4;
  const std::size_t found = path.find(marker);
  if (found == std::string::npos) return std::nullopt;
  const std::string hexadecimal = path.substr(found + marker.size(), digitCount);
  return static_cast<int>(std::strtol(hexadecimal.c_str(), nullptr, 16));
}

bool initWith(int index) {
  SetVideoDeviceIndex(index);
  return Init() != 0;
}

// Init alone would take a bridge camera, or any other HTTP server, for the Wi-Fi camera.
bool openWifi() {
  return initWith(QVX_WIFI_CAMERA) && answers(QVX_WIFI_CAMERA, false);
}

// A USB 3 camera without other cameras beside it is found by automatic choice only. For product ids
// from 0x9B1 on, Init reports no camera although it has opened it.
bool openUsb(int index) {
  const int listed = std::max(index, 0);
  const std::string path = taken(GetDeviceId(listed));
  if (index != QVX_CHOOSE && path.empty()) return false;
  const bool alone = isUsb3(productIdIn(path)) && listed == 0;
  if (initWith(alone ? QVX_CHOOSE : index)) return true;
  return alone && GetVideoDeviceCount() != 0 && answers(listed, true);
}

std::string whereSought(int index) {
  if (index == QVX_WIFI_CAMERA) return " at " + wifiCameraAddress();
  return index == QVX_CHOOSE ? " on USB; the Wi-Fi camera is --device 90"
                             : " at index " + std::to_string(index);
}

int open(int index) {
  const LibraryOutputAside aside;
  if (index == QVX_WIFI_CAMERA ? openWifi() : openUsb(index)) return GetVideoDeviceIndex();
  throw Failure(ExitCode::cameraFailed, "no camera answers" + whereSought(index));
}

}  // namespace

Camera describeCamera(int index) {
  Camera camera{index, {}, {}, {}};
  // In this order: GetVideoDeviceName leaves the library's paths in the system's order, in which
  // the other functions would look up the wrong camera; GetDeviceId restores the order.
  camera.name = index == QVX_WIFI_CAMERA ? "Wi-Fi camera" : taken(GetVideoDeviceName(index));
  camera.path = taken(GetDeviceId(index));
  camera.productId = productIdIn(camera.path);
  return camera;
}

int openCamera(const Options& options) {
  return open(options.index());
}

Model openModel(const Options& options) {
  return modelOf(openCamera(options));
}

void openWifiCamera(const Options& options) {
  if (options.device.value_or(QVX_WIFI_CAMERA) != QVX_WIFI_CAMERA) {
    throw Failure(ExitCode::badUsage, "this command is for the Wi-Fi camera, --device 90");
  }
  open(QVX_WIFI_CAMERA);
}

bool answers(int index, bool overUsb3) {
  if (index != QVX_WIFI_CAMERA) return GetAETarget(index) != (overUsb3 ? 0xFF : 0);
  // Without an answer the library leaves the variable as it is. It misses an answer that comes in
  // pieces now and then, hence two attempts.
  constexpr qvx_long unset = std::numeric_limits<qvx_long>::min();
  qvx_long brightness = QVX_BRIGHTNESS, min = unset;
  for (int attempts = 0; attempts < 2 && min == unset; ++attempts) {
    GetVideoProcAmpValueRange(&brightness, &min, nullptr, nullptr, nullptr);
  }
  return min != unset;
}

Measurement measure(int index) {
  const double magnification = GetMAG(index);
  return {magnification, magnification > 0 ? FOVx(index, magnification) : 0};
}

}  // namespace qvxctl
