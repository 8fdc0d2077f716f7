// The picture sizes that a camera can send, and the one selected.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

#include "simulator/model/product.h"

namespace qvx::simulator {

struct VideoMode {
  std::int32_t command;  // selects it over Wi-Fi
  std::uint16_t width, height;
};

// Every camera has mode 0.
inline std::span<const VideoMode> videoModesFor(std::uint16_t productId) {
  static constexpr VideoMode fiveMegapixels[] = {
      {0, 1280, 960}, {1, 640, 480}, {2, 1600, 1200}, {3, 2048, 1536}, {4, 2592, 1944}};
  static constexpr VideoMode megapixel[] = {{0, 640, 480}, {3, 1280, 1024}};
  static constexpr struct {
    std::uint16_t first, last;  // product ids
    std::span<const VideoMode> modes;
  } cameras[] = {
      {0x870, 0x89F, megapixel},
      {0x910, 0x91F, megapixel},
      {0x920, 0x92F, std::span(fiveMegapixels).first(3)},
      {0x960, 0x99F, fiveMegapixels},
      {0x9C0, 0x9CF, megapixel},
  };
  const auto* const camera = rowFor(productId, cameras);
  return camera == nullptr ? std::span(megapixel).first(1) : camera->modes;
}

class VideoOutput {
 public:
  explicit VideoOutput(std::uint16_t productId) : modes_(videoModesFor(productId)) { choose(0); }

  const VideoMode& mode() const { return *chosen_; }

  // Returns false and changes nothing if the camera lacks that mode.
  bool choose(std::int32_t command) {
    const auto found = std::ranges::find(modes_, command, &VideoMode::command);
    if (found != modes_.end()) chosen_ = &*found;
    return found != modes_.end();
  }

 private:
  std::span<const VideoMode> modes_;
  const VideoMode* chosen_ = nullptr;
};

}  // namespace qvx::simulator
