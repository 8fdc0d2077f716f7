// The flow of pictures from a camera to the pin that it is connected with.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/model/video_modes.h"

namespace qvx::simulator {

class VideoStream {
 public:
  explicit VideoStream(PipeClient& camera) : camera_(camera) {}
  ~VideoStream() { stop(); }
  VideoStream(const VideoStream&) = delete;
  VideoStream& operator=(const VideoStream&) = delete;

  // Agrees with the other pin on the memory for pictures of a size.
  HRESULT connect(IPin& other, const VideoMode& size);
  void disconnect();

  // The pictures flow only while it runs. A stream that is not connected stays dry.
  void pause();
  void run(REFERENCE_TIME start, IReferenceClock* clock);
  void stop();

 private:
  void setRunning(bool running);
  void flow(const std::stop_token& stopping);
  bool send();
  void stamp(IMediaSample& sample);

  PipeClient& camera_;
  VideoMode size_{};
  ComPtr<IMemInputPin> input_;
  ComPtr<IMemAllocator> allocator_;
  std::jthread worker_;

  std::mutex guard_;  // guards what follows
  std::condition_variable_any changed_;
  bool running_ = false;
  REFERENCE_TIME start_ = 0;
  ComPtr<IReferenceClock> clock_;
};

}  // namespace qvx::simulator
