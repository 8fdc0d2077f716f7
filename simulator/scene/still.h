// What a camera sees.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/model/camera.h"

namespace qvx::simulator {

// How a camera looks at the object beneath it: what the state of its parts makes of a picture.
struct View {
  double fieldWidth_um;             // of the object, across the picture
  double blur;                      // how far an edge spreads, in parts of the picture's width
  std::array<double, 4> quadrants;  // the light of each, from 0 to about 1
  double axial, aim;
  double exposure;  // 1 is right in the light of the whole ring
  double gain;      // 1 is the least; noise grows with it

  // The picture controls, as what they do.
  double brightness, contrast, gamma, saturation, hue_rad, sharpening, warmth;
};

// What there is without any lamp.
constexpr double roomLight = 0.12;

View viewOf(const Camera& camera);

// Where the lens must stand, in units from its zero position, to show the object sharply.
constexpr double focusAt = 12;

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
