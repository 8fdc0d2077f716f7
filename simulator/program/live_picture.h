// What a camera sees at this moment.
#pragma once

#include <httplib.h>

#include "simulator/program/desk.h"
#include "simulator/scene/still.h"

namespace qvx::simulator {

// In any size; with noise of its own each time.
Picture pictureOf(PluggedCamera& camera, int width, int height);

// Answers with pictures until the client, the camera or the program is gone: in the size that the
// camera was told to send, but not wider than that, and smaller, within limits, where the machine
// is too slow for them.
void sendStream(PluggedCamera& camera, int minWidth, int maxWidth, httplib::Response& response);

}  // namespace qvx::simulator
