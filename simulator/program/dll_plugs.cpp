// Devices that applications reach through a DLL: ours replaces the system's until the last camera
// is unplugged.
#include "simulator/program/plugs.h"

namespace qvx::simulator {

namespace {

// Our device enumerator lists video inputs with display names like those of real cameras, in the
// order of plugging in.
constexpr wchar_t deviceEnumerator[] =
    L"Software\\Classes\\CLSID\\{62BE5D10-60EB-11D0-BD3B-00A0C911CE86}\\InprocServer32";
constexpr wchar_t replacedValue[] = L"SimulatorReplaced";  // the system's DLL

// Does not save the value again if an earlier run has replaced it already.
std::string replaceEnumerator(const CameraRecords& /*cameras*/) {
  const std::wstring filterDll = programFolder() + L"qvx-capture-filter.dll";
  if (std::string problem = missing(filterDll); !problem.empty()) return problem;
  const bool kept = !readText(deviceEnumerator, replacedValue).empty() ||
                    writeText(deviceEnumerator, replacedValue, readText(deviceEnumerator, L""));
  return kept && writeText(deviceEnumerator, L"", filterDll)
             ? ""
             : "the system's device enumerator cannot be replaced";
}

void restoreEnumerator(const CameraRecords& /*cameras*/, bool last) {
  const std::wstring own = readText(deviceEnumerator, replacedValue);
  if (!last || own.empty() || !writeText(deviceEnumerator, L"", own)) return;
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, deviceEnumerator, replacedValue);
}

// The stand-in libusbK.dll is copied to where the driver's installer would put the genuine one.
constexpr wchar_t ownKey[] = L"Software\\qvx-simulator\\usb3";
constexpr wchar_t installedValue[] = L"Installed";  // we installed it, so we remove it

// Keeps a genuine library, and a stand-in that a process still has loaded. A libusbK.dll beside the
// program takes precedence anyway.
std::string installStandIn(const CameraRecords& /*cameras*/) {
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

void removeStandIn(const CameraRecords& /*cameras*/, bool last) {
  const std::wstring installed = readText(ownKey, installedValue);
  if (!last || installed.empty() || !DeleteFileW(installed.c_str())) return;
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, ownKey, installedValue);
}

}  // namespace

const DeviceKind videoInputs = {
    [](const CameraRecord& camera) { return camera.unit != Unit::absent; }, replaceEnumerator,
    restoreEnumerator};
const DeviceKind usb3Devices = {[](const CameraRecord& camera) { return camera.isUsb3; },
                                installStandIn, removeStandIn};

}  // namespace qvx::simulator
