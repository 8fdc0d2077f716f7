#include "platform/system.h"

#include <dshow.h>

#include <optional>

#include "platform/windows/com_pointer.h"
#include "platform/windows/video_monikers.h"

namespace qvx::platform {

namespace {

std::optional<std::wstring> displayNameOf(IMoniker& moniker) {
  LPOLESTR name = nullptr;
  if (FAILED(moniker.GetDisplayName(nullptr, nullptr, &name)) || name == nullptr) {
    return std::nullopt;
  }
  std::wstring copy = name;
  CoTaskMemFree(name);
  return copy;
}

std::optional<std::wstring> friendlyNameOf(IPropertyBag& properties) {
  VARIANT value;
  VariantInit(&value);
  if (FAILED(properties.Read(L"FriendlyName", &value, nullptr))) return std::nullopt;
  std::wstring name;
  if (value.vt == VT_BSTR && value.bstrVal != nullptr) name = value.bstrVal;
  VariantClear(&value);
  return name;
}

std::optional<VideoInput> describe(IMoniker& moniker) {
  ComPointer<IPropertyBag> properties;
  if (FAILED(moniker.BindToStorage(nullptr, nullptr, IID_IPropertyBag, properties.outVoid()))) {
    return std::nullopt;
  }
  const auto displayName = displayNameOf(moniker);
  if (!displayName) return std::nullopt;
  const auto friendlyName = friendlyNameOf(*properties.get());
  if (!friendlyName) return std::nullopt;
  return VideoInput{*displayName, *friendlyName};
}

}  // namespace

void forEachVideoMoniker(const std::function<bool(IMoniker&)>& visit) {
  ComPointer<ICreateDevEnum> devices;
  if (FAILED(CoCreateInstance(CLSID_SystemDeviceEnum, nullptr, CLSCTX_INPROC_SERVER,
                              IID_ICreateDevEnum, devices.outVoid()))) {
    return;
  }
  ComPointer<IEnumMoniker> inputs;
  // An empty category answers S_FALSE and no enumerator.
  if (devices->CreateClassEnumerator(CLSID_VideoInputDeviceCategory, inputs.out(), 0) != S_OK) {
    return;
  }
  ComPointer<IMoniker> moniker;
  while (inputs->Next(1, moniker.out(), nullptr) == S_OK) {
    if (!visit(*moniker.get())) return;
  }
}

std::vector<VideoInput> system::listVideoInputs() {
  std::vector<VideoInput> list;
  forEachVideoMoniker([&list](IMoniker& moniker) {
    if (auto input = describe(moniker)) list.push_back(std::move(*input));
    return true;
  });
  return list;
}

}  // namespace qvx::platform
