// The output pin of a simulated camera.
#pragma once

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

#include "simulator/fronts/capture_filter/com_object.h"
#include "simulator/fronts/capture_filter/kernel_streaming.h"
#include "simulator/fronts/capture_filter/media_type.h"
#include "simulator/fronts/capture_filter/video_stream.h"

namespace qvx::simulator {

// A COM object of its own that shares its filter's lifetime and reference count.
class CapturePin final : public IPin, public IAMStreamConfig, public IKsPropertySet {
 public:
  static constexpr wchar_t name[] = L"Capture";

  CapturePin(IBaseFilter& filter, PipeClient& camera, std::uint16_t productId)
      : filter_(filter), stream_(camera) {
    const auto modes = videoModesFor(productId);
    sizes_.assign(modes.begin(), modes.end());
    std::ranges::sort(sizes_, {}, &VideoMode::width);
  }

  // The pin's video, which the filter starts and stops.
  VideoStream& stream() { return stream_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    *object = interfaceOf<IPin, IAMStreamConfig, IKsPropertySet>(this, iid);
    if (*object == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return filter_.AddRef(); }
  STDMETHODIMP_(ULONG) Release() override { return filter_.Release(); }

  // Tries the offered types that the caller allows, in their order.
  STDMETHODIMP Connect(IPin* other, const AM_MEDIA_TYPE* wanted) override {
    if (other == nullptr) return E_POINTER;
    if (other_ != nullptr) return VFW_E_ALREADY_CONNECTED;
    for (const VideoMode& size : offered()) {
      if (wanted != nullptr && !allows(*wanted, size)) continue;
      if (SUCCEEDED(connectIn(size, *other))) return S_OK;
    }
    return VFW_E_NO_ACCEPTABLE_TYPES;
  }
  STDMETHODIMP ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) override { return E_UNEXPECTED; }
  STDMETHODIMP Disconnect() override {
    if (other_ == nullptr) return S_FALSE;
    stream_.disconnect();
    other_ = nullptr;
    return S_OK;
  }
  STDMETHODIMP ConnectedTo(IPin** other) override {
    *other = nullptr;
    return other_ == nullptr ? VFW_E_NOT_CONNECTED : other_.CopyTo(other);
  }
  STDMETHODIMP ConnectionMediaType(AM_MEDIA_TYPE* type) override {
    *type = {};
    return other_ == nullptr ? VFW_E_NOT_CONNECTED : fillMediaType(flowing_, *type);
  }

  STDMETHODIMP QueryPinInfo(PIN_INFO* info) override {
    info->pFilter = &filter_;
    filter_.AddRef();
    info->dir = PINDIR_OUTPUT;
    std::copy(std::begin(name), std::end(name), info->achName);
    return S_OK;
  }
  STDMETHODIMP QueryDirection(PIN_DIRECTION* direction) override {
    *direction = PINDIR_OUTPUT;
    return S_OK;
  }
  STDMETHODIMP QueryId(LPWSTR* id) override { return SHStrDupW(name, id); }
  STDMETHODIMP QueryAccept(const AM_MEDIA_TYPE* type) override {
    return sizeOf(*type, sizes_) != nullptr ? S_OK : S_FALSE;
  }
  STDMETHODIMP EnumMediaTypes(IEnumMediaTypes** types) override {
    const auto sizes = offered();
    *types = new ItemEnumerator<IEnumMediaTypes, AM_MEDIA_TYPE>(
        sizes.size(), [sizes](ULONG index, AM_MEDIA_TYPE** type) {
          return allocateMediaType(sizes[index], type);
        });
    return S_OK;
  }
  STDMETHODIMP QueryInternalConnections(IPin**, ULONG*) override { return E_NOTIMPL; }
  STDMETHODIMP EndOfStream() override { return E_UNEXPECTED; }
  STDMETHODIMP BeginFlush() override { return E_UNEXPECTED; }
  STDMETHODIMP EndFlush() override { return E_UNEXPECTED; }
  STDMETHODIMP NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) override { return E_UNEXPECTED; }

  STDMETHODIMP SetFormat(AM_MEDIA_TYPE* type) override {
    if (other_ != nullptr) return VFW_E_ALREADY_CONNECTED;
    const VideoMode* const size = type == nullptr ? nullptr : sizeOf(*type, sizes_);
    if (type != nullptr && size == nullptr) return VFW_E_INVALIDMEDIATYPE;
    chosen_ = size;
    return S_OK;
  }
  STDMETHODIMP GetFormat(AM_MEDIA_TYPE** type) override {
    return allocateMediaType(other_ != nullptr ? flowing_ : offered().front(), type);
  }
  STDMETHODIMP GetNumberOfCapabilities(int* count, int* size) override {
    *count = static_cast<int>(sizes_.size());
    *size = sizeof(VIDEO_STREAM_CONFIG_CAPS);
    return S_OK;
  }
  STDMETHODIMP GetStreamCaps(int index, AM_MEDIA_TYPE** type, BYTE* capabilities) override {
    if (index < 0) return E_INVALIDARG;
    if (index >= static_cast<int>(sizes_.size())) return S_FALSE;
    const VideoMode& size = sizes_[static_cast<std::size_t>(index)];
    *reinterpret_cast<VIDEO_STREAM_CONFIG_CAPS*>(capabilities) = capabilitiesOf(size);
    return allocateMediaType(size, type);
  }

  // The pin's only property: its category.
  STDMETHODIMP Set(REFGUID, DWORD, LPVOID, DWORD, LPVOID, DWORD) override {
    return E_PROP_ID_UNSUPPORTED;
  }
  STDMETHODIMP Get(REFGUID set, DWORD id, LPVOID, DWORD, LPVOID data, DWORD dataSize,
                   DWORD* returned) override {
    const HRESULT status = QuerySupported(set, id, nullptr);
    if (FAILED(status)) return status;
    if (returned != nullptr) *returned = sizeof(GUID);
    if (data == nullptr) return S_OK;
    if (dataSize < sizeof(GUID)) return E_UNEXPECTED;
    std::memcpy(data, &PIN_CATEGORY_CAPTURE, sizeof(GUID));
    return S_OK;
  }
  STDMETHODIMP QuerySupported(REFGUID set, DWORD id, DWORD* support) override {
    if (set != AMPROPSETID_Pin) return E_PROP_SET_UNSUPPORTED;
    if (id != AMPROPERTY_PIN_CATEGORY) return E_PROP_ID_UNSUPPORTED;
    if (support != nullptr) *support = KSPROPERTY_SUPPORT_GET;
    return S_OK;
  }

 private:
  HRESULT connectIn(const VideoMode& size, IPin& other) {
    AM_MEDIA_TYPE type;
    HRESULT status = fillMediaType(size, type);
    if (SUCCEEDED(status)) status = other.ReceiveConnection(this, &type);
    CoTaskMemFree(type.pbFormat);
    if (FAILED(status)) return status;
    status = stream_.connect(other, size);
    if (FAILED(status)) {
      other.Disconnect();
      return status;
    }
    other_ = &other;
    flowing_ = size;
    return S_OK;
  }

  std::span<const VideoMode> offered() const {
    return chosen_ != nullptr ? std::span(chosen_, 1) : std::span(sizes_);
  }

  IBaseFilter& filter_;
  std::vector<VideoMode> sizes_;       // the smallest first
  const VideoMode* chosen_ = nullptr;  // by SetFormat; null: all sizes are offered
  VideoMode flowing_{};                // the connection's
  ComPtr<IPin> other_;
  VideoStream stream_;
};

}  // namespace qvx::simulator
