// The cameras of all simulators that run on this machine, as its registry lists them.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

using CameraRecords = std::vector<CameraRecord>;

// In the order in which they were plugged in; also those that nobody serves any longer.
CameraRecords listedCameras();
bool addToList(const CameraRecord& camera);
void dropFromList(const CameraRecord& camera);

}  // namespace qvx::simulator
