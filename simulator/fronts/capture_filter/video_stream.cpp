#include "simulator/fronts/capture_filter/video_stream.h"

#include "simulator/fronts/capture_filter/media_type.h"

namespace qvx::simulator {

namespace {

constexpr std::chrono::milliseconds framePeriod(frameTime_100ns / 10'000);

// The input's own memory, or where it has none, the system's.
ComPtr<IMemAllocator> allocatorFor(IMemInputPin& input) {
  ComPtr<IMemAllocator> allocator;
  if (FAILED(input.GetAllocator(&allocator))) {
    CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IMemAllocator),
                     &allocator);
  }
  return allocator;
}

}  // namespace

HRESULT VideoStream::connect(IPin& other, const VideoMode& size) {
  constexpr long buffers = 3;  // one of them may wait behind a filter that hands samples on
  ALLOCATOR_PROPERTIES wanted{buffers, static_cast<long>(yuy2Bytes(size.width, size.height)), 1, 0},
      actual{};
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

void VideoStream::disconnect() {
  stop();
  input_ = nullptr;
  allocator_ = nullptr;
}

void VideoStream::pause() {
  setRunning(false);
  if (input_ == nullptr || worker_.joinable()) return;
  allocator_->Commit();
  worker_ = std::jthread([this](const std::stop_token& stopping) { flow(stopping); });
}

void VideoStream::run(REFERENCE_TIME start, IReferenceClock* clock) {
  {
    const std::lock_guard lock(guard_);
    clock_ = clock;
    start_ = start;
  }
  setRunning(true);
}

// Decommitted memory wakes a worker that waits for a buffer; nothing is locked meanwhile.
void VideoStream::stop() {
  setRunning(false);
  if (!worker_.joinable()) return;
  worker_.request_stop();
  allocator_->Decommit();
  worker_.join();
}

void VideoStream::setRunning(bool running) {
  const std::lock_guard lock(guard_);
  running_ = running;
  changed_.notify_all();
}

void VideoStream::flow(const std::stop_token& stopping) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  auto due = std::chrono::steady_clock::now();
  std::unique_lock lock(guard_);
  while (changed_.wait(lock, stopping, [this] { return running_; })) {
    if (changed_.wait_until(lock, due, [this] { return !running_; })) continue;
    due = std::chrono::steady_clock::now() + framePeriod;
    lock.unlock();
    if (!send()) break;
    lock.lock();
  }
  CoUninitialize();
}

// Whether it goes on. A camera that is gone gives no more pictures, and no error either.
bool VideoStream::send() {
  constexpr std::uint32_t limit_ms = 15'000;  // large pictures on a busy machine
  const RequestHead request{RequestKind::frame, static_cast<std::uint32_t>(size_.command)};
  const std::size_t size = yuy2Bytes(size_.width, size_.height);
  ComPtr<IMediaSample> sample;
  if (FAILED(allocator_->GetBuffer(&sample, nullptr, nullptr, 0))) return false;
  BYTE* bytes = nullptr;
  sample->GetPointer(&bytes);
  if (camera_.ask(request, {}, {bytes, size}, limit_ms) != size) return true;
  sample->SetActualDataLength(static_cast<long>(size));
  sample->SetSyncPoint(TRUE);
  {
    const std::lock_guard lock(guard_);
    if (!running_) return true;
    stamp(*sample.Get());
  }
  return input_->Receive(sample.Get()) == S_OK;
}

void VideoStream::stamp(IMediaSample& sample) {
  REFERENCE_TIME now = 0;
  if (clock_ == nullptr || FAILED(clock_->GetTime(&now))) return;
  REFERENCE_TIME begin = now - start_, end = begin + frameTime_100ns;
  sample.SetTime(&begin, &end);
}

}  // namespace qvx::simulator
