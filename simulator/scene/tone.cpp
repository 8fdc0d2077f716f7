#include "simulator/scene/stages.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qvx::simulator {

namespace {

using Light = std::array<float, 3>;  // red, green, blue

// Hue and saturation: they turn and stretch what sets a colour apart from grey.
struct Colours {
  float warmth, along, aside;

  Light of(const Light& light) const {
    constexpr float ofRed = 0.30F, ofGreen = 0.59F, ofBlue = 0.11F;
    const float warm = light[0] * warmth, cold = light[2] / warmth;
    const float grey = ofRed * warm + ofGreen * light[1] + ofBlue * cold;
    const float red = along * (warm - grey) + aside * (cold - grey);
    const float blue = along * (cold - grey) - aside * (warm - grey);
    return {grey + red, grey - (ofRed * red + ofBlue * blue) / ofGreen, grey + blue};
  }
};

// Brightness, contrast and gamma, from no light to the most.
std::array<std::uint8_t, 8192> curveOf(const View& view) {
  constexpr double screenGamma = 2.2;
  std::array<std::uint8_t, 8192> curve;
  for (std::size_t i = 0; i < curve.size(); ++i) {
    const double light = static_cast<double>(i) / static_cast<double>(curve.size() - 1);
    const double shown = std::pow(light, 1 / (screenGamma * view.gamma));
    const double adjusted = (shown - 0.5) * view.contrast + 0.5 + view.brightness;
    curve[i] = static_cast<std::uint8_t>(std::lround(255 * std::clamp(adjusted, 0.0, 1.0)));
  }
  return curve;
}

// A number of a kind that has no order, from one to the next: of mean 0 and deviation 1, nearly.
float nextNoise(std::uint32_t& state) {
  constexpr float mean = 0xFFFF, deviation = 26755;  // of the sum of two numbers of 16 bits
  state ^= state << 13;
  state ^= state >> 17;
  state ^= state << 5;
  return (static_cast<float>((state & 0xFFFF) + (state >> 16)) - mean) / deviation;
}

// The lens gives less to the corners.
float vignetting(const Picture& picture, int x, int y) {
  constexpr float lost = 0.5F;  // at the middle of the left and right edge
  const float half = static_cast<float>(picture.width) / 2;
  const float across = static_cast<float>(x) / half - 1;
  const float down = (static_cast<float>(y) - static_cast<float>(picture.height) / 2) / half;
  return 1 / (1 + lost * (across * across + down * down));
}

}  // namespace

void develop(const View& view, const std::vector<float>& light, std::uint64_t frame,
             Picture& picture) {
  constexpr float ofReading = 0.004F, ofLight = 0.012F;
  const auto gain = static_cast<float>(view.gain), strength = static_cast<float>(view.sharpening);
  const Colours colours{static_cast<float>(view.warmth),
                        static_cast<float>(view.saturation * std::cos(view.hue_rad)),
                        static_cast<float>(view.saturation * std::sin(view.hue_rad))};
  const auto curve = curveOf(view);
  constexpr float steps = curve.size() - 1;
  auto state = static_cast<std::uint32_t>(frame * 0x9E3779B97F4A7C15U >> 32) | 1;
  const auto at = [&](int x, int y) {
    return &light[picture.placeOf(std::clamp(x, 0, picture.width - 1),
                                  std::clamp(y, 0, picture.height - 1))];
  };
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      // Away from the mean of the neighbours, or towards it.
      const float *const here = at(x, y), *const left = at(x - 1, y), *const right = at(x + 1, y),
                         *const above = at(x, y - 1), *const below = at(x, y + 1);
      Light signal;
      for (std::size_t i = 0; i < signal.size(); ++i) {
        const float around = (left[i] + right[i] + above[i] + below[i]) / 4;
        signal[i] = here[i] + strength * (here[i] - around);
      }
      const float exposure = static_cast<float>(view.exposure) * vignetting(picture, x, y);
      const float noise =
          ofReading * gain + ofLight * std::sqrt(gain * exposure * std::max(signal[1], 0.0F));
      for (float& part : signal) part = part * exposure + noise * nextNoise(state);
      std::ranges::transform(colours.of(signal), picture.at(x, y), [&curve](float part) {
        return curve[static_cast<std::size_t>(std::clamp(part, 0.0F, 1.0F) * steps)];
      });
    }
  }
}

}  // namespace qvx::simulator
