// A stand-in for libusbK.dll: the USB 3 cameras of all simulators that run on this machine.
#include <array>
#include <cstdio>
#include <cstring>

#include "simulator/fronts/camera_list.h"
#include "simulator/fronts/pipe_client.h"
#include "simulator/fronts/text.h"
#include "simulator/model/usb3_device_list.h"
#include "simulator/model/usb3_function.h"

namespace {

using namespace qvx::simulator;

constexpr std::size_t textSize = 256;

// The library's record of a device, as its clients know it.
struct DeviceRecord {
  std::int32_t vendorId, productId, interfaceNumber;
  char instance[textSize];
  std::int32_t driver;
  char interfaceGuid[textSize], deviceId[textSize], classGuid[textSize], maker[textSize],
      description[textSize], service[textSize], symbolicLink[textSize], path[textSize];
  std::int32_t filterIndex, connected, syncFlags, bus, address;
  char serialNumber[textSize];
};
static_assert(sizeof(DeviceRecord) == 2596);

using DeviceList = Usb3DeviceList<DeviceRecord>;

// A record's path is the camera's pipe.
DeviceRecord recordOf(const CameraRecord& camera) {
  DeviceRecord record{};
  record.vendorId = camera.vendorId;
  record.productId = camera.productId;
  record.connected = 1;
  const auto copy = [](char(&field)[textSize], const std::string& text) {
    std::snprintf(field, textSize, "%s", text.c_str());
  };
  copy(record.instance, std::to_string(camera.order));
  copy(record.path, narrow(camera.pipe));
  copy(record.description, camera.name);
  copy(record.maker, "QVX64");
  return record;
}

// Handles are never closed: one of each camera serves all its clients.
BOOL WINAPI openDevice(void** handle, DeviceRecord* record) {
  const std::wstring pipe = wide(record->path);
  if (!isServed(pipe)) {
    SetLastError(ERROR_GEN_FAILURE);
    return FALSE;
  }
  *handle = &PipeClient::of(pipe);
  return TRUE;
}

struct PipeInformation {
  std::int32_t type;
  std::uint8_t id;
  std::uint16_t maximumPacketSize;
  std::uint8_t interval;
};

// The video stream and the status interrupt.
BOOL WINAPI queryPipe(void* /*handle*/, std::uint8_t alternateSetting, std::uint8_t index,
                      PipeInformation* pipe) {
  constexpr std::array<PipeInformation, 2> pipes = {{{2, 0x81, 1024, 0}, {3, 0x82, 64, 8}}};
  if (alternateSetting != 0 || index >= pipes.size()) return FALSE;
  *pipe = pipes[index];
  return TRUE;
}

// A driver's functions: the ones that clients call, at their places in the table.
struct DriverFunctions {
  void* information;
  decltype(&openDevice) open;
  void* unused_1[20];
  decltype(&queryPipe) queryPipe;
  void* unused_2[41];
};
static_assert(sizeof(DriverFunctions) == 512);

}  // namespace

extern "C" {

BOOL WINAPI LstK_Init(void** list, int) {
  std::vector<DeviceRecord> devices;
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

BOOL WINAPI LstK_FindByVidPid(void* list, int vendorId, int productId, DeviceRecord** found) {
  *found = static_cast<DeviceList*>(list)->find([=](const DeviceRecord& record) {
    return record.vendorId == vendorId && record.productId == productId;
  });
  return *found != nullptr;
}

BOOL WINAPI LstK_MoveNext(void* list, DeviceRecord** next) {
  *next = static_cast<DeviceList*>(list)->next();
  return *next != nullptr;
}

BOOL WINAPI LstK_Free(void* list) {
  delete static_cast<DeviceList*>(list);
  return TRUE;
}

BOOL WINAPI LibK_LoadDriverAPI(DriverFunctions* functions, int) {
  *functions = {nullptr, openDevice, {}, queryPipe, {}};
  return TRUE;
}

BOOL WINAPI UsbK_ControlTransfer(void* handle, UsbSetup setup, std::uint8_t* buffer,
                                 std::uint32_t length, std::uint32_t* transferred, OVERLAPPED*) {
  constexpr std::uint8_t toHost = 0x80;
  if (handle == nullptr) return FALSE;
  RequestHead head{RequestKind::control};
  std::memcpy(head.key.data(), &setup, sizeof setup);
  const bool reads = (setup.requestType & toHost) != 0;
  const auto moved = static_cast<PipeClient*>(handle)->transfer(head, !reads, {buffer, length});
  if (!moved) return FALSE;
  *transferred = static_cast<std::uint32_t>(reads ? *moved : length);
  return TRUE;
}

}  // extern "C"
