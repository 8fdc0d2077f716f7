// What makes a picture, step by step. Light is red, green and blue of each pixel, line by line.
#pragma once

#include "simulator/scene/still.h"

namespace qvx::simulator {

using Row = std::vector<float>;
using Light = std::array<float, 3>;  // red, green, blue

// What comes from a leaf in autumn under the camera's lights and those of the room: white paper
// gives 1.
std::vector<float> illuminated(const View& view, std::size_t width, std::size_t height);

// What lens, sensor and picture controls make of it: focus, exposure, noise and tone. The light is
// used up.
void develop(const View& view, std::vector<float>& light, std::uint64_t frame, Picture& picture);

// Adds a bar of a round length in a corner, as microscopes do.
void addScaleBar(Picture& picture, double fieldWidth_um);

}  // namespace qvx::simulator
