// What makes a picture, step by step. Light is red, green and blue of each pixel, line by line.
#pragma once

#include "simulator/scene/still.h"

namespace qvx::simulator {

using Row = std::vector<float>;

// What comes from a leaf in autumn under the camera's lights and those of the room: white paper
// gives 1.
std::vector<float> illuminated(const View& view, std::size_t width, std::size_t height);

// What a lens out of focus makes of it: each pixel spreads over `radius_px` to every side.
void blur(std::vector<float>& light, std::size_t width, std::size_t height, double radius_px);

// What the sensor and the picture controls make of it: exposure, noise and tone.
void develop(const View& view, const std::vector<float>& light, std::uint64_t frame,
             Picture& picture);

// Adds a bar of a round length in a corner, as microscopes do.
void addScaleBar(Picture& picture, double fieldWidth_um);

}  // namespace qvx::simulator
