#include "platform/system.h"

#include <dshow.h>
#include <wrl/client.h>

#include <memory>

namespace qvx::platform {

using Microsoft::WRL::ComPtr;

struct InputList {
  // Released in the opposite order.
  ComPtr<ICreateDevEnum> devices;
  ComPtr<IEnumMoniker> monikers;
};

namespace {

IBaseFilter* unwrap(CaptureFilter& filter) {
  return reinterpret_cast<IBaseFilter*>(&filter);
}

IAMVideoProcAmp* unwrap(VideoProcAmp& amplifier) {
  return reinterpret_cast<IAMVideoProcAmp*>(&amplifier);
}

// DirectShow's number of a property: the same, as these two ends of its list show.
static_assert(VideoProcAmp_Brightness == static_cast<int>(PictureProperty::brightness) &&
              VideoProcAmp_Gain == static_cast<int>(PictureProperty::gain));
long numberOf(PictureProperty property) {
  return static_cast<long>(property);
}

// A new reference to an object that the system creates. Null when it cannot.
void* create(REFCLSID type, REFIID iid) {
  void* object = nullptr;
  CoCreateInstance(type, nullptr, CLSCTX_INPROC_SERVER, iid, &object);
  return object;
}

// Nobody needs the name here, but drivers are used to being asked.
void readFriendlyName(IPropertyBag& properties) {
  VARIANT name{};
  name.vt = VT_BSTR;
  properties.Read(L"FriendlyName", &name, nullptr);
  VariantClear(&name);
}

bool matches(IMoniker& moniker, const std::function<bool(const std::wstring&)>& isWanted) {
  ComPtr<IPropertyBag> properties;
  moniker.BindToStorage(nullptr, nullptr, IID_IPropertyBag, &properties);
  LPOLESTR name = nullptr;
  if (FAILED(moniker.GetDisplayName(nullptr, nullptr, &name)) || name == nullptr) return false;
  const std::wstring displayName = name;
  CoTaskMemFree(name);
  if (properties) readFriendlyName(*properties.Get());
  return isWanted(displayName);
}

}  // namespace

InputList* openInputList() {
  auto list = std::make_unique<InputList>();
  const bool listed =
      SUCCEEDED(CoCreateInstance(CLSID_SystemDeviceEnum, nullptr, CLSCTX_INPROC_SERVER,
                                 IID_ICreateDevEnum, &list->devices)) &&
      // An empty category answers S_FALSE and no enumerator.
      list->devices->CreateClassEnumerator(CLSID_VideoInputDeviceCategory, &list->monikers, 0) ==
          S_OK;
  return listed ? list.release() : nullptr;
}

void release(InputList* list) {
  delete list;
}

CaptureFilter* openFilter(InputList& list,
                          const std::function<bool(const std::wstring& displayName)>& isWanted) {
  list.monikers->Reset();
  ComPtr<IMoniker> moniker;
  while (list.monikers->Next(1, &moniker, nullptr) == S_OK) {
    if (!matches(*moniker.Get(), isWanted)) continue;
    void* filter = nullptr;
    moniker->BindToObject(nullptr, nullptr, IID_IBaseFilter, &filter);
    return static_cast<CaptureFilter*>(filter);
  }
  return nullptr;
}

FilterGraph* createFilterGraph() {
  return static_cast<FilterGraph*>(create(CLSID_FilterGraph, IID_IGraphBuilder));
}

void release(FilterGraph* graph) {
  if (graph != nullptr) reinterpret_cast<IGraphBuilder*>(graph)->Release();
}

CaptureBuilder* createCaptureBuilder() {
  return static_cast<CaptureBuilder*>(
      create(CLSID_CaptureGraphBuilder2, IID_ICaptureGraphBuilder2));
}

StreamConfig* findStreamConfig(CaptureBuilder& builder, CaptureFilter& filter) {
  void* config = nullptr;
  reinterpret_cast<ICaptureGraphBuilder2&>(builder).FindInterface(
      &PIN_CATEGORY_CAPTURE, nullptr, unwrap(filter), IID_IAMStreamConfig, &config);
  return static_cast<StreamConfig*>(config);
}

void countCapabilities(StreamConfig& config) {
  int count = 0, size = 0;
  reinterpret_cast<IAMStreamConfig&>(config).GetNumberOfCapabilities(&count, &size);
}

VideoProcAmp* queryVideoProcAmp(CaptureFilter& filter) {
  void* amplifier = nullptr;
  unwrap(filter)->QueryInterface(IID_IAMVideoProcAmp, &amplifier);
  return static_cast<VideoProcAmp*>(amplifier);
}

void system::setProperty(VideoProcAmp& amplifier, PictureProperty property, std::int32_t value) {
  unwrap(amplifier)->Set(numberOf(property), value, VideoProcAmp_Flags_Manual);
}

std::optional<std::int32_t> system::getProperty(VideoProcAmp& amplifier, PictureProperty property) {
  long value = 0, flags = 0;
  if (FAILED(unwrap(amplifier)->Get(numberOf(property), &value, &flags))) return std::nullopt;
  return value;
}

std::optional<PropertyRange> system::getPropertyRange(VideoProcAmp& amplifier,
                                                      PictureProperty property) {
  long min = 0, max = 0, step = 0, defaultValue = 0, flags = 0;
  const HRESULT result =
      unwrap(amplifier)->GetRange(numberOf(property), &min, &max, &step, &defaultValue, &flags);
  if (FAILED(result)) return std::nullopt;
  return PropertyRange{min, max, step, defaultValue};
}

}  // namespace qvx::platform
