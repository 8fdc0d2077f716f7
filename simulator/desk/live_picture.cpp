#include "simulator/desk/live_picture.h"

#include <algorithm>
#include <thread>

namespace qvx::simulator {

using Clock = std::chrono::steady_clock;

Picture pictureOf(PluggedCamera& camera, int width, int height) {
  const View view = camera.with([](CameraDevice& device) { return viewOf(device.camera); });
  const auto moment = static_cast<std::uint64_t>(Clock::now().time_since_epoch().count());
  return render(view, width, height, moment);
}

void sendStream(PluggedCamera& camera, int minWidth, int maxWidth, httplib::Response& response) {
  const auto sendNext = [&camera, minWidth, maxWidth, wanted = maxWidth, due = Clock::now()](
                            std::size_t, httplib::DataSink& sink) mutable {
    constexpr int quality = 80;
    constexpr auto period = std::chrono::milliseconds(100);
    std::this_thread::sleep_until(due);
    const Clock::time_point start = Clock::now();
    due = std::max(due + period, start);
    const VideoMode mode =
        camera.with([](CameraDevice& device) { return device.camera.video.mode(); });
    const int width = std::min<int>(mode.width, wanted);
    const std::string file =
        jpegOf(pictureOf(camera, width, mode.height * width / mode.width), quality);
    const Clock::duration took = Clock::now() - start;
    if (took > period) wanted = std::max(width / 4 * 3, minWidth);
    if (took < period / 2) wanted = std::min(wanted + 32, maxWidth);
    const std::string part =
        "--frame\r\nContent-Type: image/jpeg\r\nContent-Length: " + std::to_string(file.size()) +
        "\r\n\r\n" + file + "\r\n";
    return camera.isPluggedIn() && sink.write(part.data(), part.size());
  };
  response.set_chunked_content_provider("multipart/x-mixed-replace; boundary=frame", sendNext);
}

}  // namespace qvx::simulator
