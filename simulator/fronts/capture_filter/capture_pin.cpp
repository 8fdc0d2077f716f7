#include "simulator/fronts/capture_filter/capture_pin.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace qvx::simulator {

namespace {

constexpr GUID capturePropertySet = {
    0x9B00F101, 0x1567, 0x11D1, {0xB3, 0xF1, 0x00, 0xAA, 0x00, 0x37, 0x61, 0xC5}};

// 640 x 480 pixels of two bytes, 30 times a second.
constexpr LONG frameWidth = 640, frameHeight = 480;
constexpr WORD pixelBits = 16;
constexpr DWORD frameSize = frameWidth * frameHeight * pixelBits / 8;
constexpr REFERENCE_TIME frameTime_100ns = 333333;

VIDEOINFOHEADER videoFormat() {
  VIDEOINFOHEADER format{};
  format.AvgTimePerFrame = frameTime_100ns;
  format.bmiHeader.biSize = sizeof format.bmiHeader;
  format.bmiHeader.biWidth = frameWidth;
  format.bmiHeader.biHeight = frameHeight;
  format.bmiHeader.biPlanes = 1;
  format.bmiHeader.biBitCount = pixelBits;
  format.bmiHeader.biCompression = MAKEFOURCC('Y', 'U', 'Y', '2');
  format.bmiHeader.biSizeImage = frameSize;
  return format;
}

template <class Value>
Value* allocateCopy(const Value& value) {
  void* const memory = CoTaskMemAlloc(sizeof value);
  if (memory != nullptr) std::memcpy(memory, &value, sizeof value);
  return static_cast<Value*>(memory);
}

// The one media type, in memory that the caller frees.
HRESULT allocateMediaType(AM_MEDIA_TYPE** result) {
  AM_MEDIA_TYPE type{};
  type.majortype = MEDIATYPE_Video;
  type.subtype = MEDIASUBTYPE_YUY2;
  type.bFixedSizeSamples = TRUE;
  type.lSampleSize = frameSize;
  type.formattype = FORMAT_VideoInfo;
  type.cbFormat = sizeof(VIDEOINFOHEADER);
  type.pbFormat = reinterpret_cast<BYTE*>(allocateCopy(videoFormat()));
  *result = allocateCopy(type);
  return type.pbFormat != nullptr && *result != nullptr ? S_OK : E_OUTOFMEMORY;
}

class MediaTypes final : public OneItem<IEnumMediaTypes, AM_MEDIA_TYPE> {
 public:
  explicit MediaTypes(bool done = false) : OneItem(done) {}

 private:
  HRESULT give(AM_MEDIA_TYPE** type) override { return allocateMediaType(type); }
  IEnumMediaTypes* cloneAt(bool done) override { return new MediaTypes(done); }
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

STDMETHODIMP CapturePin::Connect(IPin*, const AM_MEDIA_TYPE*) {
  return VFW_E_NO_ACCEPTABLE_TYPES;
}

STDMETHODIMP CapturePin::ReceiveConnection(IPin*, const AM_MEDIA_TYPE*) {
  return E_UNEXPECTED;
}

STDMETHODIMP CapturePin::Disconnect() {
  return S_FALSE;
}

STDMETHODIMP CapturePin::ConnectedTo(IPin** other) {
  *other = nullptr;
  return VFW_E_NOT_CONNECTED;
}

STDMETHODIMP CapturePin::ConnectionMediaType(AM_MEDIA_TYPE* type) {
  *type = {};
  return VFW_E_NOT_CONNECTED;
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

STDMETHODIMP CapturePin::QueryAccept(const AM_MEDIA_TYPE*) {
  return S_OK;
}

STDMETHODIMP CapturePin::EnumMediaTypes(IEnumMediaTypes** types) {
  *types = new MediaTypes;
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

STDMETHODIMP CapturePin::SetFormat(AM_MEDIA_TYPE*) {
  return S_OK;
}

STDMETHODIMP CapturePin::GetFormat(AM_MEDIA_TYPE** type) {
  return allocateMediaType(type);
}

STDMETHODIMP CapturePin::GetNumberOfCapabilities(int* count, int* size) {
  *count = 1;
  *size = sizeof(VIDEO_STREAM_CONFIG_CAPS);
  return S_OK;
}

STDMETHODIMP CapturePin::GetStreamCaps(int index, AM_MEDIA_TYPE** type, BYTE* capabilities) {
  if (index != 0) return S_FALSE;
  std::memset(capabilities, 0, sizeof(VIDEO_STREAM_CONFIG_CAPS));
  return allocateMediaType(type);
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
