#include "simulator/fronts/capture_filter/capture_pin.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace qvx::simulator {

namespace {

constexpr GUID capturePropertySet = {
    0x9B00F101, 0x1567, 0x11D1, {0xB3, 0xF1, 0x00, 0xAA, 0x00, 0x37, 0x61, 0xC5}};

class MediaTypes final : public ItemEnumerator<IEnumMediaTypes, AM_MEDIA_TYPE> {
 public:
  explicit MediaTypes(std::span<const VideoMode> sizes, ULONG position = 0)
      : ItemEnumerator(static_cast<ULONG>(sizes.size()), position), sizes_(sizes) {}

 private:
  HRESULT give(ULONG index, AM_MEDIA_TYPE** type) override {
    return allocateMediaType(sizes_[index], type);
  }
  IEnumMediaTypes* cloneAt(ULONG position) override { return new MediaTypes(sizes_, position); }

  const std::span<const VideoMode> sizes_;
};

}  // namespace

STDMETHODIMP CapturePin::QueryInterface(REFIID iid, void** object) {
  *object = iid == __uuidof(IUnknown)
                ? static_cast<IPin*>(this)
                : interfaceOf<IPin, IAMStreamConfig, IKsPropertySet>(this, iid);
  if (*object == nullptr) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

void CapturePin::attach(std::shared_ptr<VirtualCamera> camera) {
  camera_ = std::move(camera);
  const auto modes = videoModesFor(camera_->description().productId);
  sizes_.assign(modes.begin(), modes.end());
  std::ranges::sort(sizes_, {}, &VideoMode::width);
}

std::span<const VideoMode> CapturePin::offered() const {
  return chosen_ != nullptr ? std::span(chosen_, 1) : std::span(sizes_);
}

// Tries what the caller allows, in the order in which it is offered.
STDMETHODIMP CapturePin::Connect(IPin* other, const AM_MEDIA_TYPE* wanted) {
  if (other == nullptr) return E_POINTER;
  if (other_ != nullptr) return VFW_E_ALREADY_CONNECTED;
  for (const VideoMode& size : offered()) {
    if (wanted != nullptr && !allows(*wanted, size)) continue;
    if (SUCCEEDED(connectIn(size, *other))) return S_OK;
  }
  return VFW_E_NO_ACCEPTABLE_TYPES;
}

HRESULT CapturePin::connectIn(const VideoMode& size, IPin& other) {
  MediaType type(size);
  HRESULT status = other.ReceiveConnection(this, &type);
  if (FAILED(status)) return status;
  status = stream_.connect(other, size);
  if (FAILED(status)) {
    other.Disconnect();
    return status;
  }
  other.AddRef();
  other_.reset(&other);
  flowing_ = &size;
  return S_OK;
}

STDMETHODIMP CapturePin::ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) {
  return E_UNEXPECTED;
}

STDMETHODIMP CapturePin::Disconnect() {
  if (other_ == nullptr) return S_FALSE;
  stream_.disconnect();
  other_.reset();
  return S_OK;
}

STDMETHODIMP CapturePin::ConnectedTo(IPin** other) {
  *other = other_.get();
  if (other_ == nullptr) return VFW_E_NOT_CONNECTED;
  other_->AddRef();
  return S_OK;
}

STDMETHODIMP CapturePin::ConnectionMediaType(AM_MEDIA_TYPE* type) {
  *type = {};
  return other_ == nullptr ? VFW_E_NOT_CONNECTED : fillMediaType(*flowing_, *type);
}

STDMETHODIMP CapturePin::QueryPinInfo(PIN_INFO* info) {
  info->pFilter = &filter_;
  filter_.AddRef();
  info->dir = PINDIR_OUTPUT;
  std::copy(std::begin(name), std::end(name), info->achName);
  return S_OK;
}

STDMETHODIMP CapturePin::QueryDirection(PIN_DIRECTION* direction) {
  *direction = PINDIR_OUTPUT;
  return S_OK;
}

