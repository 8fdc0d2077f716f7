// LED states of the Wi-Fi camera: some on its lighting controller, some on its pins.
#pragma once

#include "controls/led_rows.h"

namespace qvx {

void setWifiLeds(int deviceIndex, int state, const LedCamera& camera);

}  // namespace qvx
