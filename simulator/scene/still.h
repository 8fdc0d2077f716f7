// Rendering of what a camera sees.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "simulator/model/camera.h"

namespace qvx::simulator {

// How a camera sees the object: the parameters of the picture that follow from the state of its
// parts.
struct View {
  double fieldWidth_um;             // of the field of view
  double blur;                      // width of a blurred edge, as a fraction of the picture's width
  std::array<double, 4> quadrants;  // brightness of each, from 0 to about 1
  double axial, aim;
  double exposure;  // 1 is correct with the full ring
  double gain;      // 1 or more; noise grows with it

  // The effect of the picture controls.
  double brightness, contrast, gamma, saturation, hue_rad, sharpening, warmth;
};

// The ambient light.
constexpr double roomLight = 0.12;

View viewOf(const Camera& camera);

// The lens position, in lens units from the zero position, at which the object is in focus.
constexpr double focusAt = 12;

struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgb;  // rows from the top, without padding

  std::size_t placeOf(int x, int y) const { return 3 * static_cast<std::size_t>(y * width + x); }
  std::uint8_t* at(int x, int y) { return &rgb[placeOf(x, y)]; }
};

// Takes no lock and may run on any thread. The frame number seeds the noise.
Picture render(const View& view, int width, int height, std::uint64_t frame);

inline Picture look(const Camera& camera, int width, int height, std::uint64_t frame) {
  return render(viewOf(camera), width, height, frame);
}

// Encodes a JPEG file; quality from 1 to 100.
std::string jpegOf(const Picture& picture, int quality);

// A JPEG file in the size selected on the camera.
std::string stillOf(const Camera& camera);

}  // namespace qvx::simulator