STDMETHODIMP CapturePin::QueryId(LPWSTR* id) {
  *id = static_cast<LPWSTR>(CoTaskMemAlloc(sizeof name));
  if (*id == nullptr) return E_OUTOFMEMORY;
  std::copy(std::begin(name), std::end(name), *id);
  return S_OK;
}

STDMETHODIMP CapturePin::QueryAccept(const AM_MEDIA_TYPE* type) {
  return sizeOf(*type, sizes_) != nullptr ? S_OK : S_FALSE;
}

STDMETHODIMP CapturePin::EnumMediaTypes(IEnumMediaTypes** types) {
  *types = new MediaTypes(offered());
  return S_OK;
}

STDMETHODIMP CapturePin::QueryInternalConnections(IPin**, ULONG*) {
  return E_NOTIMPL;
}

STDMETHODIMP CapturePin::EndOfStream() {
  return E_UNEXPECTED;
}

STDMETHODIMP CapturePin::BeginFlush() {
  return E_UNEXPECTED;
}

STDMETHODIMP CapturePin::EndFlush() {
  return E_UNEXPECTED;
}

STDMETHODIMP CapturePin::NewSegment(REFERENCE_TIME, REFERENCE_TIME, double) {
  return E_UNEXPECTED;
}

STDMETHODIMP CapturePin::SetFormat(AM_MEDIA_TYPE* type) {
  if (other_ != nullptr) return VFW_E_ALREADY_CONNECTED;
  const VideoMode* const size = type == nullptr ? nullptr : sizeOf(*type, sizes_);
  if (type != nullptr && size == nullptr) return VFW_E_INVALIDMEDIATYPE;
  chosen_ = size;
  return S_OK;
}

STDMETHODIMP CapturePin::GetFormat(AM_MEDIA_TYPE** type) {
  return allocateMediaType(other_ != nullptr ? *flowing_ : offered().front(), type);
}

STDMETHODIMP CapturePin::GetNumberOfCapabilities(int* count, int* size) {
  *count = static_cast<int>(sizes_.size());
  *size = sizeof(VIDEO_STREAM_CONFIG_CAPS);
  return S_OK;
}

STDMETHODIMP CapturePin::GetStreamCaps(int index, AM_MEDIA_TYPE** type, BYTE* capabilities) {
  if (index < 0) return E_INVALIDARG;
  if (index >= static_cast<int>(sizes_.size())) return S_FALSE;
  const VideoMode& size = sizes_[static_cast<std::size_t>(index)];
  *reinterpret_cast<VIDEO_STREAM_CONFIG_CAPS*>(capabilities) = capabilitiesOf(size);
  return allocateMediaType(size, type);
}

STDMETHODIMP CapturePin::Set(REFGUID, DWORD, LPVOID, DWORD, LPVOID, DWORD) {
  return E_PROP_ID_UNSUPPORTED;
}

// The one property of a pin: what it is for.
STDMETHODIMP CapturePin::Get(REFGUID set, DWORD id, LPVOID, DWORD, LPVOID data, DWORD dataSize,
                             DWORD* returned) {
  DWORD support = 0;
  const HRESULT status = QuerySupported(set, id, &support);
  if (FAILED(status)) return status;
  if (returned != nullptr) *returned = sizeof(GUID);
  if (data == nullptr) return S_OK;
  if (dataSize < sizeof(GUID)) return E_UNEXPECTED;
  std::memcpy(data, &PIN_CATEGORY_CAPTURE, sizeof(GUID));
  return S_OK;
}

STDMETHODIMP CapturePin::QuerySupported(REFGUID set, DWORD id, DWORD* support) {
  if (set != capturePropertySet) return E_PROP_SET_UNSUPPORTED;
  if (id != AMPROPERTY_PIN_CATEGORY) return E_PROP_ID_UNSUPPORTED;
  if (support != nullptr) *support = KSPROPERTY_SUPPORT_GET;
  return S_OK;
}

}  // namespace qvx::simulator
