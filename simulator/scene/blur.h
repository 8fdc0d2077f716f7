// What a lens out of focus makes of a picture.
#pragma once

#include <cstddef>
#include <vector>

namespace qvx::simulator {

// Spreads each pixel of three numbers over `radius_px` to every side, keeping the sum of the light.
void blur(std::vector<float>& rgb, std::size_t width, std::size_t height, double radius_px);

}  // namespace qvx::simulator
