// HID devices: nodes below the root bus of a Wine prefix, and the driver that serves them. They are
// there while the process that plugged them in, or another ordinary one of the prefix, is running.
#include <windows.h>
// mingw-w64's HID headers do not say that the library is C.
extern "C" {
#include <hidsdi.h>
}
#include <setupapi.h>

#include <algorithm>
#include <cstdio>

#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/registry_key.h"
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t enumeration[] = L"System\\CurrentControlSet\\Enum\\";
constexpr wchar_t parameters[] = L"\\Device Parameters";

constexpr DWORD limit_ms = 20'000;

// Where a device stands: "VID_3C7E&PID_0970\0000" below the root bus, and its child below HID.
struct Place {
  std::wstring product, number;

  std::wstring rootKey() const { return enumeration + (L"ROOT\\" + product + L"\\" + number); }
  std::wstring hidKey() const { return enumeration + (L"HID\\" + product + L"\\" + number); }
};

// The number is the first that no other device of the product has.
Place placeFor(const CameraSpec& spec) {
  wchar_t product[32], number[16];
  std::swprintf(product, 32, L"VID_%04X&PID_%04X", spec.vendorId, spec.productId);
  for (unsigned i = 0;; ++i) {
    std::swprintf(number, 16, L"%04u", i);
    const Place place{product, number};
    if (!RegistryKey::open(place.rootKey()).text(L"Service")) return place;
  }
}

// All devices of ours, served or not.
std::vector<Place> pluggedIn() {
  std::vector<Place> places;
  const std::wstring root = std::wstring(enumeration) + L"ROOT";
  for (const std::wstring& product : RegistryKey::open(root).children()) {
    for (const std::wstring& number : RegistryKey::open(root + L"\\" + product).children()) {
      const Place place{product, number};
      if (RegistryKey::open(place.rootKey()).text(L"Service") == hidServiceName) {
        places.push_back(place);
      }
    }
  }
  return places;
}

bool writeDevice(const ServedCamera& served, const Place& place) {
  RegistryKey device = RegistryKey::create(place.rootKey());
  RegistryKey own = RegistryKey::create(place.rootKey() + parameters);
  return device.setText(L"ClassGUID", L"{745a17a0-74d3-11d0-b6fe-00a0c90f57da}") &&
         device.setText(L"Class", L"HIDClass") && own.setText(pipeValueName, served.pipe) &&
         device.setText(L"Service", hidServiceName);
}

bool isServed(const Place& place) {
  const auto pipe = RegistryKey::open(place.rootKey() + parameters).text(pipeValueName);
  return pipe && qvx::simulator::isServed(*pipe);
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

}  // namespace

std::string HidPlugs::plugIn(const ServedCameras& cameras) {
  const std::wstring driverFile = programFolder() + L"qvx-hid-bridge.sys";
  std::vector<Place> places;
  for (const ServedCamera& served : cameras) {
    if (served.camera.spec().transport != Transport::hid) continue;
    places.push_back(placeFor(served.camera.spec()));
    if (std::string problem = missing(driverFile); !problem.empty()) return problem;
    if (!writeDevice(served, places.back())) {
      return "the registry's list of devices cannot be written";
    }
  }
  if (places.empty()) return {};
  dropPhantoms();
  Driver driver;
  if (!driver.install(driverFile) || !driver.start() || !driver.enumerate()) {
    return "the HID driver does not start";
  }
  return awaitListed(places, true) ? "" : "the system does not list the HID devices";
}

void HidPlugs::sweep() {
  std::vector<Place> gone;
  const std::vector<Place> all = pluggedIn();
  std::copy_if(all.begin(), all.end(), std::back_inserter(gone),
               [](const Place& place) { return !isServed(place); });
  if (gone.empty()) return;
  for (const Place& place : gone) RegistryKey::remove(place.rootKey());
  Driver driver;
  if (!driver.isInstalled()) return;
  if (driver.start() && driver.enumerate()) awaitListed(gone, false);
  if (gone.size() == all.size()) driver.stop();
}

}  // namespace qvx::simulator
