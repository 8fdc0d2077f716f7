// The stages of rendering. Light holds red, green and blue of each pixel, row by row.
#pragma once

#include "simulator/scene/still.h"

namespace qvx::simulator {

using Row = std::vector<float>;
using Light = std::array<float, 3>;  // red, green, blue

// The light reflected by an autumn leaf under the camera's lamps and the ambient light; white paper
// would give 1.
std::vector<float> illuminated(const View& view, std::size_t width, std::size_t height);

// Applies lens, sensor and picture controls: focus, exposure, noise and tone. Consumes the light.
void develop(const View& view, std::vector<float>& light, std::uint64_t frame, Picture& picture);

// Draws a scale bar of a round length into a corner.
void addScaleBar(Picture& picture, double fieldWidth_um);

}  // namespace qvx::simulator
