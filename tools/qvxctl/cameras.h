// The cameras as the exports tell of them.
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

// Empty name and path where there is no camera. Leaves the library's own table of paths in the
// order of the indexes.
Camera describeCamera(int index);

// Chooses the camera and initialises the library; fails when none answers. Returns the camera's
// index, which is another one than asked for when the choice was automatic.
int openCamera(const Options& options);

// The same, and what the camera has.
Model openModel(const Options& options);

// The same for a command that only the Wi-Fi camera understands; another device is bad usage.
void openWifiCamera(const Options& options);

// Whether an open camera still answers. A USB camera whose automatic exposure aims at 0 seems not
// to, and one without automatic exposure always seems to.
bool answers(int index, bool overUsb3);

struct Measurement {
  double magnification;   // 0 while the camera has not reported one
  double fieldOfView_um;  // meaningless without a magnification
  bool taken() const { return magnification > 0; }
};

Measurement measure(int index);

}  // namespace qvxctl
