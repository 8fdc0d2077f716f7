// USB 3 devices: in a list that the stand-in libusbK.dll reads, which lies where the driver's
// installer would put the genuine one.
#include <windows.h>
// The process's own headers follow windows.h.
#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/registry_key.h"
#include "simulator/fronts/text.h"
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t installedValue[] = L"Installed";  // the stand-in is ours to take away

std::wstring systemLibrary() {
  wchar_t folder[MAX_PATH];
  return std::wstring(folder, GetSystemDirectoryW(folder, MAX_PATH)) + L"\\libusbK.dll";
}

// A genuine library stays, and so does a stand-in that a process still has loaded. Where one lies
// beside the program, that is meant.
std::string install() {
  if (missing(programFolder() + L"libusbK.dll").empty()) return {};
  const std::wstring standIn = programFolder() + L"usb3\\libusbK.dll";
  if (std::string problem = missing(standIn); !problem.empty()) return problem;
  RegistryKey list = RegistryKey::create(usb3Devices);
  const bool ours = list.number(installedValue) != 0;
  const bool copied = CopyFileW(standIn.c_str(), systemLibrary().c_str(), !ours) != FALSE;
  if (copied || ours)
    return list.setNumber(installedValue, 1) ? "" : "the registry cannot be written";
  return GetLastError() == ERROR_FILE_EXISTS
             ? "this machine has a libusbK.dll of its own: USB 3 cameras cannot be simulated on it"
             : "libusbK.dll cannot be put into the system's folder";
}

}  // namespace

std::string Usb3Plugs::plugIn(const ServedCameras& cameras) {
  std::string problem;
  for (const ServedCamera& served : cameras) {
    const CameraSpec& spec = served.camera.spec();
    if (spec.transport != Transport::usb3 || !problem.empty()) continue;
    problem = install();
    RegistryKey device =
        RegistryKey::create(std::wstring(usb3Devices) + L"\\" + std::to_wstring(served.order));
    const bool done = device.setNumber(L"VendorId", spec.vendorId) &&
                      device.setNumber(L"ProductId", spec.productId) &&
                      device.setText(L"Description", wide(spec.name)) &&
                      device.setText(pipeValueName, served.pipe);
    if (!done) problem = "the registry's list of USB 3 devices cannot be written";
  }
  return problem;
}

void Usb3Plugs::sweep() {
  const std::wstring list = usb3Devices;
  bool anyLeft = false;
  for (const std::wstring& name : RegistryKey::open(list).children()) {
    const auto pipe = RegistryKey::open(list + L"\\" + name).text(pipeValueName);
    const bool served = pipe && isServed(*pipe);
    if (!served) RegistryKey::remove(list + L"\\" + name);
    anyLeft = anyLeft || served;
  }
  if (anyLeft || RegistryKey::open(list).number(installedValue) == 0) return;
  if (DeleteFileW(systemLibrary().c_str())) RegistryKey::remove(list);
}

}  // namespace qvx::simulator
