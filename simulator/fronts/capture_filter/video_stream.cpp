#include "simulator/fronts/capture_filter/video_stream.h"

namespace qvx::simulator {

namespace {

constexpr DWORD framePeriod_ms = VideoStream::frameTime_100ns / 10'000;

// The input's own memory, or where it has none, the system's.
ComPointer<IMemAllocator> allocatorFor(IMemInputPin& input) {
  ComPointer<IMemAllocator> allocator;
  if (SUCCEEDED(input.GetAllocator(Receiving(allocator)))) return allocator;
  CoCreateInstance(CLSID_MemoryAllocator, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IMemAllocator),
                   Receiving(allocator));
  return allocator;
}

}  // namespace

VideoStream::VideoStream()
    : running_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      stopping_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

VideoStream::~VideoStream() {
  stop();
  CloseHandle(running_);
  CloseHandle(stopping_);
}

HRESULT VideoStream::connect(IPin& other, const VideoMode& size) {
  constexpr long buffers = 3;  // one of them may wait behind a filter that hands samples on
  ALLOCATOR_PROPERTIES wanted{buffers, static_cast<long>(yuy2Bytes(size.width, size.height)), 1, 0},
      actual{};
  ComPointer<IMemInputPin> input;
  HRESULT status = other.QueryInterface(__uuidof(IMemInputPin), Receiving(input));
  if (FAILED(status)) return status;
  ComPointer<IMemAllocator> allocator = allocatorFor(*input);
  if (allocator == nullptr) return VFW_E_NO_ALLOCATOR;
  status = allocator->SetProperties(&wanted, &actual);
  if (SUCCEEDED(status) && actual.cbBuffer < wanted.cbBuffer) status = VFW_E_BUFFER_OVERFLOW;
  if (SUCCEEDED(status)) status = input->NotifyAllocator(allocator.get(), FALSE);
  if (FAILED(status)) return status;
  size_ = size;
  input_ = std::move(input);
  allocator_ = std::move(allocator);
  return S_OK;
}

void VideoStream::disconnect() {
  stop();
  input_.reset();
  allocator_.reset();
}

void VideoStream::pause(const std::shared_ptr<VirtualCamera>& camera) {
  ResetEvent(running_);
  if (input_ == nullptr || camera == nullptr || worker_.joinable()) return;
  allocator_->Commit();
  ResetEvent(stopping_);
  worker_ = std::thread([this, camera] { flow(*camera); });
}

void VideoStream::run(REFERENCE_TIME start, IReferenceClock* clock) {
  if (clock != nullptr) clock->AddRef();
  const std::lock_guard lock(guard_);
  clock_.reset(clock);
  start_ = start;
  SetEvent(running_);
}

// Decommitted memory wakes a worker that waits for a buffer; nothing is locked meanwhile.
void VideoStream::stop() {
  if (!worker_.joinable()) return;
  SetEvent(stopping_);
  allocator_->Decommit();
  worker_.join();
  ResetEvent(running_);
}

void VideoStream::flow(VirtualCamera& camera) {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
  for (ULONGLONG due = 0; waitFor(running_, INFINITE);) {
    const ULONGLONG now = GetTickCount64();
    if (now < due) {
      if (WaitForSingleObject(stopping_, static_cast<DWORD>(due - now)) == WAIT_OBJECT_0) break;
      continue;
    }
    due = now + framePeriod_ms;
    if (!send(camera)) break;
  }
  CoUninitialize();
}

// Whether it goes on. A camera that is gone gives no more pictures, and no error either.
bool VideoStream::send(VirtualCamera& camera) {
  ComPointer<IMediaSample> sample;
  if (FAILED(allocator_->GetBuffer(Receiving(sample), nullptr, nullptr, 0))) return false;
  BYTE* bytes = nullptr;
  sample->GetPointer(&bytes);
  const std::size_t size = yuy2Bytes(size_.width, size_.height);
  if (!camera.frame(size_, {bytes, size})) return true;
  sample->SetActualDataLength(static_cast<long>(size));
  sample->SetSyncPoint(TRUE);
  stamp(*sample);
  if (WaitForSingleObject(running_, 0) != WAIT_OBJECT_0) return true;
  return input_->Receive(sample.get()) == S_OK;
}

void VideoStream::stamp(IMediaSample& sample) {
  const std::lock_guard lock(guard_);
  REFERENCE_TIME now = 0;
  if (clock_ == nullptr || FAILED(clock_->GetTime(&now))) return;
  REFERENCE_TIME begin = now - start_, end = begin + frameTime_100ns;
  sample.SetTime(&begin, &end);
}

// False when it stops first.
bool VideoStream::waitFor(HANDLE event, DWORD limit_ms) const {
  const HANDLE events[] = {stopping_, event};
  return WaitForMultipleObjects(2, events, FALSE, limit_ms) == WAIT_OBJECT_0 + 1;
}

}  // namespace qvx::simulator
