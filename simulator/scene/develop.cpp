#include "simulator/scene/stages.h"

#include <algorithm>
#include <cmath>

namespace qvx::simulator {

namespace {

// Box blur: replaces each item, which consists of `size` numbers, by the mean of its surroundings;
// the outermost items are repeated beyond the edge. With a running sum the cost does not depend on
// the radius.
void average(const float* from, float* to, std::ptrdiff_t count, std::ptrdiff_t size,
             double radius) {
  const auto whole = static_cast<std::ptrdiff_t>(radius);
  const auto rest = static_cast<float>(radius - static_cast<double>(whole));
  const float weight = 1 / (static_cast<float>(2 * whole + 1) + 2 * rest);
  const auto item = [=](std::ptrdiff_t index) {
    return from + std::clamp<std::ptrdiff_t>(index, 0, count - 1) * size;
  };
  Row sum(size);
  for (std::ptrdiff_t i = -whole; i <= whole; ++i) {
    for (std::ptrdiff_t k = 0; k < size; ++k) sum[k] += item(i)[k];
  }
  for (std::ptrdiff_t i = 0; i < count; ++i, to += size) {
    const float *const before = item(i - whole - 1), *const leaving = item(i - whole),
                       *const after = item(i + whole + 1);
    for (std::ptrdiff_t k = 0; k < size; ++k) {
      to[k] = weight * (sum[k] + rest * (before[k] + after[k]));
      sum[k] += after[k] - leaving[k];
    }
  }
}

// Defocus: spreads each pixel by `radius_px` in all directions.
void blur(std::vector<float>& light, std::size_t width, std::size_t height, double radius_px) {
  constexpr double least_px = 0.05;
  constexpr int times = 2;  // a single pass would show squares
  if (radius_px < least_px) return;
  std::vector<float> between(light.size());
  for (int i = 0; i < times; ++i) {
    for (std::size_t start = 0; start < light.size(); start += 3 * width) {
      average(&light[start], &between[start], width, 3, radius_px / times);
    }
    average(between.data(), light.data(), height, 3 * width, radius_px / times);
  }
}

// Hue and saturation rotate and scale the difference between a colour and grey.
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

// Brightness, contrast and gamma as a table over all levels of light.
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

// Random numbers (xorshift) of triangular distribution with mean 0 and standard deviation 1.
float nextNoise(std::uint32_t& state) {
  constexpr float mean = 0xFFFF, deviation = 26755;  // of the sum of two 16-bit numbers
  state ^= state << 13;
  state ^= state >> 17;
  state ^= state << 5;
  return (static_cast<float>((state & 0xFFFF) + (state >> 16)) - mean) / deviation;
}

// Vignetting: the lens darkens the corners.
float vignetting(const Picture& picture, int x, int y) {
  constexpr float lost = 0.5F;  // at the centre of the left and right edges
  const float half = static_cast<float>(picture.width) / 2;
  const float across = static_cast<float>(x) / half - 1;
  const float down = (static_cast<float>(y) - static_cast<float>(picture.height) / 2) / half;
  return 1 / (1 + lost * (across * across + down * down));
}

}  // namespace

void develop(const View& view, std::vector<float>& light, std::uint64_t frame, Picture& picture) {
  const auto columns = static_cast<std::size_t>(picture.width);
  blur(light, columns, static_cast<std::size_t>(picture.height), view.blur * picture.width);
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
      // Sharpens away from the mean of the neighbours, or smooths towards it.
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
