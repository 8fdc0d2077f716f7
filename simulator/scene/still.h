// What a camera sees.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "simulator/model/camera.h"
#include "simulator/scene/view.h"

namespace qvx::simulator {

struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;  // line by line from the top, without gaps
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
