// A simulated Wi-Fi camera on a TCP port.
#pragma once

#include "simulator/desk/desk.h"
#include "simulator/program/http_port.h"

namespace qvx::simulator {

// Makes a port that has not started yet answer as the camera. Its page shows all cameras of the
// desk.
void serveWifiCamera(HttpPort& port, PluggedCamera& camera, Desk& desk);

}  // namespace qvx::simulator
