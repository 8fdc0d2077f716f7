// Which camera an operation addresses.
#pragma once

#include "state/device_state.h"

namespace qvx {

// Sets `nPid` for the device: from the Wi-Fi camera's list for indexes -1 and 90, else from the
// device path.
inline void selectProductId(int deviceIndex) {
  nPid = isWifiDevice(deviceIndex) ? nCurrPid : productIdOf(deviceIndex);
}

}  // namespace qvx
