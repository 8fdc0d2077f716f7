// The sizes of picture that a camera sends over Wi-Fi, and which one it sends.
#pragma once

#include <cstdint>
#include <span>

namespace qvx::simulator {

struct VideoMode {
  std::int32_t command;  // the number by which clients choose it
  std::uint16_t width, height;
};

// Every camera has the mode of command 0.
std::span<const VideoMode> videoModesFor(std::uint16_t productId);

class VideoOutput {
 public:
  explicit VideoOutput(std::uint16_t productId) : modes_(videoModesFor(productId)) { choose(0); }

  const VideoMode& mode() const { return *chosen_; }

  // False, and nothing changed, for a command that the camera does not have.
  bool choose(std::int32_t command) {
    for (const VideoMode& mode : modes_) {
      if (mode.command != command) continue;
      chosen_ = &mode;
      return true;
    }
    return false;
  }

 private:
  std::span<const VideoMode> modes_;
  const VideoMode* chosen_ = nullptr;
};

}  // namespace qvx::simulator
