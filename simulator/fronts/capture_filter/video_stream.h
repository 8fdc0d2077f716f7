// The flow of pictures from a camera to the pin that it is connected with.
#pragma once

#include <memory>
#include <mutex>
#include <thread>

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/virtual_camera.h"
#include "simulator/model/video_modes.h"

namespace qvx::simulator {

class VideoStream {
 public:
  static constexpr REFERENCE_TIME frameTime_100ns = 666'666;

  VideoStream();
  ~VideoStream();
  VideoStream(const VideoStream&) = delete;
  VideoStream& operator=(const VideoStream&) = delete;

  // Agrees with the other pin on the memory for pictures of a size.
  HRESULT connect(IPin& other, const VideoMode& size);
  void disconnect();

  // The pictures flow only while it runs. A stream that is not connected stays dry.
  void pause(const std::shared_ptr<VirtualCamera>& camera);
  void run(REFERENCE_TIME start, IReferenceClock* clock);
  void stop();

 private:
  void flow(VirtualCamera& camera);
  bool send(VirtualCamera& camera);
  void stamp(IMediaSample& sample);
  bool waitFor(HANDLE event, DWORD limit_ms) const;

  VideoMode size_{};
  ComPointer<IMemInputPin> input_;
  ComPointer<IMemAllocator> allocator_;
  const HANDLE running_, stopping_;
  std::thread worker_;

  std::mutex guard_;  // guards what follows
  REFERENCE_TIME start_ = 0;
  ComPointer<IReferenceClock> clock_;
};

}  // namespace qvx::simulator
