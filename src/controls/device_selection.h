// Which camera an operation addresses.
#pragma once

#include "state/device_state.h"

namespace qvx {

// The Wi-Fi camera has two indexes and one number.
inline int deviceNumberOf(int deviceIndex) {
  return isWifiDevice(deviceIndex) ? wifiDeviceIndex : deviceIndex;
}

// The device's product id: from the Wi-Fi camera's list for indexes -1 and 90, else from the device
// path.
inline int productIdFor(int deviceIndex) {
  return isWifiDevice(deviceIndex) ? nCurrPid : productIdOf(deviceIndex);
}

// Makes that the product id of the current camera.
inline void selectProductId(int deviceIndex) {
  nPid = productIdFor(deviceIndex);
}

}  // namespace qvx
