// HID devices: nodes below the root bus of a Wine prefix, and the driver that serves them. They
// exist while the process that plugged them in, or any other user process of the prefix, is
// running.
#include <algorithm>
#include <cstdio>

#include "simulator/fronts/handle.h"
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t serviceName[] = L"qvx-hid-bridge";
constexpr wchar_t enumeration[] = L"System\\CurrentControlSet\\Enum\\";
constexpr wchar_t interfaces[] =
    L"System\\CurrentControlSet\\Control\\DeviceClasses\\{4d1e55b2-f16f-11cf-88cb-001111000030}\\";

// "VID_3C7E&PID_0970\0000" (interface names use another separator): the same below the root bus
// and, for the child that the HID class driver creates, below HID.
std::wstring instanceOf(const CameraRecord& camera, wchar_t separator = L'\\') {
  wchar_t text[40];
  std::swprintf(text, std::size(text), L"VID_%04X&PID_%04X%lc%04u", camera.vendorId,
                camera.productId, separator, camera.number);
  return text;
}

// `bus` is "ROOT" or "HID".
std::wstring keyOf(const CameraRecord& camera, const wchar_t* bus) {
  return std::wstring(enumeration) + bus + L'\\' + instanceOf(camera);
}

bool isSet(const std::wstring& key, const wchar_t* flag) {
  DWORD value = 0, size = sizeof value;
  RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), flag, RRF_RT_REG_DWORD, nullptr, &value, &size);
  return value != 0;
}

bool writeDevice(const CameraRecord& camera) {
  // A child whose installation was interrupted keeps this value and would never be listed again.
  const std::wstring child = keyOf(camera, L"HID"), device = keyOf(camera, L"ROOT");
  if (isSet(child, L"Phantom")) RegDeleteTreeW(HKEY_LOCAL_MACHINE, child.c_str());
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, (device + L"\\Device Parameters").c_str(),
                         recordValueName, REG_BINARY, &camera, sizeof camera) == ERROR_SUCCESS &&
         writeText(device, L"ClassGUID", L"{745a17a0-74d3-11d0-b6fe-00a0c90f57da}") &&
         writeText(device, L"Class", L"HIDClass") && writeText(device, L"Service", serviceName);
}

template <class Condition>
bool await(Condition condition) {
  constexpr DWORD pause_ms = 10, limit_ms = 20'000;
  const ULONGLONG end_ms = GetTickCount64() + limit_ms;
  for (; !condition(); Sleep(pause_ms)) {
    if (GetTickCount64() > end_ms) return false;
  }
  return true;
}

// The system lists a device while its interface has this value.
bool awaitListed(const CameraRecords& cameras, bool listed) {
  return await([&] {
    return std::ranges::all_of(cameras, [listed](const CameraRecord& camera) {
      const std::wstring key = std::wstring(interfaces) + L"##?#HID#" + instanceOf(camera, L'#') +
                               L"#{4d1e55b2-f16f-11cf-88cb-001111000030}\\#\\Control";
      return isSet(key, L"Linked") == listed;
    });
  });
}

using Service = std::unique_ptr<SC_HANDLE__, Closing<CloseServiceHandle>>;

// Opens the driver's service and, if `file` is given, installs it with that file. Null if it is not
// installed. Wine reports the devices of the root bus only to drivers of this group.
Service driverFrom(const wchar_t* file) {
  const Service all(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
  Service driver(OpenServiceW(all.get(), serviceName, SERVICE_ALL_ACCESS));
  if (driver != nullptr) {
    ChangeServiceConfigW(driver.get(), SERVICE_NO_CHANGE, SERVICE_NO_CHANGE, SERVICE_NO_CHANGE,
                         file, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  } else if (file != nullptr) {
    driver.reset(CreateServiceW(all.get(), serviceName, serviceName, SERVICE_ALL_ACCESS,
                                SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                file, L"WinePlugPlay", nullptr, nullptr, nullptr, nullptr));
  }
  return driver;
}

// Starts the driver and makes it enumerate the root bus again.
bool enumerate(const Service& driver) {
  constexpr DWORD enumerateRootDevices = 128;
  SERVICE_STATUS status;
  return await([&] {
    StartServiceW(driver.get(), 0, nullptr);
    return ControlService(driver.get(), enumerateRootDevices, &status) != FALSE;
  });
}

std::string plugIn(const CameraRecords& cameras) {
  const std::wstring driverFile = programFolder() + L"qvx-hid-bridge.sys";
  if (std::string problem = missing(driverFile); !problem.empty()) return problem;
  if (!std::ranges::all_of(cameras, writeDevice)) {
    return "the registry's list of devices cannot be written";
  }
  if (!enumerate(driverFrom(driverFile.c_str()))) return "the HID driver does not start";
  return awaitListed(cameras, true) ? "" : "the system does not list the HID devices";
}

// Stops the driver after the last camera, so that the next start loads the current file.
void takeOut(const CameraRecords& cameras, bool last) {
  if (cameras.empty()) return;
  for (const CameraRecord& camera : cameras) {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, keyOf(camera, L"ROOT").c_str());
  }
  const Service driver = driverFrom(nullptr);
  if (driver == nullptr) return;
  if (enumerate(driver)) awaitListed(cameras, false);
  SERVICE_STATUS status;
  if (last) ControlService(driver.get(), SERVICE_CONTROL_STOP, &status);
}

}  // namespace

const DeviceKind hidDevices = {[](const CameraRecord& camera) { return camera.isHid; }, plugIn,
                               takeOut};

}  // namespace qvx::simulator
