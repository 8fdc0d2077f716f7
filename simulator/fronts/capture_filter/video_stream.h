// The stream of pictures from a camera to the connected input pin.
#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/media_type.h"
#include "simulator/fronts/pipe_client.h"

namespace qvx::simulator {

// Sends pictures only while it is running and connected.
class VideoStream {
 public:
  explicit VideoStream(PipeClient& camera) : camera_(camera) {}
  ~VideoStream() { stop(); }

  // Agrees with the other pin on an allocator for pictures of that size.
  HRESULT connect(IPin& other, const VideoMode& size) {
    const auto bytes = static_cast<long>(yuy2Bytes(size.width, size.height));
    constexpr long buffers = 3;  // a filter downstream may hold one of them
    ALLOCATOR_PROPERTIES wanted{buffers, bytes, 1, 0}, actual{};
    ComPtr<IMemInputPin> input;
    HRESULT status = other.QueryInterface(__uuidof(IMemInputPin), &input);
    if (FAILED(status)) return status;
    const ComPtr<IMemAllocator> allocator = allocatorFor(*input.Get());
    if (allocator == nullptr) return VFW_E_NO_ALLOCATOR;
    status = allocator->SetProperties(&wanted, &actual);
    if (SUCCEEDED(status) && actual.cbBuffer < wanted.cbBuffer) status = VFW_E_BUFFER_OVERFLOW;
    if (SUCCEEDED(status)) status = input->NotifyAllocator(allocator.Get(), FALSE);
    if (FAILED(status)) return status;
    size_ = size;
    input_ = input;
    allocator_ = allocator;
    return S_OK;
  }

  void disconnect() {
    stop();
    input_ = nullptr;
    allocator_ = nullptr;
  }

  void pause() {
    setRunning(false);
    if (input_ == nullptr || worker_.joinable()) return;
    allocator_->Commit();
    worker_ = std::jthread([this](const std::stop_token& stopping) { flow(stopping); });
  }

  void run(REFERENCE_TIME start, const ComPtr<IReferenceClock>& clock) {
    {
      const std::lock_guard lock(guard_);
      clock_ = clock;
      start_ = start;
    }
    setRunning(true);
  }

  // Decommit wakes a worker that waits for a buffer; no lock is held meanwhile.
  void stop() {
    setRunning(false);
    if (!worker_.joinable()) return;
    worker_.request_stop();
    allocator_->Decommit();
    worker_.join();
  }

 private:
  // The input's own allocator, or else the system's.
  static ComPtr<IMemAllocator> allocatorFor(IMemInputPin& input) {
    ComPtr<IMemAllocator> allocator;
    if (FAILED(input.GetAllocator(&allocator))) {
      CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER,
                       __uuidof(IMemAllocator), &allocator);
    }
    return allocator;
  }

  void setRunning(bool running) {
    const std::lock_guard lock(guard_);
    running_ = running;
    changed_.notify_all();
  }

  void flow(const std::stop_token& stopping) {
    constexpr std::chrono::milliseconds period(frameTime_100ns / 10'000);
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    auto due = std::chrono::steady_clock::now();
    std::unique_lock lock(guard_);
    while (changed_.wait(lock, stopping, [this] { return running_; })) {
      if (changed_.wait_until(lock, due, [this] { return !running_; })) continue;
      due = std::chrono::steady_clock::now() + period;
      lock.unlock();
      if (!send()) break;
      lock.lock();
    }
    CoUninitialize();
  }

  // Sends one picture; returns whether to continue. An unplugged camera sends no more pictures and
  // reports no error.
  bool send() {
    constexpr std::uint32_t limit_ms = 15'000;  // for large pictures on a busy machine
    const RequestHead request{RequestKind::frame, 0, static_cast<std::uint32_t>(size_.command)};
    const std::size_t size = yuy2Bytes(size_.width, size_.height);
    ComPtr<IMediaSample> sample;
    if (FAILED(allocator_->GetBuffer(&sample, nullptr, nullptr, 0))) return false;
    BYTE* bytes = nullptr;
    sample->GetPointer(&bytes);
    if (camera_.transfer(request, {bytes, size}, limit_ms) != size) return true;
    sample->SetActualDataLength(static_cast<long>(size));
    sample->SetSyncPoint(TRUE);
    return !stamp(*sample.Get()) || input_->Receive(sample.Get()) == S_OK;
  }

  // Sets the sample's time. Returns false if the stream is no longer running.
  bool stamp(IMediaSample& sample) {
    const std::lock_guard lock(guard_);
    REFERENCE_TIME now = 0;
    if (running_ && clock_ != nullptr && SUCCEEDED(clock_->GetTime(&now))) {
      REFERENCE_TIME begin = now - start_, end = begin + frameTime_100ns;
      sample.SetTime(&begin, &end);
    }
    return running_;
  }

  PipeClient& camera_;
  VideoMode size_{};
  ComPtr<IMemInputPin> input_;
  ComPtr<IMemAllocator> allocator_;
  std::jthread worker_;

  std::mutex guard_;  // guards the members below
  std::condition_variable_any changed_;
  bool running_ = false;
  REFERENCE_TIME start_ = 0;
  ComPtr<IReferenceClock> clock_;
};

}  // namespace qvx::simulator
