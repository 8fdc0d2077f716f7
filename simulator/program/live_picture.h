// What a camera sees, again and again.
#pragma once

#include <httplib.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

#include "simulator/scene/still.h"

namespace qvx::simulator {

class PluggedCamera;

// The pictures of one camera. Any thread may call; who looks at the same time gets the same
// picture.
class LivePicture {
 public:
  static constexpr auto period = std::chrono::milliseconds(100);

  // In the size that the camera was told to send, but not wider than that.
  std::string jpeg(PluggedCamera& camera, int mostWidth);

  // In any size.
  Picture picture(PluggedCamera& camera, int width, int height);

 private:
  std::mutex guard_;
  std::uint64_t frame_ = 0;
  std::chrono::steady_clock::time_point made_{};
  int mostWidth_ = 0;
  std::string jpeg_;
};

// Answers with pictures until the client, the camera or the program is gone. They get smaller,
// within limits, where the machine is too slow for them.
void sendStream(PluggedCamera& camera, int leastWidth, int mostWidth, httplib::Response& response);

}  // namespace qvx::simulator
