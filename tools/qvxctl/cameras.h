// The cameras as the exports tell of them.
#pragma once

#include <optional>
#include <string>

#include "options.h"

namespace qvxctl {

constexpr int firstIndexBeyondUsb = 8;  // USB cameras have the indexes 0 to 7
constexpr int wifiIndex = 90;
constexpr int automaticIndex = -1;

struct Camera {
  int index;
  std::string name, path;
  std::optional<int> productId;  // in the path; the Wi-Fi camera has none
};

// Empty name and path where there is no camera. Leaves the library's own table of paths in the
// order of the indexes.
Camera describeCamera(int index);

// Chooses a camera and initialises the library; fails when that finds no camera. Returns the index
// of the camera, which is another one than asked for when the choice was automatic.
int openCamera(int index);

// The same for a command that only the Wi-Fi camera understands; another device is bad usage.
void openWifiCamera(const Options& options);

struct Measurement {
  double magnification;   // 0 while the camera has not reported one
  double fieldOfView_um;  // meaningless without a magnification
  bool taken() const { return magnification > 0; }
};

Measurement measure(int index);

}  // namespace qvxctl
