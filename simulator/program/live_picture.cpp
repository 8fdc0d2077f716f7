#include "simulator/program/live_picture.h"

#include <algorithm>
#include <thread>

#include "simulator/program/desk.h"

namespace qvx::simulator {

using Clock = std::chrono::steady_clock;

std::string LivePicture::jpeg(PluggedCamera& camera, int mostWidth) {
  constexpr int quality = 80;
  const std::lock_guard lock(guard_);
  if (mostWidth == mostWidth_ && Clock::now() < made_ + period) return jpeg_;
  VideoMode mode{};
  const View view = camera.with([&mode](CameraDevice& device) {
    mode = device.camera.video().mode();
    return viewOf(device.camera);
  });
  const int width = std::min<int>(mode.width, mostWidth);
  made_ = Clock::now();
  mostWidth_ = mostWidth;
  jpeg_ = jpegOf(render(view, width, mode.height * width / mode.width, frame_++), quality);
  return jpeg_;
}

Picture LivePicture::picture(PluggedCamera& camera, int width, int height) {
  const View view = camera.with([](CameraDevice& device) { return viewOf(device.camera); });
  std::unique_lock lock(guard_);
  const std::uint64_t frame = frame_++;
  lock.unlock();
  return render(view, width, height, frame);
}

void sendStream(PluggedCamera& camera, int leastWidth, int mostWidth, httplib::Response& response) {
  const auto sendNext = [&camera, leastWidth, mostWidth, width = mostWidth, due = Clock::now()](
                            std::size_t, httplib::DataSink& sink) mutable {
    std::this_thread::sleep_until(due);
    const Clock::time_point start = Clock::now();
    due = std::max(due + LivePicture::period, start);
    const std::string file = camera.live.jpeg(camera, width);
    const Clock::duration took = Clock::now() - start;
    if (took > LivePicture::period) width = std::max(width / 4 * 3, leastWidth);
    if (took < LivePicture::period / 2) width = std::min(width + 32, mostWidth);
    const std::string part =
        "--frame\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(file.size()) +
        "\r\n\r\n" + file + "\r\n";
    return camera.isPluggedIn() && sink.write(part.data(), part.size());
  };
  response.set_chunked_content_provider("multipart/x-mixed-replace; boundary=frame", sendNext);
}

}  // namespace qvx::simulator
