#include "cameras.h"

#include <cstdlib>
#include <string_view>

#include "failure.h"
#include "output.h"
#include "qvx64/api.h"
#include "text.h"

namespace qvxctl {

namespace {

// The library hands out a new string each time and cannot take it back; it goes with the process.
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

std::string whereSought(int index) {
  return index == automaticIndex ? " on USB; the Wi-Fi camera is --device 90"
                                 : " at index " + std::to_string(index);
}

}  // namespace

Camera describeCamera(int index) {
  Camera camera{index, {}, {}, {}};
  // In this order: GetVideoDeviceName leaves the library's paths in the system's order, in which
  // the other functions would look up the wrong camera; GetDeviceId mends that.
  camera.name = index == wifiIndex ? "Wi-Fi camera" : taken(GetVideoDeviceName(index));
  camera.path = taken(GetDeviceId(index));
  camera.productId = productIdIn(camera.path);
  return camera;
}

int openCamera(int index) {
  const LibraryOutputAside aside;
  SetVideoDeviceIndex(index);
  if (Init() == 0) throw Failure(ExitCode::noCamera, "no camera answers" + whereSought(index));
  return GetVideoDeviceIndex();
}

void openWifiCamera(const Options& options) {
  if (options.device.value_or(wifiIndex) != wifiIndex) {
    throw Failure(ExitCode::badUsage, options.command + " is for the Wi-Fi camera, --device 90");
  }
  openCamera(wifiIndex);
}

Measurement measure(int index) {
  const double magnification = GetMAG(index);
  return {magnification, magnification > 0 ? FOVx(index, magnification) : 0};
}

}  // namespace qvxctl
