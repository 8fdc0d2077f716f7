// From light to the numbers of a picture: exposure, noise and the picture controls.
#pragma once

#include "simulator/scene/still.h"

namespace qvx::simulator {

// The light as the lens gives it to the sensor: red, green and blue of each pixel of the picture.
void develop(const View& view, const std::vector<float>& light, std::uint64_t frame,
             Picture& picture);

}  // namespace qvx::simulator
