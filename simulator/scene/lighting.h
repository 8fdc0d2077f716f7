// The specimen under the camera's lights and those of the room.
#pragma once

#include <cstddef>
#include <vector>

#include "simulator/scene/view.h"

namespace qvx::simulator {

// The light that comes from each pixel, as red, green and blue, where white paper gives 1.
std::vector<float> illuminated(const View& view, std::size_t width, std::size_t height);

}  // namespace qvx::simulator
