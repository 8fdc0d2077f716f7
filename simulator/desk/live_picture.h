// Live pictures of a camera.
#pragma once

#include <httplib.h>

#include "simulator/desk/desk.h"
#include "simulator/scene/still.h"

namespace qvx::simulator {

// Renders what the camera sees now, in any size; the noise differs each time.
Picture pictureOf(PluggedCamera& camera, int width, int height);

// Streams pictures until the client, the camera or the program is gone: in the size selected on the
// camera, limited to maxWidth, and scaled down to minWidth while the machine is too slow.
void sendStream(PluggedCamera& camera, int minWidth, int maxWidth, httplib::Response& response);

}  // namespace qvx::simulator
