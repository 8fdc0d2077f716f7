// A stand-in for libusbK.dll: the USB 3 cameras of all simulators on this machine.
#include <array>
#include <bit>
#include <cstdio>

#include "platform/libusbk.h"
#include "simulator/fronts/camera_list.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/text.h"
#include "simulator/model/usb3_device_list.h"

namespace {

using namespace qvx::simulator;

using qvx::platform::KLST_DEVINFO;
using qvx::platform::KUSB_DRIVER_API;
using qvx::platform::WINUSB_PIPE_INFORMATION;
using qvx::platform::WINUSB_SETUP_PACKET;

using DeviceList = Usb3DeviceList<KLST_DEVINFO>;

// The device path of a record is the camera's pipe.
KLST_DEVINFO recordOf(const CameraRecord& camera) {
  KLST_DEVINFO record{};
  record.Common.Vid = camera.vendorId;
  record.Common.Pid = camera.productId;
  record.Connected = 1;
  const auto copy = [](auto& field, const std::string& text) {
    std::snprintf(field, sizeof field, "%s", text.c_str());
  };
  copy(record.Common.InstanceID, std::to_string(camera.order));
  copy(record.DevicePath, narrow(camera.pipe));
  copy(record.DeviceDesc, camera.name);
  copy(record.Mfg, "QVX64");
  return record;
}

// Handles are never closed: all clients of a camera share one.
BOOL WINAPI openDevice(void** handle, const KLST_DEVINFO* record) {
  const std::wstring pipe = wide(record->DevicePath);
  if (!isServed(pipe)) {
    SetLastError(ERROR_GEN_FAILURE);
    return FALSE;
  }
  *handle = &PipeClient::of(pipe);
  return TRUE;
}

// One pipe for the video stream, one for status interrupts.
BOOL WINAPI queryPipe(void* /*handle*/, std::uint8_t alternateSetting, std::uint8_t index,
                      WINUSB_PIPE_INFORMATION* pipe) {
  constexpr std::array<WINUSB_PIPE_INFORMATION, 2> pipes = {{{2, 0x81, 1024, 0}, {3, 0x82, 64, 8}}};
  if (alternateSetting != 0 || index >= pipes.size()) return FALSE;
  *pipe = pipes[index];
  return TRUE;
}

}  // namespace

extern "C" {

BOOL WINAPI LstK_Init(void** list, int) {
  std::vector<KLST_DEVINFO> devices;
  for (const CameraRecord& camera : listedCameras()) {
    if (camera.isUsb3 && isServed(camera.pipe)) devices.push_back(recordOf(camera));
  }
  *list = new DeviceList(std::move(devices));
  return TRUE;
}

BOOL WINAPI LstK_Count(void* list, std::uint32_t* count) {
  if (list == nullptr) return FALSE;
  *count = static_cast<std::uint32_t>(static_cast<DeviceList*>(list)->size());
  return TRUE;
}

BOOL WINAPI LstK_FindByVidPid(void* list, int vendorId, int productId, KLST_DEVINFO** found) {
  *found = static_cast<DeviceList*>(list)->find([=](const KLST_DEVINFO& record) {
    return record.Common.Vid == vendorId && record.Common.Pid == productId;
  });
  return *found != nullptr;
}

BOOL WINAPI LstK_MoveNext(void* list, KLST_DEVINFO** next) {
  *next = static_cast<DeviceList*>(list)->next();
  return *next != nullptr;
}

BOOL WINAPI LstK_Free(void* list) {
  delete static_cast<DeviceList*>(list);
  return TRUE;
}

BOOL WINAPI LibK_LoadDriverAPI(KUSB_DRIVER_API* functions, int) {
  *functions = {{}, openDevice, {}, queryPipe, {}};
  return TRUE;
}

BOOL WINAPI UsbK_ControlTransfer(void* handle, WINUSB_SETUP_PACKET setup, std::uint8_t* buffer,
                                 std::uint32_t length, std::uint32_t* transferred, OVERLAPPED*) {
  constexpr std::uint8_t toHost = 0x80;
  if (handle == nullptr) return FALSE;
  const bool sets = (setup.RequestType & toHost) == 0;
  const RequestHead head{RequestKind::control, sets, 0, {}, std::bit_cast<UsbSetup>(setup)};
  const auto moved = static_cast<PipeClient*>(handle)->transfer(head, {buffer, length});
  if (!moved) return FALSE;
  *transferred = static_cast<std::uint32_t>(*moved);
  return TRUE;
}

}  // extern "C"
