#include "simulator/hid_bridge/virtual_hid_devices.h"

#include <windows.h>
// mingw-w64's HID headers do not say that the library is C.
extern "C" {
#include <hidsdi.h>
}
#include <setupapi.h>

#include <algorithm>
#include <cstdio>
#include <vector>

#include "simulator/capture_filter/child_program.h"
#include "simulator/capture_filter/registry_key.h"
#include "simulator/capture_filter/text.h"
#include "simulator/model/bridge_chip_spec.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t enumeration[] = L"System\\CurrentControlSet\\Enum\\";
constexpr wchar_t parameters[] = L"\\Device Parameters";
constexpr wchar_t textValue[] = L"VirtualText";
constexpr wchar_t orderValue[] = L"VirtualOrder";

constexpr DWORD limit_ms = 20'000;

// Where a device stands: "VID_3C7E&PID_0970\0000" below the root bus, and its child below HID.
struct Place {
  std::wstring product, number;

  std::wstring rootKey() const { return enumeration + (L"ROOT\\" + product + L"\\" + number); }
  std::wstring hidKey() const { return enumeration + (L"HID\\" + product + L"\\" + number); }
};

Place placeOf(const BridgeSpec& spec, std::size_t order) {
  wchar_t product[32], number[16];
  std::swprintf(product, 32, L"VID_%04X&PID_%04X", spec.vendorId, spec.productId);
  std::swprintf(number, 16, L"%04u", static_cast<unsigned>(order));
  return {product, number};
}

// All devices of ours, in the order in which they were plugged in.
std::vector<Place> pluggedIn() {
  std::vector<std::pair<std::uint64_t, Place>> found;
  const std::wstring root = std::wstring(enumeration) + L"ROOT";
  for (const std::wstring& product : RegistryKey::open(root).children()) {
    for (const std::wstring& number : RegistryKey::open(root + L"\\" + product).children()) {
      const Place place{product, number};
      if (RegistryKey::open(place.rootKey()).text(L"Service") != hidServiceName) continue;
      const RegistryKey own = RegistryKey::open(place.rootKey() + parameters);
      found.emplace_back(own.number(orderValue), place);
    }
  }
  std::sort(found.begin(), found.end(),
            [](const auto& one, const auto& other) { return one.first < other.first; });
  std::vector<Place> places;
  for (auto& [order, place] : found) places.push_back(std::move(place));
  return places;
}

HidDeviceSettings settingsOf(const BridgeSpec& spec) {
  HidDeviceSettings settings{};
  settings.vendorId = spec.vendorId;
  settings.productId = spec.productId;
  settings.family = spec.setup.family;
  settings.firmware = static_cast<std::uint8_t>(spec.setup.firmware);
  settings.reports = static_cast<std::uint8_t>(spec.reports);
  settings.faultKind = spec.fault.kind;
  settings.firstFault = spec.fault.first;
  settings.stall_ms = spec.fault.stall_ms;
  settings.buttonPeriod_ms = spec.buttonPeriod_ms;
  if (spec.zoom) {
    settings.zoomFrom = spec.zoom->from;
    settings.zoomTo = spec.zoom->to;
    settings.sweep_ms = spec.zoom->sweep_ms;
  }
  return settings;
}

bool writeSettings(RegistryKey& own, const BridgeSpec& spec, const std::string& text) {
  const HidDeviceSettings settings = settingsOf(spec);
  return own.setText(textValue, wide(text)) &&
         own.setBytes(hidSettingsValue, &settings, sizeof settings);
}

bool writeDevice(const std::string& text, std::size_t order, std::string& problem) {
  const auto spec = bridgeSpecFrom(text, problem);
  if (!spec) return false;
  const Place place = placeOf(*spec, order);
  RegistryKey device = RegistryKey::create(place.rootKey());
  RegistryKey own = RegistryKey::create(place.rootKey() + parameters);
  if (device.setText(L"ClassGUID", L"{745a17a0-74d3-11d0-b6fe-00a0c90f57da}") &&
      device.setText(L"Class", L"HIDClass") && device.setText(L"Service", hidServiceName) &&
      own.setNumber(orderValue, order) && writeSettings(own, *spec, text)) {
    return true;
  }
  problem = "the registry cannot be written";
  return false;
}

// A child whose installation was cut short keeps this mark, and would never be listed again.
void dropPhantoms() {
  const std::wstring hid = std::wstring(enumeration) + L"HID";
  for (const std::wstring& product : RegistryKey::open(hid).children()) {
    for (const std::wstring& number : RegistryKey::open(hid + L"\\" + product).children()) {
      const Place place{product, number};
      DWORD phantom = 0, size = sizeof phantom;
      if (RegGetValueW(HKEY_LOCAL_MACHINE, place.hidKey().c_str(), L"Phantom", RRF_RT_REG_DWORD,
                       nullptr, &phantom, &size) == ERROR_SUCCESS) {
        RegistryKey::remove(place.hidKey());
      }
    }
  }
}

