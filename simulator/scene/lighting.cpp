#include "simulator/scene/stages.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "simulator/scene/specimen.h"

namespace qvx::simulator {

namespace {

// Where the quadrants stand, seen from the middle: the first at the upper right, then clockwise.
constexpr float directions[4][2] = {{0.7F, -0.7F}, {0.7F, 0.7F}, {-0.7F, 0.7F}, {-0.7F, -0.7F}};

// How the ring's light depends on the place and on the slope there.
struct RingLight {
  explicit RingLight(const View& view) {
    for (std::size_t i = 0; i < view.quadrants.size(); ++i) {
      const float share = static_cast<float>(view.quadrants[i]) / 4;
      mean += share;
      across += share * directions[i][0];
      down += share * directions[i][1];
    }
  }

  float mean = 0, across = 0, down = 0;
};

class Lighting {
 public:
  Lighting(const View& view, std::size_t width, std::size_t height)
      : view_(view),
        ring_(view),
        width_(width),
        half_(static_cast<float>(width) / 2),
        middleLine_(static_cast<float>(height) / 2),
        pixel_um_(static_cast<float>(view.fieldWidth_um / static_cast<double>(width))) {}

  void fill(std::size_t line, const SpecimenLine& above, const SpecimenLine& here,
            float* rgb) const {
    const float y = (static_cast<float>(line) - middleLine_) / half_;
    for (std::size_t i = 0; i < width_; ++i) {
      const float x = static_cast<float>(i) / half_ - 1;
      const std::size_t left = i == 0 ? 0 : i - 1, right = std::min(i + 1, width_ - 1);
      const float across = (here.height_um[right] - here.height_um[left]) / (2 * pixel_um_);
      const float down = (here.height_um[i] - above.height_um[i]) / pixel_um_;
      const float light = at(x, y, across, down), spot = aim(x * x + y * y);
      for (std::size_t c = 0; c < 3; ++c) rgb[3 * i + c] = here.rgb[3 * i + c] * light;
      rgb[3 * i] += spot;
    }
  }

 private:
  // Near a lit quadrant it is brighter, and slopes that face it are. The axial light comes back
  // from what is level; hollows get less of everything.
  float at(float x, float y, float across, float down) const {
    constexpr float nearer = 0.8F, relief = 2.2F, hollow = 0.25F, least = 0.2F;
    const float steep = std::min(across * across + down * down, 1.0F);
    const float level = ring_.mean + nearer * (x * ring_.across + y * ring_.down);
    const float facing = level - relief * (across * ring_.across + down * ring_.down);
    const float fromRing = std::max(facing, least * level);
    const float axial = static_cast<float>(view_.axial) * (1 - steep);
    return (1 - hollow * steep) * (fromRing + axial + static_cast<float>(roomLight));
  }

  // The aiming point: a red spot, as wide as its beam but never too small to be seen.
  float aim(float distance2) const {
    if (view_.aim == 0) return 0;
    constexpr float beam_um = 500, smallest = 0.015F, brightness = 2;
    const float radius = std::max(beam_um / (half_ * pixel_um_), smallest);
    return brightness * static_cast<float>(view_.aim) * std::exp(-distance2 / (radius * radius));
  }

  const View& view_;
  RingLight ring_;
  std::size_t width_;
  float half_, middleLine_, pixel_um_;
};

}  // namespace

std::vector<float> illuminated(const View& view, std::size_t width, std::size_t height) {
  const double pixel_um = view.fieldWidth_um / static_cast<double>(width);
  const Lighting lighting(view, width, height);
  Specimen specimen(width, pixel_um);
  SpecimenLine above(width), here(width);
  std::vector<float> rgb(3 * width * height);
  const auto y_um = [=](double line) {
    return (line - static_cast<double>(height) / 2) * pixel_um;
  };
  specimen.draw(y_um(-1), above);
  for (std::size_t line = 0; line < height; ++line) {
    specimen.draw(y_um(static_cast<double>(line)), here);
    lighting.fill(line, above, here, &rgb[3 * width * line]);
    std::swap(above, here);
  }
  return rgb;
}

}  // namespace qvx::simulator
