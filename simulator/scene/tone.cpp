#include "simulator/scene/tone.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace qvx::simulator {

namespace {

using Matrix = std::array<std::array<float, 3>, 3>;

Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) result[i][j] += a[i][k] * b[k][j];
    }
  }
  return result;
}

// Towards grey below 1, away from it above.
Matrix saturating(float saturation) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      result[i][j] = (1 - saturation) / 3 + (i == j ? saturation : 0);
    }
  }
  return result;
}

// A turn around the axis of greys.
Matrix turning(float angle_rad) {
  const float same = (1 + 2 * std::cos(angle_rad)) / 3;
  const float even = (1 - std::cos(angle_rad)) / 3, odd = std::sin(angle_rad) / std::sqrt(3.0F);
  return {{{same, even - odd, even + odd},
           {even + odd, same, even - odd},
           {even - odd, even + odd, same}}};
}

// White as the camera balances it, then the colours as they were set.
Matrix coloursOf(const View& view) {
  const auto warmth = static_cast<float>(view.warmth);
  const Matrix balance = {{{warmth, 0, 0}, {0, 1, 0}, {0, 0, 1 / warmth}}};
  return product(product(turning(static_cast<float>(view.hue_rad)),
                         saturating(static_cast<float>(view.saturation))),
                 balance);
}

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
        colours_(coloursOf(view)),
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
    std::array<float, 3> signal = sharpened(x, y);
    const float exposure = static_cast<float>(view_.exposure) * vignetting(x, y);
    const float noise =
        ofReading * gain + ofLight * std::sqrt(gain * exposure * std::max(signal[1], 0.0F));
    for (float& part : signal) part = part * exposure + noise * noise_.next();
    std::uint8_t* const pixel = picture_.at(x, y);
    for (std::size_t i = 0; i < 3; ++i) {
      const auto& row = colours_[i];
      pixel[i] = curve_.at(row[0] * signal[0] + row[1] * signal[1] + row[2] * signal[2]);
    }
  }

  // Away from the mean of the neighbours, or towards it.
  std::array<float, 3> sharpened(int x, int y) const {
    const auto strength = static_cast<float>(view_.sharpening);
    const float *const here = at(x, y), *const left = at(x - 1, y), *const right = at(x + 1, y),
                       *const above = at(x, y - 1), *const below = at(x, y + 1);
    std::array<float, 3> result;
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
  Matrix colours_;
  Curve curve_;
  Noise noise_;
};

}  // namespace

void develop(const View& view, const std::vector<float>& light, std::uint64_t frame,
             Picture& picture) {
  Exposure(view, light, frame, picture).make();
}

}  // namespace qvx::simulator
