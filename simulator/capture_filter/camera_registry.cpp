#include "simulator/capture_filter/camera_registry.h"

#include <objbase.h>

#include <algorithm>
#include <cstdio>

#include "simulator/capture_filter/child_program.h"
#include "simulator/capture_filter/registry_key.h"
#include "simulator/capture_filter/text.h"
#include "simulator/model/bridge_chip_spec.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t classes[] = L"Software\\Classes\\CLSID\\";
constexpr wchar_t videoInputs[] =
    L"Software\\Classes\\CLSID\\{860BB310-5D01-11D0-BD3B-00A0C911CE86}\\Instance";
constexpr wchar_t deviceEnumerator[] =
    L"Software\\Classes\\CLSID\\{62BE5D10-60EB-11D0-BD3B-00A0C911CE86}\\InprocServer32";

constexpr wchar_t classValue[] = L"CLSID";
constexpr wchar_t nameValue[] = L"FriendlyName";
constexpr wchar_t textValue[] = L"VirtualCamera";
constexpr wchar_t orderValue[] = L"VirtualOrder";
constexpr wchar_t registrationValue[] = L"VirtualRegistration";
constexpr wchar_t replacedValue[] = L"VirtualReplaced";  // the enumerator's own DLL

std::wstring filterClassText() {
  wchar_t text[40];
  StringFromGUID2(captureFilterClass, text, 40);
  return text;
}

std::wstring keyOf(const std::wstring& instance) {
  return std::wstring(videoInputs) + L"\\" + instance;
}

// The serial part tells apart cameras of one product.
std::wstring instanceOf(const BridgeSpec& spec, std::size_t index) {
  wchar_t text[160];
  std::swprintf(text, 160,
                L"usb#vid_%04x&pid_%04x&mi_00#7&%08x&0&0000#"
                L"{65e8773d-8f56-11d0-a3b9-00a0c9223196}",
                spec.vendorId, spec.productId, static_cast<unsigned>(0x1a2b3c00 + index));
  return text;
}

std::uint64_t now() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

bool registerClass(const std::wstring& filterDll) {
  RegistryKey server = RegistryKey::create(classes + filterClassText() + L"\\InprocServer32");
  return server.setText(L"", filterDll) && server.setText(L"ThreadingModel", L"Both");
}

bool replaceEnumerator(const std::wstring& filterDll) {
  RegistryKey server = RegistryKey::open(deviceEnumerator, KEY_ALL_ACCESS);
  const std::optional<std::wstring> own = server.text(L"");
  return own && server.setText(replacedValue, *own) && server.setText(L"", filterDll);
}

void restoreEnumerator() {
  RegistryKey server = RegistryKey::open(deviceEnumerator, KEY_ALL_ACCESS);
  const std::optional<std::wstring> own = server.text(replacedValue);
  if (!own || !server.setText(L"", *own)) return;
  server.forget(replacedValue);
}

bool registerCamera(const std::string& text, std::size_t index, std::string& problem) {
  const auto spec = bridgeSpecFrom(text, problem);
  if (!spec) return false;
  const std::wstring instance = instanceOf(*spec, index);
  RegistryKey key = RegistryKey::create(keyOf(instance));
  if (key.setText(classValue, filterClassText()) && key.setText(nameValue, wide(spec->name)) &&
      key.setText(instanceValueName, instance) && key.setText(textValue, wide(text)) &&
      key.setNumber(orderValue, index) && key.setNumber(registrationValue, now())) {
    return true;
  }
  problem = "the registry cannot be written";
  return false;
}

}  // namespace

bool registerCameras(std::span<const std::string> texts, Naming naming,
                     const std::wstring& filterDll, std::string& problem) {
  unregisterCameras();
  if (!isThere(filterDll, problem)) return false;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (!registerCamera(texts[i], i, problem)) return false;
  }
  if (registerClass(filterDll) && (naming == Naming::system || replaceEnumerator(filterDll))) {
    return true;
  }
  problem = "the registry cannot be written";
  return false;
}

void unregisterCameras() {
  restoreEnumerator();
  for (const RegisteredCamera& camera : registeredCameras())
    RegistryKey::remove(keyOf(camera.instance));
  RegistryKey::remove(classes + filterClassText());
}

std::wstring filterBesideProgram() {
  return programFolder() + L"qvx-capture-filter.dll";
}

std::vector<RegisteredCamera> registeredCameras() {
  std::vector<std::pair<std::uint64_t, RegisteredCamera>> ordered;
  for (const std::wstring& name : RegistryKey::open(videoInputs).children()) {
    auto camera = registeredCamera(name);
    if (camera)
      ordered.emplace_back(RegistryKey::open(keyOf(name)).number(orderValue), std::move(*camera));
  }
  std::sort(ordered.begin(), ordered.end(),
            [](const auto& one, const auto& other) { return one.first < other.first; });
  std::vector<RegisteredCamera> cameras;
  for (auto& [order, camera] : ordered) cameras.push_back(std::move(camera));
  return cameras;
}

std::optional<RegisteredCamera> registeredCamera(const std::wstring& instance) {
  const RegistryKey key = RegistryKey::open(keyOf(instance));
  const std::optional<std::wstring> text = key.text(textValue);
  if (!text) return std::nullopt;
  return RegisteredCamera{instance, narrow(*text), key.number(registrationValue)};
}

bool changeCamera(const RegisteredCamera& camera, std::string_view options, std::string& problem) {
  const std::string text = withOptions(camera.text, options);
  if (!bridgeSpecFrom(text, problem)) return false;
  if (RegistryKey::open(keyOf(camera.instance), KEY_ALL_ACCESS).setText(textValue, wide(text)))
    return true;
  problem = "the registry cannot be written";
  return false;
}

std::wstring devicePathOf(const RegisteredCamera& camera) {
  return L"\\\\?\\" + camera.instance + L"\\global";
}

}  // namespace qvx::simulator
