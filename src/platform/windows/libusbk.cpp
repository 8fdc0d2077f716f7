#include "platform/libusbk.h"
#include "platform/system.h"

#include <windows.h>

#include <array>
#include <string>

#include "platform/windows/module.h"

namespace qvx::platform {

namespace {

// The entry points of libusbK.dll that are called here.
struct EntryPoints {
  BOOL(WINAPI* LstK_Init)(KLST_HANDLE*, int);
  BOOL(WINAPI* LstK_Count)(KLST_HANDLE, std::uint32_t*);
  BOOL(WINAPI* LstK_FindByVidPid)(KLST_HANDLE, int, int, KLST_DEVINFO**);
  BOOL(WINAPI* LstK_MoveNext)(KLST_HANDLE, KLST_DEVINFO**);
  BOOL(WINAPI* LstK_Free)(KLST_HANDLE);
  BOOL(WINAPI* LibK_LoadDriverAPI)(KUSB_DRIVER_API*, int);
  BOOL(WINAPI* UsbK_ControlTransfer)
  (KUSB_HANDLE, WINUSB_SETUP_PACKET, std::uint8_t*, std::uint32_t, std::uint32_t*, OVERLAPPED*);
};

EntryPoints library;
bool loaded = false;

std::wstring folderOf(HMODULE module) {
  const std::wstring path = pathOf(module);
  return path.substr(0, path.find_last_of(L'\\') + 1);
}

std::wstring systemFolder() {
  std::array<wchar_t, MAX_PATH> path{};
  const UINT length = GetSystemDirectoryW(path.data(), static_cast<UINT>(path.size()));
  return std::wstring(path.data(), length) + L'\\';
}

// Where it may be. By full path only: a libusbK.dll in the current folder must not be picked up.
// Hosts such as Python keep our DLL and it in a folder of their own.
std::array<std::wstring, 3> libraryPaths() {
  constexpr wchar_t name[] = L"libusbK.dll";
  return {folderOf(nullptr) + name, folderOf(ownModule()) + name, systemFolder() + name};
}

HMODULE loadLibrary() {
  for (const std::wstring& path : libraryPaths()) {
    const HMODULE module = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (module != nullptr) return module;
  }
  return nullptr;
}

template <class Function>
bool resolve(HMODULE module, const char* name, Function& function) {
  function = reinterpret_cast<Function>(reinterpret_cast<void (*)()>(GetProcAddress(module, name)));
  return function != nullptr;
}

bool resolveAll(HMODULE module, EntryPoints& entries) {
  return resolve(module, "LstK_Init", entries.LstK_Init) &&
         resolve(module, "LstK_Count", entries.LstK_Count) &&
         resolve(module, "LstK_FindByVidPid", entries.LstK_FindByVidPid) &&
         resolve(module, "LstK_MoveNext", entries.LstK_MoveNext) &&
         resolve(module, "LstK_Free", entries.LstK_Free) &&
         resolve(module, "LibK_LoadDriverAPI", entries.LibK_LoadDriverAPI) &&
         resolve(module, "UsbK_ControlTransfer", entries.UsbK_ControlTransfer);
}

// Loads the library at first use and keeps it. Without it, looks again at the next use.
bool load() {
  if (loaded) return true;
  const HMODULE module = loadLibrary();
  if (module == nullptr) return false;
  loaded = resolveAll(module, library);
  if (!loaded) FreeLibrary(module);
  return loaded;
}

}  // namespace

std::wstring usbLibraryPath() {
  for (const std::wstring& path : libraryPaths()) {
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) return path;
  }
  return L"";
}

bool system::LstK_Init(KLST_HANDLE* deviceList, int flags) {
  return load() && library.LstK_Init(deviceList, flags) != FALSE;
}

bool LstK_Count(KLST_HANDLE deviceList, std::uint32_t* count) {
  return loaded && library.LstK_Count(deviceList, count) != FALSE;
}

bool system::LstK_FindByVidPid(KLST_HANDLE deviceList, int vid, int pid,
                               KLST_DEVINFO** deviceInfo) {
  return loaded && library.LstK_FindByVidPid(deviceList, vid, pid, deviceInfo) != FALSE;
}

bool system::LstK_MoveNext(KLST_HANDLE deviceList, KLST_DEVINFO** deviceInfo) {
  return loaded && library.LstK_MoveNext(deviceList, deviceInfo) != FALSE;
}

bool LstK_Free(KLST_HANDLE deviceList) {
  return loaded && library.LstK_Free(deviceList) != FALSE;
}

bool system::LibK_LoadDriverAPI(KUSB_DRIVER_API* driverApi, int driverId) {
  return loaded && library.LibK_LoadDriverAPI(driverApi, driverId) != FALSE;
}

bool system::UsbK_ControlTransfer(KUSB_HANDLE interfaceHandle, WINUSB_SETUP_PACKET setup,
                                  std::uint8_t* buffer, std::uint32_t length,
                                  std::uint32_t* transferred) {
  return loaded && library.UsbK_ControlTransfer(interfaceHandle, setup, buffer, length, transferred,
                                                nullptr) != FALSE;
}

}  // namespace qvx::platform
