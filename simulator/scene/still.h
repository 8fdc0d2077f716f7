// What a camera sees, as a JPEG file.
#pragma once

#include <string>

#include "simulator/model/camera.h"

namespace qvx::simulator {

std::string stillOf(Camera& camera);

}  // namespace qvx::simulator
