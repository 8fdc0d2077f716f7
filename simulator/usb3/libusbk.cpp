// A stand-in for libusbK.dll that drives simulated USB 3 cameras. The environment says which:
//   QVX_VIRTUAL_USB3      product ids, "0x9B0,0x9B1"; none: no camera
//   QVX_VIRTUAL_USB3_LOG  a file that gets a line for each control transfer
#include <windows.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "simulator/model/camera.h"
#include "simulator/model/usb3_function.h"

namespace {

using qvx::simulator::Camera;
using qvx::simulator::Usb3Function;
using qvx::simulator::UsbSetup;

constexpr int makersVendorId = 0x3C7E;
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

struct Device {
  explicit Device(std::uint16_t productId) : camera(productId), function(camera) {}

  Camera camera;
  Usb3Function function;
  DeviceRecord record{};
};

struct DeviceList {
  std::size_t cursor = 0;  // before the first record; past the last it starts over
};

std::vector<std::unique_ptr<Device>> devicesOfEnvironment() {
  std::vector<std::unique_ptr<Device>> devices;
  const char* text = std::getenv("QVX_VIRTUAL_USB3");
  char* end = nullptr;
  for (; text != nullptr && *text != '\0'; text = *end == ',' ? end + 1 : end) {
    const unsigned long productId = std::strtoul(text, &end, 16);
    if (end == text) break;
    devices.push_back(std::make_unique<Device>(static_cast<std::uint16_t>(productId)));
    DeviceRecord& record = devices.back()->record;
    record.vendorId = makersVendorId;
    record.productId = static_cast<std::int32_t>(productId);
    record.connected = 1;
    std::snprintf(record.instance, textSize, "virtual%zu", devices.size() - 1);
    std::snprintf(record.description, textSize, "Simulated USB 3 camera");
    std::snprintf(record.maker, textSize, "QVX64");
  }
  return devices;
}

std::vector<std::unique_ptr<Device>>& devices() {
  static auto all = devicesOfEnvironment();
  return all;
}

void log(const UsbSetup& setup, const std::uint8_t* buffer, std::uint32_t length) {
  const char* const path = std::getenv("QVX_VIRTUAL_USB3_LOG");
  std::FILE* const file = path == nullptr ? nullptr : std::fopen(path, "a");
  if (file == nullptr) return;
  std::fprintf(file, "%02X %02X %04X %04X %u:", setup.requestType, setup.request, setup.value,
               setup.index, setup.length);
  for (std::uint32_t i = 0; i < length; ++i) std::fprintf(file, " %02X", buffer[i]);
  std::fprintf(file, "\n");
  std::fclose(file);
}

BOOL WINAPI openDevice(void** handle, DeviceRecord* record) {
  for (const auto& device : devices()) {
    if (&device->record == record) {
      *handle = device.get();
      return TRUE;
    }
  }
  SetLastError(ERROR_INVALID_HANDLE);
  return FALSE;
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
  *list = new DeviceList;
  return TRUE;
}

BOOL WINAPI LstK_Count(void* list, std::uint32_t* count) {
  if (list == nullptr) return FALSE;
  *count = static_cast<std::uint32_t>(devices().size());
  return TRUE;
}

BOOL WINAPI LstK_FindByVidPid(void*, int vendorId, int productId, DeviceRecord** found) {
  *found = nullptr;
  for (const auto& device : devices()) {
    if (device->record.vendorId == vendorId && device->record.productId == productId) {
      *found = &device->record;
      return TRUE;
    }
  }
  return FALSE;
}

BOOL WINAPI LstK_MoveNext(void* list, DeviceRecord** next) {
  std::size_t& cursor = static_cast<DeviceList*>(list)->cursor;
  const bool pastEnd = cursor == devices().size();
  *next = pastEnd ? nullptr : &devices()[cursor]->record;
  cursor = pastEnd ? 0 : cursor + 1;
  return pastEnd ? FALSE : TRUE;
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
  if (handle == nullptr) return FALSE;
  Device& device = *static_cast<Device*>(handle);
  device.camera.advanceTo(GetTickCount64());
  const auto moved = device.function.transfer(setup, {buffer, length});
  log(setup, buffer, length);
  if (!moved) return FALSE;
  *transferred = static_cast<std::uint32_t>(*moved);
  return TRUE;
}

}  // extern "C"
