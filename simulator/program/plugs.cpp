#include "simulator/program/plugs.h"

#include <algorithm>
#include <cstdio>

#include "simulator/fronts/handle.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/text.h"
#include "simulator/program/pipe_server.h"

namespace qvx::simulator {

namespace {

// One thread of all processes at a time plugs or unplugs; a mutex is released even if its owner is
// killed.
struct Exclusive {
  static constexpr DWORD limit_ms = 60'000;

  Exclusive() { WaitForSingleObject(mutex.get(), limit_ms); }
  ~Exclusive() { ReleaseMutex(mutex.get()); }

  const Handle mutex{CreateMutexW(nullptr, FALSE, L"qvx-simulator-plugs")};
};

CameraRecord recordOf(const CameraDescription& camera) {
  CameraRecord record{};
  GetSystemTimePreciseAsFileTime(reinterpret_cast<FILETIME*>(&record.order));
  std::swprintf(record.pipe, std::size(record.pipe), L"qvx-simulator-%016llx", record.order);
  std::snprintf(record.name, sizeof record.name, "%s", camera.name.c_str());
  record.vendorId = camera.vendorId;
  record.productId = camera.productId;
  record.unit = camera.unit;
  record.isUsb3 = camera.transport == Transport::usb3;
  record.isHid = camera.transport == Transport::hid;
  return record;
}

constexpr const DeviceKind* deviceKinds[] = {&videoInputs, &usb3Devices, &hidDevices};

CameraRecords ofKind(const DeviceKind& kind, const CameraRecords& cameras) {
  CameraRecords result;
  std::ranges::copy_if(cameras, std::back_inserter(result), kind.includes);
  return result;
}

}  // namespace

std::wstring programPath() {
  constexpr DWORD longestPath = 32768;
  std::wstring path(longestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
  return path;
}

std::wstring programFolder() {
  const std::wstring path = programPath();
  return path.substr(0, path.rfind(L'\\') + 1);
}

std::string missing(const std::wstring& file) {
  if (GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES) return {};
  return std::string("missing: ").append(narrow(file));
}

std::wstring readText(const std::wstring& key, const wchar_t* name) {
  wchar_t text[1024];
  DWORD size = sizeof text;
  const LSTATUS status =
      RegGetValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size);
  return status == ERROR_SUCCESS ? text : L"";
}

bool writeText(const std::wstring& key, const wchar_t* name, const std::wstring& text) {
  return RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, REG_SZ, text.c_str(),
                         static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

ServedDesk::ServedDesk(Desk& desk) : desk_(desk) {
  const Exclusive exclusive;
  sweepPlugs();
  CameraRecords cameras;
  for (const auto& camera : desk.cameras()) {
    if (camera->description().transport != Transport::wifi) cameras.push_back(serve(*camera));
  }
  for (const DeviceKind* const kind : deviceKinds) {
    const CameraRecords mine = ofKind(*kind, cameras);
    if (problem_.empty() && !mine.empty()) problem_ = kind->plugIn(mine);
  }
}

CameraRecord ServedDesk::serve(PluggedCamera& camera) {
  CameraRecord record = recordOf(camera.description());
  const auto reports =
      camera.with([](CameraDevice& device) { return device.hid.reportDescriptor(); });
  record.reportDescriptorSize = static_cast<std::uint16_t>(reports.size());
  std::ranges::copy(reports, record.reportDescriptor);
  const CameraRecords others = listedCameras();
  if (!others.empty()) record.number = others.back().number + 1;
  PipeServer& server = *servers_.emplace_back(std::make_unique<PipeServer>(camera, record.pipe));
  camera.onHearing = [&camera, &server] {
    if (!camera.isPluggedIn()) server.close();
  };
  if (!addToList(record)) problem_ = "the registry's list of cameras cannot be written";
  return record;
}

ServedDesk::~ServedDesk() {
  desk_.close();
  servers_.clear();
  sweepPlugs();
}

void sweepPlugs() {
  const Exclusive exclusive;
  CameraRecords left, gone;
  for (const CameraRecord& camera : listedCameras()) {
    (isServed(camera.pipe) ? left : gone).push_back(camera);
  }
  for (const DeviceKind* const kind : deviceKinds) {
    kind->takeOut(ofKind(*kind, gone), ofKind(*kind, left).empty());
  }
  for (const CameraRecord& camera : gone) dropFromList(camera);
}

}  // namespace qvx::simulator
