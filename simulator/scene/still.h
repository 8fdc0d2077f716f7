// What a camera sees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/model/camera.h"
#include "simulator/scene/view.h"

namespace qvx::simulator {

struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;  // line by line from the top, without gaps

  std::size_t placeOf(int x, int y) const { return 3 * static_cast<std::size_t>(y * width + x); }
  std::uint8_t* at(int x, int y) { return &rgb[placeOf(x, y)]; }
};

// Pure: takes no lock and may run on any thread. The number of the frame makes its noise.
Picture render(const View& view, int width, int height, std::uint64_t frame);

inline Picture look(const Camera& camera, int width, int height, std::uint64_t frame) {
  return render(viewOf(camera), width, height, frame);
}

// As a JPEG file; quality from 1 to 100.
std::string jpegOf(const Picture& picture, int quality);

// A file in the size that the camera was told to send.
std::string stillOf(const Camera& camera);

}  // namespace qvx::simulator