// The paths of the HID interfaces that are present, in lower case.
std::vector<std::wstring> listedPaths() {
  GUID hid{};
  HidD_GetHidGuid(&hid);
  const HDEVINFO devices =
      SetupDiGetClassDevsW(&hid, nullptr, nullptr, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
  std::vector<std::wstring> paths;
  SP_DEVICE_INTERFACE_DATA interface {};
  interface.cbSize = sizeof interface;
  for (DWORD i = 0; SetupDiEnumDeviceInterfaces(devices, nullptr, &hid, i, &interface); ++i) {
    constexpr DWORD room = 2048;
    alignas(8) BYTE buffer[room];
    auto* const detail = reinterpret_cast<SP_DEVICE_INTERFACE_DETAIL_DATA_W*>(buffer);
    detail->cbSize = sizeof *detail;
    if (!SetupDiGetDeviceInterfaceDetailW(devices, &interface, detail, room, nullptr, nullptr)) {
      continue;
    }
    paths.emplace_back(detail->DevicePath);
    CharLowerW(paths.back().data());
  }
  SetupDiDestroyDeviceInfoList(devices);
  return paths;
}

bool isListed(const std::vector<std::wstring>& paths, const Place& place) {
  std::wstring part = L"hid#" + place.product + L"#" + place.number;
  CharLowerW(part.data());
  return std::any_of(paths.begin(), paths.end(), [&part](const std::wstring& path) {
    return path.find(part) != std::wstring::npos;
  });
}

template <class Condition>
bool await(Condition condition) {
  constexpr DWORD pause_ms = 10;
  const ULONGLONG start = GetTickCount64();
  while (!condition()) {
    if (GetTickCount64() - start > limit_ms) return false;
    Sleep(pause_ms);
  }
  return true;
}

bool awaitListed(const std::vector<Place>& places, bool listed) {
  return await([&] {
    const std::vector<std::wstring> paths = listedPaths();
    return std::all_of(places.begin(), places.end(),
                       [&](const Place& place) { return isListed(paths, place) == listed; });
  });
}

// The driver as a service; closes itself.
class Driver {
 public:
  Driver() : manager_(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)) {
    service_ = OpenServiceW(manager_, hidServiceName, SERVICE_ALL_ACCESS);
  }
  ~Driver() {
    if (service_ != nullptr) CloseServiceHandle(service_);
    if (manager_ != nullptr) CloseServiceHandle(manager_);
  }
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  bool isInstalled() const { return service_ != nullptr; }

  bool install(const std::wstring& path) {
    if (service_ != nullptr) {
      return ChangeServiceConfigW(service_, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE,
                                  path.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr,
                                  nullptr) != FALSE;
    }
    // Only drivers of this group are told of the devices below the root bus.
    service_ = CreateServiceW(manager_, hidServiceName, hidServiceName, SERVICE_ALL_ACCESS,
                              SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                              path.c_str(), L"WinePlugPlay", nullptr, nullptr, nullptr, nullptr);
    return service_ != nullptr;
  }

  bool start() {
    return await([this] {
      return StartServiceW(service_, 0, nullptr) || GetLastError() == ERROR_SERVICE_ALREADY_RUNNING;
    });
  }

  // Makes the driver look at the root bus again.
  bool enumerate() {
    constexpr DWORD enumerateRootDevices = 128;
    SERVICE_STATUS status;
    return await([&] { return ControlService(service_, enumerateRootDevices, &status) != FALSE; });
  }

  // So that the next start loads the driver's file as it is then.
  void stop() {
    SERVICE_STATUS status;
    ControlService(service_, SERVICE_CONTROL_STOP, &status);
  }

 private:
  SC_HANDLE manager_, service_;
};

bool setUp(std::span<const std::string> texts, const std::wstring& driverPath,
           std::string& problem) {
  if (!isThere(driverPath, problem)) return false;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (!writeDevice(texts[i], i, problem)) return false;
  }
  dropPhantoms();
  Driver driver;
  if (!driver.install(driverPath) || !driver.start() || !driver.enumerate()) {
    problem = "the driver does not start";
    return false;
  }
  if (awaitListed(pluggedIn(), true)) return true;
  problem = "the system does not list the devices";
  return false;
}

}  // namespace

bool plugHidDevices(std::span<const std::string> texts, const std::wstring& driver,
                    std::string& problem) {
  unplugHidDevices();
  if (setUp(texts, driver, problem)) return true;
  unplugHidDevices();
  return false;
}

void unplugHidDevices() {
  const std::vector<Place> places = pluggedIn();
  if (places.empty()) return;
  for (const Place& place : places) RegistryKey::remove(place.rootKey());
  Driver driver;
  if (!driver.isInstalled()) return;
  if (driver.start() && driver.enumerate()) awaitListed(places, false);
  driver.stop();
}

std::wstring driverBesideProgram() {
  return programFolder() + L"qvx-hid-bridge.sys";
}

std::optional<std::string> hidDeviceText(std::size_t device) {
  const std::vector<Place> places = pluggedIn();
  if (device >= places.size()) return std::nullopt;
  const auto text = RegistryKey::open(places[device].rootKey() + parameters).text(textValue);
  return text ? std::optional(narrow(*text)) : std::nullopt;
}

bool changeHidDevice(std::size_t device, std::string_view options, std::string& problem) {
  const auto text = hidDeviceText(device);
  if (!text) {
    problem = "there is no such device";
    return false;
  }
  const std::string changed = withOptions(*text, options);
  const auto spec = bridgeSpecFrom(changed, problem);
  if (!spec) return false;
  RegistryKey own =
      RegistryKey::open(pluggedIn().at(device).rootKey() + parameters, KEY_ALL_ACCESS);
  if (writeSettings(own, *spec, changed)) return true;
  problem = "the registry cannot be written";
  return false;
}

std::optional<HidDeviceState> hidDeviceState(std::size_t device) {
  const std::vector<Place> places = pluggedIn();
  HidDeviceState state;
  if (device >= places.size() || !RegistryKey::open(places[device].rootKey() + parameters)
                                      .bytes(hidStateValue, &state, sizeof state)) {
    return std::nullopt;
  }
  return state;
}

}  // namespace qvx::simulator
