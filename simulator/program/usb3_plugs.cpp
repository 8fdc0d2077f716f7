// USB 3 devices: the stand-in libusbK.dll, where the driver's installer would put the genuine one.
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

constexpr wchar_t ownKey[] = L"Software\\qvx-simulator\\usb3";
constexpr wchar_t installedValue[] = L"Installed";  // the stand-in is ours to take away

// A genuine library stays, and so does a stand-in that a process still has loaded. Where one lies
// beside the program, that is meant.
std::string install(const CameraRecords& /*cameras*/) {
  if (missing(programFolder() + L"libusbK.dll").empty()) return {};
  wchar_t folder[MAX_PATH];
  const std::wstring system(folder, GetSystemDirectoryW(folder, MAX_PATH)),
      place = system + L"\\libusbK.dll", standIn = programFolder() + L"usb3\\libusbK.dll";
  if (std::string problem = missing(standIn); !problem.empty()) return problem;
  const bool ours = RegGetValueW(HKEY_LOCAL_MACHINE, ownKey, installedValue, RRF_RT_ANY, nullptr,
                                 nullptr, nullptr) == ERROR_SUCCESS;
  const bool copied = CopyFileW(standIn.c_str(), place.c_str(), !ours) != FALSE;
  if (copied || ours) {
    return writeText(ownKey, installedValue, place) ? "" : "the registry cannot be written";
  }
  return GetLastError() == ERROR_FILE_EXISTS
             ? "this machine has a libusbK.dll of its own: USB 3 cameras cannot be simulated on it"
             : "libusbK.dll cannot be put into the system's folder";
}

void uninstall(const CameraRecords& /*cameras*/, bool last) {
  const std::wstring installed = readText(ownKey, installedValue);
  if (!last || installed.empty() || !DeleteFileW(installed.c_str())) return;
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, ownKey, installedValue);
}

}  // namespace

const DeviceKind usb3Devices = {[](const CameraRecord& camera) { return camera.isUsb3; }, install,
                                uninstall};

}  // namespace qvx::simulator
