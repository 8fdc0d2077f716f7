#include "platform/system.h"

#include <dshow.h>
#include <wrl/client.h>

#include <optional>

#include "platform/windows/video_monikers.h"

namespace qvx::platform {

using Microsoft::WRL::ComPtr;

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
  ComPtr<IPropertyBag> properties;
  if (FAILED(moniker.BindToStorage(nullptr, nullptr, IID_IPropertyBag, &properties))) {
    return std::nullopt;
  }
  const auto displayName = displayNameOf(moniker);
  if (!displayName) return std::nullopt;
  const auto friendlyName = friendlyNameOf(*properties.Get());
  if (!friendlyName) return std::nullopt;
  return VideoInput{*displayName, *friendlyName};
}

}  // namespace

void forEachVideoMoniker(const std::function<bool(IMoniker&)>& visit) {
  ComPtr<ICreateDevEnum> devices;
  if (FAILED(CoCreateInstance(CLSID_SystemDeviceEnum, nullptr, CLSCTX_INPROC_SERVER,
                              IID_ICreateDevEnum, &devices))) {
    return;
  }
  ComPtr<IEnumMoniker> inputs;
  // An empty category answers S_FALSE and no enumerator.
  if (devices->CreateClassEnumerator(CLSID_VideoInputDeviceCategory, &inputs, 0) != S_OK) {
    return;
  }
  ComPtr<IMoniker> moniker;
  while (inputs->Next(1, &moniker, nullptr) == S_OK) {
    if (!visit(*moniker.Get())) return;
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
