// The cameras, as far as the exports describe them.
#pragma once

#include <optional>
#include <string>

#include "model.h"
#include "options.h"

namespace qvxctl {

struct Camera {
  int index;
  std::string name, path;
  std::optional<int> productId;  // in the path; the Wi-Fi camera has none
};

// Name and path are empty where there is no camera. Leaves the library's own table of paths in the
// order of the indexes.
Camera describeCamera(int index);

// Selects the camera and initialises the library; fails when none answers. Returns the camera's
// index, which the library chooses for -1.
int openCamera(const Options& options);

// The same; returns what the camera has.
Model openModel(const Options& options);

// The same for a command that only the Wi-Fi camera understands; another device is bad usage.
void openWifiCamera(const Options& options);

// Whether an open camera still answers. A USB camera whose automatic exposure has target 0 looks
// silent, and one without automatic exposure always looks alive.
bool answers(int index, bool overUsb3);

struct Measurement {
  double magnification;   // 0 while the camera has not reported one
  double fieldOfView_um;  // meaningless without a magnification
  bool taken() const { return magnification > 0; }
};

Measurement measure(int index);

}  // namespace qvxctl
