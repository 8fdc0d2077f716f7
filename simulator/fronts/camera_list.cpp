#include "simulator/fronts/camera_list.h"

#include <algorithm>
#include <iterator>

namespace qvx::simulator {

namespace {

// One value per camera, named after its pipe.
constexpr wchar_t listKey[] = L"Software\\qvx-simulator\\cameras";

}  // namespace

CameraRecords listedCameras() {
  CameraRecords cameras;
  HKEY list = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, listKey, 0, KEY_READ, &list) != ERROR_SUCCESS) return {};
  for (DWORD i = 0;; ++i) {
    CameraRecord camera;
    wchar_t name[std::size(camera.pipe)];
    DWORD length = std::size(name), size = sizeof camera;
    const LSTATUS status = RegEnumValueW(list, i, name, &length, nullptr, nullptr,
                                         reinterpret_cast<BYTE*>(&camera), &size);
    if (status != ERROR_SUCCESS && status != ERROR_MORE_DATA) break;
    if (status == ERROR_SUCCESS && size == sizeof camera) cameras.push_back(camera);
  }
  RegCloseKey(list);
  std::ranges::sort(cameras, {}, &CameraRecord::order);
  return cameras;
}

bool addToList(const CameraRecord& camera) {
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, listKey, camera.pipe, REG_BINARY, &camera,
                         sizeof camera) == ERROR_SUCCESS;
}

void dropFromList(const CameraRecord& camera) {
  RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, listKey, camera.pipe);
}

}  // namespace qvx::simulator
