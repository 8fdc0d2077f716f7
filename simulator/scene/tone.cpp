#include "simulator/scene/stages.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qvx::simulator {

namespace {

using Light = std::array<float, 3>;  // red, green, blue

// Hue and saturation: they turn and stretch what sets a colour apart from grey.
class Colours {
 public:
  explicit Colours(const View& view)
      : warmth_(static_cast<float>(view.warmth)),
        along_(static_cast<float>(view.saturation * std::cos(view.hue_rad))),
        aside_(static_cast<float>(view.saturation * std::sin(view.hue_rad))) {}

  Light of(const Light& light) const {
    constexpr float ofRed = 0.30F, ofGreen = 0.59F, ofBlue = 0.11F;
    const float warm = light[0] * warmth_, cold = light[2] / warmth_;
    const float grey = ofRed * warm + ofGreen * light[1] + ofBlue * cold;
    const float red = along_ * (warm - grey) + aside_ * (cold - grey);
    const float blue = along_ * (cold - grey) - aside_ * (warm - grey);
    return {grey + red, grey - (ofRed * red + ofBlue * blue) / ofGreen, grey + blue};
  }

 private:
  float warmth_, along_, aside_;
};

// Numbers without any order, the same for the same frame: of mean 0 and deviation 1, nearly.
class Noise {
 public:
  explicit Noise(std::uint64_t frame)
      : state_(static_cast<std::uint32_t>(frame * 0x9E3779B97F4A7C15U >> 32) | 1) {}

  float next() {
    constexpr float mean = 0xFFFF, deviation = 26755;  // of the sum of two numbers of 16 bits
    state_ ^= state_ << 13;
    state_ ^= state_ >> 17;
    state_ ^= state_ << 5;
    return (static_cast<float>((state_ & 0xFFFF) + (state_ >> 16)) - mean) / deviation;
  }

 private:
  std::uint32_t state_;
};

// Brightness, contrast and gamma.
class Curve {
 public:
  explicit Curve(const View& view) {
    constexpr double screenGamma = 2.2;
    for (std::size_t i = 0; i < levels; ++i) {
      const double light = static_cast<double>(i) / (levels - 1);
      const double shown = std::pow(light, 1 / (screenGamma * view.gamma));
      const double adjusted = (shown - 0.5) * view.contrast + 0.5 + view.brightness;
      levels_[i] = static_cast<std::uint8_t>(std::lround(255 * std::clamp(adjusted, 0.0, 1.0)));
    }
  }

  std::uint8_t at(float light) const {
    return levels_[static_cast<std::size_t>(std::clamp(light, 0.0F, 1.0F) * (levels - 1))];
  }

 private:
  static constexpr int levels = 8192;

  std::array<std::uint8_t, levels> levels_;
};

class Exposure {
 public:
  Exposure(const View& view, const std::vector<float>& light, std::uint64_t frame, Picture& picture)
      : view_(view),
        light_(light),
        picture_(picture),
        colours_(view),
        curve_(view),
        noise_(frame) {}

  void make() {
    for (int y = 0; y < picture_.height; ++y) {
      for (int x = 0; x < picture_.width; ++x) expose(x, y);
    }
  }

 private:
  void expose(int x, int y) {
    constexpr float ofReading = 0.004F, ofLight = 0.012F;
    const auto gain = static_cast<float>(view_.gain);
    Light signal = sharpened(x, y);
    const float exposure = static_cast<float>(view_.exposure) * vignetting(x, y);
    const float noise =
        ofReading * gain + ofLight * std::sqrt(gain * exposure * std::max(signal[1], 0.0F));
    for (float& part : signal) part = part * exposure + noise * noise_.next();
    std::ranges::transform(colours_.of(signal), picture_.at(x, y),
                           [this](float part) { return curve_.at(part); });
  }

  // Away from the mean of the neighbours, or towards it.
  Light sharpened(int x, int y) const {
    const auto strength = static_cast<float>(view_.sharpening);
    const float *const here = at(x, y), *const left = at(x - 1, y), *const right = at(x + 1, y),
                       *const above = at(x, y - 1), *const below = at(x, y + 1);
    Light result;
    for (std::size_t i = 0; i < 3; ++i) {
      const float around = (left[i] + right[i] + above[i] + below[i]) / 4;
      result[i] = here[i] + strength * (here[i] - around);
    }
    return result;
  }

  const float* at(int x, int y) const {
    x = std::clamp(x, 0, picture_.width - 1);
    y = std::clamp(y, 0, picture_.height - 1);
    return &light_[picture_.placeOf(x, y)];
  }

  // The lens gives less to the corners.
  float vignetting(int x, int y) const {
    constexpr float lost = 0.5F;  // at the middle of the left and right edge
    const float half = static_cast<float>(picture_.width) / 2;
    const float across = static_cast<float>(x) / half - 1;
    const float down = (static_cast<float>(y) - static_cast<float>(picture_.height) / 2) / half;
    return 1 / (1 + lost * (across * across + down * down));
  }

  const View& view_;
  const std::vector<float>& light_;
  Picture& picture_;
  Colours colours_;
  Curve curve_;
  Noise noise_;
};

}  // namespace

void develop(const View& view, const std::vector<float>& light, std::uint64_t frame,
             Picture& picture) {
  Exposure(view, light, frame, picture).make();
}

}  // namespace qvx::simulator
