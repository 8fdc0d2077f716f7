// The cameras of all simulators on this machine, as listed in its registry.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "simulator/fronts/protocol.h"

namespace qvx::simulator {

using CameraRecords = std::vector<CameraRecord>;

// In the order of plugging in, including those that nobody serves any longer.
CameraRecords listedCameras();
bool addToList(const CameraRecord& camera);
void dropFromList(const CameraRecord& camera);

}  // namespace qvx::simulator
