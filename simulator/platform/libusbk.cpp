// libusbK over the simulated machine, with the genuine library's cursor: it starts before the first
// device, and past the last one it starts over.
#include "platform/libusbk.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>

#include "platform/process.h"
#include "simulator/platform/world.h"

namespace qvx::platform {

namespace {

using simulator::hex;
using simulator::UsbDevice;
using simulator::world;

constexpr int driverId = 0;
constexpr std::uint32_t openFailed = 31;  // a device that does not work

struct DeviceList {
  std::vector<KLST_DEVINFO> records;
  std::size_t cursor = 0;  // of the record that MoveNext gives next
};

struct OpenedDevice {
  std::size_t device;
};

template <std::size_t size>
void copyText(char (&field)[size], const std::string& text) {
  std::snprintf(field, size, "%s", text.c_str());
}

KLST_DEVINFO recordOf(const UsbDevice& device, std::size_t index) {
  KLST_DEVINFO record{};
  record.Common.Vid = device.vendorId;
  record.Common.Pid = device.productId;
  record.DriverID = driverId;
  record.BusNumber = static_cast<int>(index);
  copyText(record.Common.InstanceID, device.instance);
  copyText(record.DeviceDesc, device.description);
  copyText(record.Mfg, device.maker);
  return record;
}

// Lists and handles that the library leaves behind stay valid, as with the genuine library.
std::vector<std::unique_ptr<DeviceList>>& lists() {
  static std::vector<std::unique_ptr<DeviceList>> all;
  return all;
}

DeviceList* listOf(KLST_HANDLE handle) {
  const auto found = std::find_if(lists().begin(), lists().end(),
                                  [handle](const auto& list) { return list.get() == handle; });
  return found == lists().end() ? nullptr : found->get();
}

std::vector<std::unique_ptr<OpenedDevice>>& openedDevices() {
  static std::vector<std::unique_ptr<OpenedDevice>> all;
  return all;
}

UsbDevice* deviceOf(KUSB_HANDLE handle) {
  for (const auto& opened : openedDevices()) {
    if (opened.get() == handle && opened->device < world().usbDevices.size()) {
      return &world().usbDevices[opened->device];
    }
  }
  return nullptr;
}

KUSB_BOOL openDevice(KUSB_HANDLE* handle, const KLST_DEVINFO* record) {
  const auto index = static_cast<std::size_t>(record->BusNumber);
  if (!world().operate("usb open " + std::to_string(index)) ||
      !world().usbDevices.at(index).opens) {
    setLastError(openFailed);
    return 0;
  }
  openedDevices().push_back(std::make_unique<OpenedDevice>(OpenedDevice{index}));
  *handle = openedDevices().back().get();
  ++world().open.usbHandles;
  return 1;
}

KUSB_BOOL queryPipe(KUSB_HANDLE handle, std::uint8_t alternateSetting, std::uint8_t pipeIndex,
                    WINUSB_PIPE_INFORMATION* pipe) {
  const UsbDevice* const device = deviceOf(handle);
  if (device == nullptr || alternateSetting != 0 || pipeIndex >= device->pipes.size()) return 0;
  const simulator::UsbPipe& found = device->pipes[pipeIndex];
  *pipe = {found.type, found.id, static_cast<std::uint16_t>(found.maximumPacketSize),
           static_cast<std::uint8_t>(found.interval)};
  return 1;
}

std::string lineOf(const WINUSB_SETUP_PACKET& setup, std::span<const std::uint8_t> buffer) {
  char head[64];
  std::snprintf(head, sizeof head, "usb %02X %02X %04X %04X %u", setup.RequestType, setup.Request,
                setup.Value, setup.Index, setup.Length);
  const bool isOut = (setup.RequestType & 0x80) == 0;
  return isOut ? head + (": " + hex(buffer)) : head;
}

}  // namespace

bool LstK_Init(KLST_HANDLE* deviceList, int /*flags*/) {
  if (!world().libusbkInstalled) return false;
  auto list = std::make_unique<DeviceList>();
  for (const UsbDevice& device : world().usbDevices) {
    list->records.push_back(recordOf(device, list->records.size()));
  }
  *deviceList = list.get();
  lists().push_back(std::move(list));
  ++world().open.deviceLists;
  return true;
}

bool LstK_Count(KLST_HANDLE deviceList, std::uint32_t* count) {
  const DeviceList* const list = listOf(deviceList);
  if (list == nullptr) return false;
  *count = static_cast<std::uint32_t>(list->records.size());
  return true;
}

bool LstK_FindByVidPid(KLST_HANDLE deviceList, int vid, int pid, KLST_DEVINFO** deviceInfo) {
  *deviceInfo = nullptr;
  for (KLST_DEVINFO& record : listOf(deviceList)->records) {
    if (record.Common.Vid == vid && record.Common.Pid == pid) {
      *deviceInfo = &record;
      return true;
    }
  }
  return false;
}

bool LstK_MoveNext(KLST_HANDLE deviceList, KLST_DEVINFO** deviceInfo) {
  DeviceList& list = *listOf(deviceList);
  const bool pastEnd = list.cursor == list.records.size();
  *deviceInfo = pastEnd ? nullptr : &list.records[list.cursor];
  list.cursor = pastEnd ? 0 : list.cursor + 1;
  return !pastEnd;
}

bool LstK_Free(KLST_HANDLE deviceList) {
  const auto removed =
      std::erase_if(lists(), [deviceList](const auto& list) { return list.get() == deviceList; });
  world().open.deviceLists -= static_cast<int>(removed);
  return removed != 0;
}

bool LibK_LoadDriverAPI(KUSB_DRIVER_API* driverApi, int requestedDriver) {
  if (requestedDriver != driverId) return false;
  driverApi->Init = openDevice;
  driverApi->QueryPipe = queryPipe;
  return true;
}

bool UsbK_ControlTransfer(KUSB_HANDLE interfaceHandle, WINUSB_SETUP_PACKET setup,
                          std::uint8_t* buffer, std::uint32_t length, std::uint32_t* transferred) {
  UsbDevice* const device = deviceOf(interfaceHandle);
  const std::span bytes(buffer, length);
  if (!world().operate(lineOf(setup, bytes)) || device == nullptr || device->endpoint == nullptr) {
    return false;
  }
  const auto moved = device->endpoint->transfer(
      {setup.RequestType, setup.Request, setup.Value, setup.Index, setup.Length}, bytes);
  if (!moved) return false;
  *transferred = static_cast<std::uint32_t>(*moved);
  return true;
}

}  // namespace qvx::platform
