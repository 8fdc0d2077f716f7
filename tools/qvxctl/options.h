// What the options of the command line say.
#pragma once

#include <optional>
#include <string>

#include "qvx64/api.h"

namespace qvxctl {

constexpr int firstIndexBeyondUsb = 8;  // USB cameras have the indexes 0 to 7

struct Options {
  std::optional<int> device;
  std::optional<double> seconds;
  bool wifiCamera = false;  // its address is given
  bool json = false;
  bool withoutSerials = false;
  bool initFirst = false;

  // The camera to open. The address of the Wi-Fi camera selects that camera.
  int index() const { return device.value_or(wifiCamera ? QVX_WIFI_CAMERA : QVX_CHOOSE); }
};

}  // namespace qvxctl
