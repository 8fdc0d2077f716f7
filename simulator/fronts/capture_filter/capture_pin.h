// The pin of a virtual camera, from which its video flows.
#pragma once

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/media_type.h"
#include "simulator/fronts/capture_filter/video_stream.h"

namespace qvx::simulator {

// Lives and dies with its filter, but is a COM object of its own.
class CapturePin final : public IPin, public IAMStreamConfig, public IKsPropertySet {
 public:
  static constexpr wchar_t name[] = L"Capture";

  explicit CapturePin(IBaseFilter& filter) : filter_(filter) {}

  // Before it is asked anything.
  void attach(std::shared_ptr<VirtualCamera> camera);

  // What flows from it; the filter sets it going and stops it.
  void pause() { stream_.pause(camera_); }
  void run(REFERENCE_TIME start, IReferenceClock* clock) { stream_.run(start, clock); }
  void stop() { stream_.stop(); }
  CapturePin(const CapturePin&) = delete;
  CapturePin& operator=(const CapturePin&) = delete;

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return filter_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return filter_.Release(); }

  STDMETHODIMP Connect(IPin* other, const AM_MEDIA_TYPE* type) override;
  STDMETHODIMP ReceiveConnection(IPin* other, const AM_MEDIA_TYPE* type) override;
  STDMETHODIMP Disconnect() override;
  STDMETHODIMP ConnectedTo(IPin** other) override;
  STDMETHODIMP ConnectionMediaType(AM_MEDIA_TYPE* type) override;
  STDMETHODIMP QueryPinInfo(PIN_INFO* info) override;
  STDMETHODIMP QueryDirection(PIN_DIRECTION* direction) override;
  STDMETHODIMP QueryId(LPWSTR* id) override;
  STDMETHODIMP QueryAccept(const AM_MEDIA_TYPE* type) override;
  STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** types) override;
  STDMETHODIMP QueryInternalConnections(IPin** pins, ULONG* count) override;
  STDMETHODIMP EndOfStream() override;
  STDMETHODIMP BeginFlush() override;
  STDMETHODIMP EndFlush() override;
  STDMETHODIMP NewSegment(REFERENCE_TIME start, REFERENCE_TIME stop, double rate) override;

  STDMETHODIMP SetFormat(AM_MEDIA_TYPE* type) override;
  STDMETHODIMP GetFormat(AM_MEDIA_TYPE** type) override;
  STDMETHODIMP GetNumberOfCapabilities(int* count, int* size) override;
  STDMETHODIMP GetStreamCaps(int index, AM_MEDIA_TYPE** type, BYTE* capabilities) override;

  STDMETHODIMP Set(REFGUID set, DWORD id, LPVOID instance, DWORD instanceSize, LPVOID data,
                   DWORD dataSize) override;
  STDMETHODIMP Get(REFGUID set, DWORD id, LPVOID instance, DWORD instanceSize, LPVOID data,
                   DWORD dataSize, DWORD* returned) override;
  STDMETHODIMP QuerySupported(REFGUID set, DWORD id, DWORD* support) override;

 private:
  HRESULT connectIn(const VideoMode& size, IPin& other);
  std::span<const VideoMode> offered() const;

  IBaseFilter& filter_;
  std::shared_ptr<VirtualCamera> camera_;
  std::vector<VideoMode> sizes_;        // the smallest first
  const VideoMode* chosen_ = nullptr;   // by SetFormat: then no other is offered
  const VideoMode* flowing_ = nullptr;  // in the connection
  ComPointer<IPin> other_;
  VideoStream stream_;
};

}  // namespace qvx::simulator
